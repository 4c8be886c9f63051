#include "cli/UnmountCommand.h"

#include "cli/CommandError.h"
#include "cli/DiskPath.h"
#include "cli/PrintableText.h"
#include "fs/MountHolders.h"
#include "fs/MountTable.h"
#include "fs/Unmounting.h"

#include <fmt/format.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace nimbrel {

namespace {

constexpr std::string_view ourType = "fuse.nimbrel";

[[noreturn]] void fail(const std::string &cause, const std::string &nextStep)
{
    throw CommandError(ExitStatus::MountPointTrouble, cause, nextStep);
}

// Where the folder `path` is shown, if it is the encrypted one itself.
std::string diskOf(const std::string &path)
{
    for (const Mount &mount : mountTable())
        if (mount.type == ourType && mount.source == path)
            return mount.point;
    return {};
}

Mount diskAt(const std::string &point)
{
    std::optional<Mount> mount = mountAt(point);
    if (mount && mount->type == ourType)
        return std::move(*mount);
    if (const std::string disk = diskOf(point); !disk.empty())
        fail(fmt::format("{} is the encrypted folder, not its disk", point),
             fmt::format("Its disk is at {}", disk));
    fail(point + " is not a mounted disk of Nimbrel",
         "See which there are with: findmnt -t fuse.nimbrel");
}

[[noreturn]] void refuse(const std::string &point, int code)
{
    if (code == EPERM || code == EACCES)
        fail(fmt::format("{} was mounted by another user", point), "Ask that user or root");
    if (code != EBUSY)
        fail(fmt::format("{} can't be unmounted: {}", point, errorText(code)), "Try again");
    const std::string holders = describeHolders(mountHolders(point));
    fail(fmt::format("{} is in use{}{}", point, holders.empty() ? "" : ": ", holders),
         "Close what uses it and try again");
}

// The kernel has the mount gone at once as a rule; other views of the tree can delay it.
bool isThere(const Mount &disk)
{
    const std::optional<Mount> left = mountAt(disk.point);
    return left && left->device == disk.device;
}

void awaitGone(const Mount &disk)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (isThere(disk)) {
        if (std::chrono::steady_clock::now() > end)
            fail(fmt::format("{} is still there", disk.point), "Try again");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

} // namespace

ExitStatus runUnmount(const std::string &mountPoint)
{
    const Mount disk = diskAt(mountPointMeantBy(mountPoint));
    const NBDone done = isDeadMount(disk.point) ? detachDisk(disk.point) : unmountDisk(disk.point);
    // The keeper of a dead program may have been faster.
    if (!done && isThere(disk))
        refuse(disk.point, done.code());
    awaitGone(disk);
    return ExitStatus::Done;
}

} // namespace nimbrel
