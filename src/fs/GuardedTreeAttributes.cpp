// Owners, permissions, dates and extended attributes.
#include "fs/GuardedTree.h"

#include "fs/ConfigurationProtection.h"
#include "fs/OnDiskPath.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace nimbrel {

namespace {

NBDone setOwner(int descriptor, const NBItemAttributes &attributes)
{
    if (!attributes.owner && !attributes.group)
        return {};
    constexpr auto unchanged = static_cast<uid_t>(-1);
    const int result = ::fchown(descriptor, attributes.owner.value_or(unchanged),
                                attributes.group.value_or(unchanged));
    return result == 0 ? NBDone() : NBErrno::last();
}

NBDone setPermissions(int descriptor, const NBItemAttributes &attributes)
{
    if (!attributes.posixPermissions)
        return {};
    return changeMode(descriptor, *attributes.posixPermissions);
}

NBDone setDates(int descriptor, const NBItemAttributes &attributes)
{
    if (!attributes.accessDate && !attributes.modificationDate)
        return {};
    constexpr timespec unchanged{.tv_sec = 0, .tv_nsec = UTIME_OMIT};
    const std::array<timespec, 2> dates = {attributes.accessDate.value_or(unchanged),
                                           attributes.modificationDate.value_or(unchanged)};
    return ::futimens(descriptor, dates.data()) == 0 ? NBDone() : NBErrno::last();
}

bool isAccessList(std::string_view name)
{
    return name == "system.posix_acl_access" || name == "system.posix_acl_default";
}

std::vector<std::string> namesIn(std::string_view list)
{
    std::vector<std::string> names;
    while (!list.empty()) {
        const std::string_view name = list.substr(0, list.find('\0'));
        names.emplace_back(name);
        list.remove_prefix(std::min(list.size(), name.size() + 1));
    }
    return names;
}

} // namespace

NBDone GuardedTree::setAttributes(const std::string &path, const NBItemAttributes &attributes)
{
    if (attributes.size)
        return NBErrno{EINVAL};
    if (NBDone allowed = checkChange(path); !allowed)
        return allowed;
    return _delegate.setAttributes(attributes, path, nullptr);
}

// Not by the delegate, which takes the path for all but the size: the name may be gone.
NBDone GuardedTree::setAttributes(NBFileHandle &file, const NBItemAttributes &attributes)
{
    if (attributes.size)
        return NBErrno{EINVAL};
    if (isConfiguration(_delegate, file))
        return NBErrno{EPERM};
    if (attributes.flags) {
        NBItemAttributes flags;
        flags.flags = attributes.flags;
        if (NBDone done = _delegate.setAttributes(flags, "/", &file); !done)
            return done;
    }
    // Owner first: a change of owner clears set-uid bits, and each change is a new time.
    for (const auto set : {setOwner, setPermissions, setDates})
        if (NBDone done = set(file.descriptor.get(), attributes); !done)
            return done;
    return {};
}

NBDone GuardedTree::dropPrivileges(const NBFileHandle &file)
{
    if (!mayChangeOwners())
        return {};
    const NBErrnoOr<struct stat> attributes = this->attributes(file);
    if (!attributes)
        return attributes.error();
    const mode_t mode = attributes->st_mode & 07777U;
    // Without the right to execute, set-gid is an old sign for locks and stays.
    const mode_t dropped = (mode & S_IXGRP) != 0 ? S_ISUID | S_ISGID : S_ISUID;
    return (mode & dropped) == 0 ? NBDone() : changeMode(file.descriptor.get(), mode & ~dropped);
}

NBDone GuardedTree::checkAccess(const std::string &path, int mask)
{
    if ((mask & W_OK) != 0)
        if (NBDone allowed = checkChange(path); !allowed)
            return allowed;
    return callOnPath(_delegate._securePathWithPath(path), [&](const char *item) {
        return ::faccessat(AT_FDCWD, item, mask, AT_EACCESS | AT_SYMLINK_NOFOLLOW);
    });
}

void GuardedTree::lookForAccessLists()
{
    for (const char *name : {"system.posix_acl_access", "system.posix_acl_default"})
        _hasAccessLists = _hasAccessLists || _delegate.valueOfExtendedAttribute(name, "/");
}

std::vector<std::string> GuardedTree::noted(std::vector<std::string> names)
{
    _hasAccessLists = _hasAccessLists || std::ranges::any_of(names, isAccessList);
    return names;
}

// Not by the delegate, which loses its way behind a name that isn't ASCII: a copy of such a file
// would ask for attributes that aren't there, and fail.
NBErrnoOr<std::vector<std::string>> GuardedTree::extendedAttributes(const std::string &path)
{
    const std::string onDiskPath = _delegate._securePathWithPath(path);
    for (;;) {
        std::string list;
        const NBDone done = callOnPath(onDiskPath, [&](const char *item) {
            ssize_t length = ::llistxattr(item, nullptr, 0);
            if (length <= 0)
                return length;
            list.resize(static_cast<std::size_t>(length));
            length = ::llistxattr(item, list.data(), list.size());
            list.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
            return length;
        });
        if (done)
            return noted(namesIn(list));
        if (done.code() != ERANGE) // else one was added meanwhile
            return done.error();
    }
}

NBErrnoOr<Bytes> GuardedTree::extendedAttribute(const std::string &path, const std::string &name)
{
    NBErrnoOr<Bytes> value = _delegate.valueOfExtendedAttribute(name, path);
    if (isAccessList(name))
        _hasAccessLists = _hasAccessLists || value;
    // "None here" is asked again for each file of a listing, "not on this disk" once.
    const bool isNever = name == "security.selinux" ||
                         (isAccessList(name) && !_hasAccessLists && !_isCheckedByKernel);
    return value.code() == ENODATA && isNever ? NBErrno{EOPNOTSUPP} : std::move(value);
}

NBDone GuardedTree::setExtendedAttribute(const std::string &path, const std::string &name,
                                         ByteView value, int options)
{
    if (NBDone allowed = checkChange(path); !allowed)
        return allowed;
    _hasAccessLists = _hasAccessLists || isAccessList(name);
    return _delegate.setExtendedAttribute(name, path, value, options);
}

NBDone GuardedTree::removeExtendedAttribute(const std::string &path, const std::string &name)
{
    if (NBDone allowed = checkChange(path); !allowed)
        return allowed;
    return _delegate.removeExtendedAttribute(name, path);
}

} // namespace nimbrel
