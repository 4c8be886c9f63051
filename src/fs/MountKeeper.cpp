#include "fs/MountKeeper.h"

#include "fs/KeeperProcess.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel {

MountKeeper::MountKeeper()
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return;
    UniqueFd own(ends[0]);
    const UniqueFd other(ends[1]);
    const pid_t maker = ::getpid();
    _child = ::fork();
    if (_child == 0)
        runKeeper(other.get(), maker);
    if (_child > 0)
        _pipe = std::move(own);
}

MountKeeper::~MountKeeper()
{
    _pipe.reset();
    if (_child <= 0)
        return;
    // With a disk left the child has work that may take longer than anyone should wait here.
    const int flags = _kept > 0 ? WNOHANG : 0;
    while (::waitpid(_child, nullptr, flags) < 0 && errno == EINTR) {
    }
}

void MountKeeper::keep(const std::string &mountPoint)
{
    ++_kept;
    tell(keeperKeeps, mountPoint);
}

void MountKeeper::forget(const std::string &mountPoint)
{
    --_kept;
    tell(keeperForgets, mountPoint);
}

bool MountKeeper::isRunning() const noexcept
{
    pollfd line = {_pipe.get(), 0, 0};
    return _pipe && ::poll(&line, 1, 0) == 0;
}

void MountKeeper::tell(char what, const std::string &mountPoint)
{
    const std::string record = what + mountPoint;
    // A child that was killed can't be told; isRunning says so, and the next mount at that place
    // detaches what was left there.
    while (_pipe && ::send(_pipe.get(), record.data(), record.size(), MSG_NOSIGNAL) < 0 &&
           errno == EINTR) {
    }
}

} // namespace nimbrel
