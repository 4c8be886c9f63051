#pragma once

namespace nimbrel {

class MountKeeper;
struct ProgramArguments;

// The desktop program from the first window to the last unmount. Returns the process's status.
[[nodiscard]] int runApplication(int count, char **texts, const ProgramArguments &arguments,
                                 MountKeeper &keeper);

} // namespace nimbrel
