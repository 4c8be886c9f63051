#pragma once

#include "cli/ServiceLog.h"
#include "cli/SignalSet.h"
#include "fs/UserFileSystem.h"

#include <future>
#include <optional>

namespace nimbrel {

// The main thread of a process that serves a disk: waits for the disk's end and for signals. To be
// made before the disk, and to outlive it.
class ServiceLoop final
{
public:
    ServiceLoop();

    // For the disk that is served.
    [[nodiscard]] UserFileSystemNotifications notifications();

    // Waits until the disk stands; throws CommandError where it doesn't come up.
    void awaitMount();

    // Returns when the disk has gone, or is to be ended by its owner. SIGTERM, SIGINT and SIGHUP
    // unmount; while files are open, the first one only names who has them and the second gives up
    // on them.
    void run(UserFileSystem &disk, const ServiceLog &log);

private:
    [[nodiscard]] bool isUnmountedBy(int signal, UserFileSystem &disk, const ServiceLog &log);

    SignalSet _signals;
    UniqueFd _gone; // an event counter: the disk was unmounted
    std::promise<std::optional<MountFailure>> _outcome;
    bool _wasRefused = false;
};

} // namespace nimbrel
