// The other side of MountKeeper: what its child process does.
#pragma once

#include <sys/types.h>

namespace nimbrel {

// The first byte of a record; the mount point is the rest.
inline constexpr char keeperKeeps = '+';
inline constexpr char keeperForgets = '-';

// Reads records from `line` until its other end is closed, which is when the maker has ended, then
// detaches the dead ones of the disks that are still kept. A disk whose process goes on living,
// because the maker was not its server, is left alone.
//
// A maker that is killed while one of its own threads waits for one of its own disks can't end:
// nobody answers the thread, and its disks' connections stay open with it. Then the connections of
// the disks are aborted. Ends the process.
[[noreturn]] void runKeeper(int line, pid_t maker);

} // namespace nimbrel
