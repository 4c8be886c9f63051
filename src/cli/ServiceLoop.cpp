#include "cli/ServiceLoop.h"

#include "cli/MountFailureError.h"
#include "cli/PrintableText.h"
#include "fs/MountHolders.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <string>
#include <sys/eventfd.h>

namespace nimbrel {

namespace {

std::string whyBusy(const UserFileSystem &disk, int code)
{
    const std::string cause =
        code == EBUSY ? describeHolders(mountHolders(disk.mountPoint())) : errorText(code);
    return fmt::format("{} stays mounted: {}. Close what uses it and send the signal again; a "
                       "second signal takes the disk away from programs that still use it.",
                       disk.mountPoint(), cause.empty() ? errorText(code) : cause);
}

} // namespace

ServiceLoop::ServiceLoop()
    : _signals({SIGTERM, SIGINT, SIGHUP}), _gone(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!_gone)
        throw CommandError(ExitStatus::Failed, "No event can be made: " + errorText(errno));
}

UserFileSystemNotifications ServiceLoop::notifications()
{
    return {.didMount = [this] { _outcome.set_value(std::nullopt); },
            .didUnmount = [this] { ::eventfd_write(_gone.get(), 1); },
            .mountFailed = [this](const MountFailure &failure) { _outcome.set_value(failure); }};
}

void ServiceLoop::awaitMount()
{
    if (const std::optional<MountFailure> failure = _outcome.get_future().get())
        throw commandError(*failure);
}

void ServiceLoop::run(UserFileSystem &disk, const ServiceLog &log)
{
    std::array<pollfd, 2> waited{pollfd{_gone.get(), POLLIN, 0},
                                 {_signals.descriptor(), POLLIN, 0}};
    for (;;) {
        if (::poll(waited.data(), waited.size(), -1) < 0 && errno != EINTR)
            throw CommandError(ExitStatus::Failed, "Can't wait for signals: " + errorText(errno));
        if (waited[0].revents != 0)
            return;
        const int signal = _signals.take();
        if (signal != 0 && isUnmountedBy(signal, disk, log))
            return;
    }
}

bool ServiceLoop::isUnmountedBy(int signal, UserFileSystem &disk, const ServiceLog &log)
{
    const int code = disk.unmount().code();
    if (code == 0 || code == ENOTCONN) // the latter: somebody else was faster
        return true;
    if (_wasRefused) {
        log.say(fmt::format("{} is taken away after a second signal ({}), in use as it is.",
                            disk.mountPoint(), signal));
        return true;
    }
    _wasRefused = true;
    log.say(whyBusy(disk, code));
    return false;
}

} // namespace nimbrel
