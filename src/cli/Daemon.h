#pragma once

#include "cli/ExitStatus.h"
#include "config/UniqueFd.h"

#include <sys/types.h>

namespace nimbrel {

// Splits the program in two: the starter, which a shell waits for, and the daemon, which goes on
// without a terminal once its work stands. Until then the daemon asks and complains at the
// starter's terminal.
class Daemon final
{
public:
    // Forks. To be made before threads and secrets. Throws CommandError.
    Daemon();

    [[nodiscard]] bool isStarter() const noexcept { return _child > 0; }

    // The starter's part: waits until the daemon is ready or has ended, and tells how. Ends by the
    // same signal where one ended the daemon.
    [[nodiscard]] ExitStatus awaitReadiness();

    // The daemon's part: a session of its own, so that the terminal's signals don't reach it.
    void leaveSession();
    // Lets go of the standard streams and releases the starter.
    void becomeReady();

private:
    pid_t _child = 0;
    UniqueFd _pipe; // the starter reads, the daemon writes
};

} // namespace nimbrel
