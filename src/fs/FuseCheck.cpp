#include "fs/FuseCheck.h"

#include "config/UniqueFd.h"
#include "fs/FuseRequest.h"
#include "fs/Fusermount.h"
#include "fs/MountPointCheck.h"

#include <algorithm>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace nimbrel {

namespace {

MountFailure trouble(std::string message)
{
    return {MountFailure::Cause::Fuse, std::move(message)};
}

std::optional<MountFailure> checkDevice(const std::string &device)
{
    struct stat found = {};
    if (::stat(device.c_str(), &found) == 0)
        return std::nullopt;
    return trouble(fmt::format("This system has no FUSE: {} is missing. Run `sudo modprobe fuse`; "
                               "a container needs that device from outside.",
                               device));
}

// Root mounts by itself.
std::optional<MountFailure> checkOpening(const std::string &device)
{
    const UniqueFd opened(::open(device.c_str(), O_RDWR | O_CLOEXEC));
    if (opened)
        return std::nullopt;
    const int code = errno;
    return trouble(fmt::format("{} can't be opened: {}. Run `sudo modprobe fuse`; in a container, "
                               "allow the device.",
                               device, std::generic_category().message(code)));
}

// Everyone else mounts through fusermount3, which opens the device as root: the device's own
// rights don't matter.
std::optional<MountFailure> checkHelper(const FuseSurroundings &surroundings)
{
    if (!surroundings.helper)
        return trouble("The program fusermount3 is missing. Run `sudo apt install fuse3`.");
    struct stat found = {};
    const bool setUser = ::stat(surroundings.helper->c_str(), &found) == 0 && found.st_uid == 0 &&
                         (found.st_mode & S_ISUID) != 0;
    if (!setUser)
        return trouble(fmt::format("{} has lost its right to mount (set-user-ID root). Run `sudo "
                                   "apt install --reinstall fuse3`.",
                                   *surroundings.helper));
    if (!surroundings.mayGainRights)
        return trouble(fmt::format("This program runs where {} gets no right to mount (no new "
                                   "privileges). Start it outside of the sandbox.",
                                   *surroundings.helper));
    return std::nullopt;
}

// As fusermount3 reads its file: the word alone on a line, a comment behind it, and a line without
// its end doesn't count.
bool allowsOther(const std::string &configuration)
{
    constexpr const char *blanks = " \t\r\v\f";
    std::ifstream stream(configuration);
    for (std::string line; std::getline(stream, line) && !stream.eof();) {
        line.erase(std::min(line.find('#'), line.size()));
        line.erase(line.find_last_not_of(blanks) + 1);
        line.erase(0, std::min(line.find_first_not_of(blanks), line.size()));
        if (line == "user_allow_other")
            return true;
    }
    return false;
}

} // namespace

FuseSurroundings fuseSurroundings()
{
    return {.helper = findFusermount(),
            .user = ::geteuid(),
            .mayGainRights = ::prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) != 1};
}

std::optional<MountFailure> checkFuse(const FuseSurroundings &surroundings, bool allowOther)
{
    if (std::optional<MountFailure> failure = checkDevice(surroundings.device))
        return failure;
    if (surroundings.user == 0)
        return checkOpening(surroundings.device);
    if (std::optional<MountFailure> failure = checkHelper(surroundings))
        return failure;
    if (allowOther && !allowsOther(surroundings.configuration))
        return trouble(fmt::format("This system doesn't let you open a disk to other users. Have "
                                   "an administrator add the line `user_allow_other` to {}, or "
                                   "mount without allow_other.",
                                   surroundings.configuration));
    return std::nullopt;
}

std::optional<MountFailure> checkFuse(bool allowOther)
{
    return checkFuse(fuseSurroundings(), allowOther);
}

std::string fuseVersion()
{
    return ::fuse_pkgversion();
}

} // namespace nimbrel
