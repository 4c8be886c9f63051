// What the kernel tells about the program that serves a disk.
#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace nimbrel::test {

class MountedFolder;

// Its living children, theirs too.
[[nodiscard]] std::vector<pid_t> descendants(pid_t process);

// False for one that has ended, also while nobody has waited for it.
[[nodiscard]] bool isAlive(pid_t process);

// Resident memory in KiB.
[[nodiscard]] std::uint64_t residentKiB(pid_t process);

// Ends the program that serves the disk and all it has started, so that nobody is left to clean up.
void killWithHelpers(MountedFolder &disk);

// Waits until a disk stands at the mount point and answers; false when none comes.
[[nodiscard]] bool comesUp(const MountedFolder &disk);

// Waits until nothing stands at the mount point any more; false when it stays.
[[nodiscard]] bool goesAway(const MountedFolder &disk);

} // namespace nimbrel::test
