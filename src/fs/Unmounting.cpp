#include "fs/Unmounting.h"

#include "config/UniqueFd.h"
#include "fs/Fusermount.h"
#include "fs/MountTable.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <string_view>
#include <sys/mount.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <vector>

namespace nimbrel {

namespace {

struct Reason
{
    std::string_view words;
    int code;
};

int codeOf(std::string_view said)
{
    constexpr std::array<Reason, 5> reasons = {{{"busy", EBUSY},
                                                {"not found in", EPERM},
                                                {"Operation not permitted", EPERM},
                                                {"Permission denied", EACCES},
                                                {"Invalid argument", EINVAL}}};
    for (const Reason &reason : reasons)
        if (said.find(reason.words) != std::string_view::npos)
            return reason.code;
    return EIO;
}

// Success is a mount that is gone from the table: what a helper says of itself doesn't count, nor
// who has taken it away.
bool isGone(const Mount &mount)
{
    const std::optional<Mount> left = mountAt(mount.point);
    return !left || left->id != mount.id;
}

NBDone askFusermount(const Mount &mount, std::vector<std::string> arguments)
{
    arguments.insert(arguments.end(), {"--", mount.point});
    const NBErrnoOr<std::string> said = runFusermount(arguments);
    if (isGone(mount))
        return {};
    return NBErrno{said ? codeOf(*said) : said.code()};
}

NBDone takeAway(const std::string &mountPoint, int flags, std::vector<std::string> arguments)
{
    const std::optional<Mount> mount = mountAt(mountPoint);
    if (!mount)
        return NBErrno{EINVAL};
    if (::geteuid() == 0) {
        if (::umount2(mountPoint.c_str(), flags | UMOUNT_NOFOLLOW) == 0)
            return {};
        // Root of a container may lack the right that the helper outside has.
        const NBErrno error = NBErrno::last();
        if (error.code != EPERM)
            return isGone(*mount) ? NBDone() : NBDone(error);
    }
    return askFusermount(*mount, std::move(arguments));
}

// Connections are named by the number of their disk's device.
bool abortByControlFile(const Mount &mount)
{
    const std::string path = fmt::format("/sys/fs/fuse/connections/{}/abort", minor(mount.device));
    const UniqueFd control(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    return control && ::write(control.get(), "1", 1) == 1;
}

} // namespace

NBDone unmountDisk(const std::string &mountPoint)
{
    return takeAway(mountPoint, 0, {"-u"});
}

NBDone detachDisk(const std::string &mountPoint)
{
    return takeAway(mountPoint, MNT_DETACH, {"-u", "-z"});
}

NBDone abortDisk(const std::string &mountPoint)
{
    const std::optional<Mount> mount = mountAt(mountPoint);
    if (!mount || !isFuse(*mount))
        return NBErrno{EINVAL};
    if (abortByControlFile(*mount))
        return {};
    // The abort comes first; whether the mount goes as well is another matter.
    if (::umount2(mountPoint.c_str(), MNT_FORCE | UMOUNT_NOFOLLOW) == 0 || errno == EBUSY)
        return {};
    return NBErrno::last();
}

} // namespace nimbrel
