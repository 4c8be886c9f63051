// What is mounted where, from the kernel's own table (proc(5), mountinfo).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbrel {

struct Mount
{
    std::string point = {};   // as the kernel has it, escapes undone
    std::string type = {};    // "fuse.nimbrel", "ext4"
    std::string source = {};  // the encrypted folder for ours
    unsigned long device = 0; // makedev of the mounted filesystem
    unsigned id = 0;          // unique as long as the mount stands
    unsigned parent = 0;      // the mount that it stands on
    std::string root = {};    // which folder of the filesystem is shown; "/" but for bind mounts
};

// The mounts of this process's view, in the kernel's order; empty when /proc isn't there.
[[nodiscard]] std::vector<Mount> mountTable();
// The same for a table's text.
[[nodiscard]] std::vector<Mount> parseMountTable(std::string_view mountinfo);

// The topmost mount exactly at `path` (absolute, without a final slash).
[[nodiscard]] std::optional<Mount> mountAt(const std::string &path);
// The same in a given table. Mounts that another one covers aren't seen.
[[nodiscard]] std::optional<Mount> mountAt(const std::vector<Mount> &table,
                                           const std::string &path);
// The mount that `path` lies on, which need not exist.
[[nodiscard]] std::optional<Mount> mountOf(const std::vector<Mount> &table,
                                           const std::string &path);

// True for "fuse", "fuseblk", "fuse.nimbrel" and their like.
[[nodiscard]] bool isFuse(const Mount &mount);
// True where the mount at `path` has lost its process ("Transport endpoint is not connected"). A
// disk that doesn't answer in some seconds counts as alive.
[[nodiscard]] bool isDeadMount(const std::string &path);

// True when `path` is `folder` or lies below it; both absolute, without a final slash.
[[nodiscard]] bool isAtOrBelow(std::string_view path, std::string_view folder) noexcept;

} // namespace nimbrel
