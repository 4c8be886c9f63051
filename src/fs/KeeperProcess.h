// The other side of MountKeeper: what its child process does.
#pragma once

namespace nimbrel {

// The first byte of a record; the mount point is the rest.
inline constexpr char keeperKeeps = '+';
inline constexpr char keeperForgets = '-';

// Reads records from `line` until its other end is closed, which is when the maker has ended, then
// detaches the dead ones of the disks that are still kept. A disk whose process goes on living,
// because the maker was not its server, is left alone. Ends the process.
[[noreturn]] void runKeeper(int line);

} // namespace nimbrel
