// libfuse's session of one disk, and the threads that serve it.
#pragma once

#include "fs/FuseDisk.h"
#include "fs/UserFileSystem.h"

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

struct fuse_session;

namespace nimbrel {

// Mount, loop; unmount, join, destroy: in that order, also on failure.
class FuseSession final
{
public:
    FuseSession(std::shared_ptr<NBNimbrelFS> delegate, UserFileSystemNotifications notifications,
                MountKeeper *keeper);
    ~FuseSession();
    FuseSession(const FuseSession &) = delete;
    FuseSession &operator=(const FuseSession &) = delete;

    // Puts the disk at `path`; nothing is served yet. Nothing when it stands there.
    [[nodiscard]] std::optional<MountFailure> start(const std::string &path,
                                                    const std::vector<std::string> &options);
    void serve(bool onOwnThread);
    void tellFailure(const MountFailure &failure) const;
    NBDone unmount();

    [[nodiscard]] bool isMounted() const noexcept { return _isMounted; }
    [[nodiscard]] const std::string &mountPoint() const noexcept { return _mountPoint; }

private:
    [[nodiscard]] std::optional<MountFailure> makeSession(const std::vector<std::string> &options);
    void loop();
    void stopReclaiming();
    void end();

    std::shared_ptr<NBNimbrelFS> _delegate;
    UserFileSystemNotifications _notifications;
    MountKeeper *_keeper;
    std::string _mountPoint;
    std::unique_ptr<FuseDisk> _disk;
    std::unique_ptr<NodeReclaimer> _reclaimer;
    fuse_session *_session = nullptr;
    std::atomic<bool> _isMounted = false;
    bool _didStart = false; // FUSE thread: the kernel has greeted
    std::thread _thread;
};

} // namespace nimbrel
