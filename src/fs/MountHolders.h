#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace nimbrel {

// A process that keeps a disk busy, and with what.
struct MountHolder
{
    pid_t process;
    std::string name; // of the program
    std::string path; // one file or folder that it holds; may be empty
};

// Who has an open file, a working or root directory, or a mapping on the disk at `mountPoint`, and
// which mounts stand on it. Processes that this user may not look into aren't seen. Never touches
// the disk itself, so a hanging disk can't hang the question.
[[nodiscard]] std::vector<MountHolder> mountHolders(const std::string &mountPoint);

// How describeHolders says it; a program with another language brings its own. {who}, {path} and
// {count} are filled in.
struct HolderWords
{
    std::string mounted = "a disk is mounted at {path}";
    std::string uses = "{who} uses it";
    std::string hasOpen = "{who} has {path} open";
    std::string more = ", and {count} more";
};

// "vim (1234) has /home/ann/Safe/a.txt open" for up to three, then how many more; empty for none.
[[nodiscard]] std::string describeHolders(const std::vector<MountHolder> &holders,
                                          const HolderWords &words = {});

} // namespace nimbrel
