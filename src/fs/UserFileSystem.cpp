#include "fs/UserFileSystem.h"

#include "fs/FuseSession.h"

namespace nimbrel {

UserFileSystem::UserFileSystem(std::shared_ptr<NBNimbrelFS> delegate,
                               UserFileSystemNotifications notifications, MountKeeper *keeper)
    : _session(std::make_unique<FuseSession>(std::move(delegate), std::move(notifications), keeper))
{
}

UserFileSystem::~UserFileSystem() = default;

void UserFileSystem::mountAtPath(const std::string &path, const std::vector<std::string> &options,
                                 bool detachNewThread)
{
    if (const std::optional<MountFailure> failure = _session->start(path, options))
        return _session->tellFailure(*failure);
    _session->serve(detachNewThread);
}

NBDone UserFileSystem::unmount()
{
    return _session->unmount();
}

bool UserFileSystem::isMounted() const noexcept
{
    return _session->isMounted();
}

const std::string &UserFileSystem::mountPoint() const noexcept
{
    return _session->mountPoint();
}

} // namespace nimbrel
