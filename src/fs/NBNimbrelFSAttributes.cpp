#include "fs/NBNimbrelFS.h"

#include "fs/OnDiskPath.h"

#include <array>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace nimbrel {

namespace {

NBDone setOwner(const std::string &path, const NBItemAttributes &attributes)
{
    if (!attributes.owner && !attributes.group)
        return {};
    constexpr auto unchanged = static_cast<uid_t>(-1);
    return callOnPath(path, [&](const char *item) {
        return ::lchown(item, attributes.owner.value_or(unchanged),
                        attributes.group.value_or(unchanged));
    });
}

// EOPNOTSUPP for a link: Linux has no permissions on links.
NBDone setPermissions(const std::string &path, const NBItemAttributes &attributes)
{
    if (!attributes.posixPermissions)
        return {};
    return callOnPath(path, [&](const char *item) {
        return ::fchmodat(AT_FDCWD, item, *attributes.posixPermissions, AT_SYMLINK_NOFOLLOW);
    });
}

NBDone setDates(const std::string &path, const NBItemAttributes &attributes)
{
    if (!attributes.accessDate && !attributes.modificationDate)
        return {};
    constexpr timespec unchanged{.tv_sec = 0, .tv_nsec = UTIME_OMIT};
    const std::array<timespec, 2> dates = {attributes.accessDate.value_or(unchanged),
                                           attributes.modificationDate.value_or(unchanged)};
    return callOnPath(path, [&](const char *item) {
        return ::utimensat(AT_FDCWD, item, dates.data(), AT_SYMLINK_NOFOLLOW);
    });
}

} // namespace

// The on-disk item's, unchanged: a plain file is as long as its on-disk file.
NBErrnoOr<struct stat> NBNimbrelFS::attributesOfItemAtPath(const std::string &path)
{
    struct stat status = {};
    const NBDone done = callOnPath(_securePathWithPath(path),
                                   [&](const char *item) { return ::lstat(item, &status); });
    if (!done)
        return done.error();
    return status;
}

NBErrnoOr<struct statvfs> NBNimbrelFS::attributesOfFileSystemForPath(const std::string &path)
{
    struct statvfs status = {};
    const NBDone done = callOnPath(_securePathWithPath(path),
                                   [&](const char *item) { return ::statvfs(item, &status); });
    if (!done)
        return done.error();
    return status;
}

NBDone NBNimbrelFS::setAttributes(const NBItemAttributes &attributes, const std::string &path,
                                  NBFileHandle *userData)
{
    if (attributes.size)
        if (const StageEnd end = setSize(*attributes.size, path, userData))
            return *end;
    if (attributes.flags)
        if (const StageEnd end = setFlags(*attributes.flags, path, userData))
            return *end;
    return setOtherAttributes(attributes, path);
}

NBNimbrelFS::StageEnd NBNimbrelFS::setFlags(std::uint32_t flags, const std::string &path,
                                            const NBFileHandle *userData)
{
    UniqueFd own;
    if (userData == nullptr) {
        // Flags are set through a descriptor here; a pipe must not make the opening wait.
        constexpr int openFlags = O_RDONLY | O_NONBLOCK | O_NOFOLLOW;
        NBErrnoOr<UniqueFd> opened = openOnDisk(_securePathWithPath(path), openFlags);
        if (!opened)
            return opened.error();
        own = *std::move(opened);
    }
    const int descriptor = userData == nullptr ? own.get() : userData->descriptor.get();
    if (::ioctl(descriptor, FS_IOC_SETFLAGS, &flags) != 0)
        return NBErrno::last();
    return std::nullopt;
}

// By path, also where a file is open. Owner first: a change of owner clears set-uid bits.
NBDone NBNimbrelFS::setOtherAttributes(const NBItemAttributes &attributes, const std::string &path)
{
    const std::string onDiskPath = _securePathWithPath(path);
    for (const auto stage : {setOwner, setPermissions, setDates})
        if (const NBDone done = stage(onDiskPath, attributes); !done)
            return done;
    return {};
}

} // namespace nimbrel
