#include "fs/FuseSession.h"

#include "fs/AllSignalsBlocked.h"
#include "fs/FuseOperations.h"
#include "fs/FuseTransport.h"
#include "fs/MountKeeper.h"
#include "fs/MountOptions.h"
#include "fs/MountPointCheck.h"
#include "fs/RequestLoop.h"
#include "fs/Unmounting.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <fmt/format.h>
#include <sched.h>
#include <sys/statvfs.h>

namespace nimbrel {

namespace {

// libfuse tells its reasons to a log alone, in pieces; the last line is kept for the failure's
// message.
thread_local std::string lastFuseMessage; // NOLINT: libfuse's log function has no context

__attribute__((format(printf, 2, 0))) void keepMessage(fuse_log_level, const char *format,
                                                       va_list arguments)
{
    std::array<char, 512> piece{};
    std::vsnprintf(piece.data(), piece.size(), format, arguments);
    if (lastFuseMessage.ends_with('\n'))
        lastFuseMessage.clear();
    lastFuseMessage += piece.data();
}

// The line in the words of a sentence: without the end of a line, or of a sentence.
std::string fuseReason()
{
    std::string reason = lastFuseMessage;
    while (reason.ends_with('\n') || reason.ends_with('.'))
        reason.pop_back();
    return reason;
}

bool contains(const std::vector<std::string> &options, std::string_view option)
{
    return std::find(options.begin(), options.end(), option) != options.end();
}

std::string withReason(std::string_view what)
{
    const std::string reason = fuseReason();
    return reason.empty() ? fmt::format("{}.", what) : fmt::format("{}: {}.", what, reason);
}

// The loop's threads sleep in a read of the FUSE device. Any request wakes one of them, which then
// sees that it is to end and leaves the request. So each needs one of its own, from somebody who
// waits until the session lets the device go.
std::vector<std::thread> wakeLoop(const std::string &path)
{
    std::vector<std::thread> wakers;
    while (wakers.size() < RequestLoop::mostThreads)
        wakers.emplace_back([path] {
            struct statvfs ignored = {};
            (void)::statvfs(path.c_str(), &ignored);
        });
    return wakers;
}

} // namespace

FuseSession::FuseSession(std::shared_ptr<NBNimbrelFS> delegate,
                         UserFileSystemNotifications notifications, MountKeeper *keeper)
    : _delegate(std::move(delegate)), _notifications(std::move(notifications)), _keeper(keeper)
{
}

FuseSession::~FuseSession()
{
    stopReclaiming(); // while somebody serves
    std::vector<std::thread> wakers;
    if (_isMounted && !unmountDisk(_mountPoint)) {
        fuse_session_exit(_session);
        wakers = wakeLoop(_mountPoint);
    }
    if (_thread.joinable())
        _thread.join();
    end();
    for (std::thread &waker : wakers)
        waker.join();
}

std::optional<MountFailure> FuseSession::start(const std::string &path,
                                               const std::vector<std::string> &options)
{
    if (auto failure = checkFuse(contains(options, "allow_other")))
        return failure;
    CheckedMountPoint checked =
        checkMount(_delegate->rootPath(), path, contains(options, "nonempty"));
    if (const auto *failure = std::get_if<MountFailure>(&checked))
        return *failure;
    _mountPoint = std::get<std::string>(std::move(checked));
    if (auto failure = makeSession(options))
        return failure;
    // Told before it stands: a death in between must not leave it.
    if (_keeper != nullptr)
        _keeper->keep(_mountPoint);
    if (fuse_session_mount(_session, _mountPoint.c_str()) != 0 || !installTransport(_session)) {
        fuse_session_unmount(_session); // no more than a word where it isn't mounted
        if (_keeper != nullptr)
            _keeper->forget(_mountPoint);
        end();
        return MountFailure{MountFailure::Cause::Fuse,
                            withReason(fmt::format("{} could not be mounted", _mountPoint))};
    }
    _isMounted = true;
    return std::nullopt;
}

std::optional<MountFailure> FuseSession::makeSession(const std::vector<std::string> &options)
{
    _disk = std::make_unique<FuseDisk>(_delegate, isShared(options));
    _disk->didStart = [this] {
        _didStart = true;
        if (_notifications.didMount)
            _notifications.didMount();
    };
    _disk->forgetAttributes = [this](std::uint64_t number) {
        // Attributes alone: pages would wait for requests that this thread serves.
        fuse_lowlevel_notify_inval_inode(_session, number, -1, 0);
    };
    _reclaimer =
        std::make_unique<NodeReclaimer>([this](std::uint64_t folder, const std::string &name) {
            return fuse_lowlevel_notify_inval_entry(_session, folder, name.c_str(), name.size());
        });
    _disk->reclaimer = _reclaimer.get();
    std::vector<std::string> arguments{"nimbrel"};
    for (const std::string &option : libfuseOptions(options, _delegate->rootPath()))
        if (option != "nonempty") { // judged above; this libfuse has no such option
            arguments.emplace_back("-o");
            arguments.push_back(option);
        }
    fuse_set_log_func(keepMessage);
    lastFuseMessage.clear();
    fuse_args list = FUSE_ARGS_INIT(0, nullptr);
    for (const std::string &argument : arguments)
        if (fuse_opt_add_arg(&list, argument.c_str()) != 0)
            throw std::bad_alloc();
    _session = fuse_session_new(&list, &fuseOperations(), sizeof(fuse_lowlevel_ops), _disk.get());
    fuse_opt_free_args(&list);
    if (_session != nullptr)
        return std::nullopt;
    return MountFailure{MountFailure::Cause::Fuse,
                        withReason("FUSE doesn't take these mount options")};
}

void FuseSession::serve(bool onOwnThread)
{
    if (!onOwnThread)
        return loop();
    const AllSignalsBlocked blocked;
    _thread = std::thread([this] { loop(); });
}

void FuseSession::loop()
{
    // A umask of its own, for all of the loop's threads: each request makes items under its
    // caller's.
    (void)::unshare(CLONE_FS);
    // A drop under way would wait for ever for a disk that stands and isn't served.
    if (RequestLoop(_session, *_disk).run() != 0)
        (void)abortDisk(_mountPoint);
    stopReclaiming();
    _isMounted = false;
    fuse_session_unmount(_session);
    if (_keeper != nullptr)
        _keeper->forget(_mountPoint);
    if (!_didStart)
        return tellFailure({MountFailure::Cause::Fuse,
                            withReason(fmt::format("The kernel refused {}", _mountPoint))});
    if (_notifications.didUnmount)
        _notifications.didUnmount();
}

void FuseSession::stopReclaiming()
{
    if (_reclaimer != nullptr)
        _reclaimer->stop();
}

void FuseSession::end()
{
    if (_session != nullptr)
        fuse_session_destroy(_session);
    _session = nullptr;
    _reclaimer.reset();
    _disk.reset();
}

void FuseSession::tellFailure(const MountFailure &failure) const
{
    if (_notifications.mountFailed)
        _notifications.mountFailed(failure);
}

NBDone FuseSession::unmount()
{
    if (!_isMounted)
        return NBErrno{ENOTCONN};
    return unmountDisk(_mountPoint);
}

} // namespace nimbrel
