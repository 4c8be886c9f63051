// What the kernel says is mounted.
#pragma once

#include <optional>
#include <string>

namespace nimbrel::test {

// The type ("fuse.nimbrel", "tmpfs") of what is mounted at exactly this canonical path; nothing
// where nothing is. Reads the kernel's table and never touches the path: it may be a dead disk.
[[nodiscard]] std::optional<std::string> mountedAt(const std::string &path);

// Takes whatever is mounted there out of the tree, open files or not, as root or as a user.
void detachAll(const std::string &path);

// Tries a mount on a folder of its own; empty when it worked, else what stands in the way.
[[nodiscard]] std::string whyNoMount();

} // namespace nimbrel::test
