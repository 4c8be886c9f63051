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

// Why FUSE can't be used on this machine, found out with a mount on a folder of its own; empty
// where it can. As root it opens /dev/fuse to all users first, as every desktop's does.
[[nodiscard]] std::string whyNoMounts();

// Ends a test, visibly skipped, on a machine without FUSE.
#define NIMBREL_NEED_MOUNTS()                                                                      \
    if (const std::string why = nimbrel::test::whyNoMounts(); !why.empty())                        \
    GTEST_SKIP() << why

} // namespace nimbrel::test
