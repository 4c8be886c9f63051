// What holds for the whole process.
#pragma once

namespace nimbrel {

// Keeps secrets out of core files and out of the reach of the user's other processes.
void forbidDumps();

// For the process that serves a disk: as many files may be open as the system allows, and a pipe
// without a reader is an error instead of the end.
void prepareToServe();

} // namespace nimbrel
