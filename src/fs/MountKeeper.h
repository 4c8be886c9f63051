// Cleans up after a process that dies with disks mounted.
#pragma once

#include "config/UniqueFd.h"

#include <atomic>
#include <string>
#include <sys/types.h>

namespace nimbrel {

// A small child process that outlives its maker and then detaches the disks that were left. It
// exists because libfuse's auto_unmount helper fails for an ordinary user. Make one early in main,
// before threads and secrets: the child is a copy of this process. The child holds nothing open but
// its end of a socket, ignores the terminal's signals, and ends with its maker when no disk is
// left.
class MountKeeper final
{
public:
    MountKeeper();
    ~MountKeeper();
    MountKeeper(const MountKeeper &) = delete;
    MountKeeper &operator=(const MountKeeper &) = delete;

    // A disk stands at `mountPoint` (canonical) / has gone in an orderly way. Thread-safe.
    void keep(const std::string &mountPoint);
    void forget(const std::string &mountPoint);
    // False when the child couldn't be started or has been killed.
    [[nodiscard]] bool isRunning() const noexcept;
    [[nodiscard]] pid_t process() const noexcept { return _child; } // -1: none

private:
    void tell(char what, const std::string &mountPoint);

    UniqueFd _pipe; // a socket: one record a message, and no SIGPIPE
    pid_t _child = -1;
    std::atomic<int> _kept = 0;
};

} // namespace nimbrel
