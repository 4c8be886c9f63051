#include "fs/Ownership.h"

#include "fs/OnDiskPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel {

namespace {

constexpr auto unchangedGroup = static_cast<gid_t>(-1);

NBErrnoOr<bool> handsOnItsGroup(const std::string &folder)
{
    struct stat attributes = {};
    const NBDone done =
        callOnPath(folder, [&](const char *path) { return ::stat(path, &attributes); });
    if (!done)
        return done.error();
    return (attributes.st_mode & S_ISGID) != 0;
}

bool losesBits(mode_t mode)
{
    return !S_ISDIR(mode) && !S_ISLNK(mode) && (mode & (S_ISUID | S_ISGID)) != 0;
}

} // namespace

bool mayChangeOwners() noexcept
{
    return ::geteuid() == 0;
}

NBDone giveTo(Creator creator, int descriptor, const std::string &folder)
{
    if (!mayChangeOwners())
        return {};
    struct stat made = {};
    if (::fstat(descriptor, &made) != 0)
        return NBErrno::last();
    if (made.st_uid == creator.user && made.st_gid == creator.group)
        return {};
    const NBErrnoOr<bool> inherits = handsOnItsGroup(folder);
    if (!inherits)
        return inherits.error();
    if (made.st_uid == creator.user && *inherits)
        return {};
    const gid_t group = *inherits ? unchangedGroup : creator.group;
    if (::fchownat(descriptor, "", creator.user, group, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW) != 0)
        return NBErrno::last();
    return losesBits(made.st_mode) ? changeMode(descriptor, made.st_mode & 07777U) : NBDone();
}

NBDone giveTo(Creator creator, const std::string &item, const std::string &folder)
{
    if (!mayChangeOwners())
        return {};
    const NBErrnoOr<UniqueFd> descriptor = openOnDisk(item, O_PATH | O_NOFOLLOW);
    if (!descriptor)
        return descriptor.error();
    return giveTo(creator, descriptor->get(), folder);
}

NBDone changeMode(int descriptor, mode_t mode)
{
    if (::fchmod(descriptor, mode) == 0)
        return {};
    if (errno != EBADF)
        return NBErrno::last();
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    return ::chmod(path.c_str(), mode) == 0 ? NBDone() : NBErrno::last();
}

} // namespace nimbrel
