// What holds for a whole process that has to do with secrets and disks.
#pragma once

namespace nimbrel {

// Keeps secrets out of core files and out of the reach of the user's other processes. 0, or the
// errno with which the system refuses.
[[nodiscard]] int forbidDumps();

// For a process that serves disks: as many files may be open as the system allows, and a pipe
// without a reader is an error instead of the end.
void prepareToServe();

} // namespace nimbrel
