// The mounted disk: what stands between the kernel and NBNimbrelFS.
#pragma once

#include "fs/NBErrno.h"
#include "fs/NBNimbrelFS.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace nimbrel {

class FuseSession; // libfuse's session and its thread; stays inside the binding
class MountKeeper;

// Why a mount failed, for a person to act on.
struct MountFailure
{
    enum class Cause
    {
        Folder,     // the encrypted folder
        MountPoint, // the folder to mount on
        Fuse        // the machine's FUSE: missing, not allowed
    };
    Cause cause;
    std::string message; // one line: the cause and the next step
};

// Called on the FUSE thread; mountFailed also on the caller's. Any may be absent.
struct UserFileSystemNotifications
{
    std::function<void()> didMount;
    std::function<void()> didUnmount; // also after an unmount from outside
    std::function<void(const MountFailure &)> mountFailed;
};

// Owns the FUSE session and its thread. The delegate is called from that thread only, one call at
// a time.
class UserFileSystem final
{
public:
    // initWithDelegate:isThreadSafe:  `keeper`, when given, detaches the disk should this process
    // die; it outlives this object.
    UserFileSystem(std::shared_ptr<NBNimbrelFS> delegate, UserFileSystemNotifications notifications,
                   MountKeeper *keeper = nullptr);
    // Ends the disk: an orderly unmount, or a detach where files are still open.
    ~UserFileSystem();
    UserFileSystem(const UserFileSystem &) = delete;
    UserFileSystem &operator=(const UserFileSystem &) = delete;

    // mountAtPath:withOptions:shouldForeground:detachNewThread:
    // `options` as `mountOptions` of a volume lists them; what libfuse lacks is dropped. With
    // `detachNewThread` the call returns once the mount stands or has failed to start and the disk
    // is served on a thread of its own; else it serves on this thread until the unmount. Exactly
    // one of didMount and mountFailed is called.
    void mountAtPath(const std::string &path, const std::vector<std::string> &options,
                     bool detachNewThread = true);

    // EBUSY where files are open (see MountHolders), and the disk stays. ENOTCONN when not mounted.
    NBDone unmount();

    [[nodiscard]] bool isMounted() const noexcept;
    [[nodiscard]] const std::string &mountPoint() const noexcept; // canonical; empty before a mount

private:
    std::unique_ptr<FuseSession> _session;
};

} // namespace nimbrel
