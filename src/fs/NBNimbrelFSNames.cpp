#include "fs/NBNimbrelFS.h"

#include "fs/DirectoryNames.h"
#include "fs/OnDiskPath.h"
#include "fs/TreeRemoval.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace nimbrel {

namespace {

// What lies in the root beside the user's files, where plain names don't hide it by themselves.
constexpr std::array<std::string_view, 2> ownFiles = {".encfs6.xml", "Keyfile.nmx"};

NBDone readEntries(const std::string &path, std::vector<NBDirectoryEntry> &entries)
{
    const OnDiskPath item(path);
    if (!item)
        return item.error();
    const DirectoryHandle directory = openDirectoryAt(AT_FDCWD, item.get());
    if (directory == nullptr)
        return NBErrno::last();
    for (;;) {
        errno = 0;
        const dirent *entry = ::readdir(directory.get());
        if (entry == nullptr && errno != 0)
            return NBErrno::last();
        if (entry == nullptr)
            return {};
        if (!isDotName(entry->d_name))
            entries.push_back({{}, entry->d_name, entry->d_ino, entry->d_type});
    }
}

} // namespace

// Gives the entry its plain name. With encrypted names all that doesn't decode is hidden, at every
// depth; with plain names only the root hides what is the folder's own.
bool NBNimbrelFS::isListed(NBDirectoryEntry &entry, bool isRoot) const
{
    entry.name = _decodeFilename(entry.storedName);
    if (_settings.areFilenamesEncrypted)
        return entry.name != entry.storedName;
    return !isRoot || std::ranges::find(ownFiles, entry.name) == ownFiles.end();
}

NBDone NBNimbrelFS::listFolder(const std::string &path, std::vector<NBDirectoryEntry> &entries)
{
    if (NBDone read = readEntries(_securePathWithPath(path), entries); !read)
        return read;
    const bool isRoot = path == "/";
    std::erase_if(entries, [&](NBDirectoryEntry &entry) { return !isListed(entry, isRoot); });
    return {};
}

NBDirectoryListing NBNimbrelFS::contentsOfDirectoryAtPath(const std::string &path)
{
    std::vector<NBDirectoryEntry> entries;
    const NBDone listed = listFolder(path, entries);
    if (!listed)
        return {{}, listed.code()};
    NBDirectoryListing listing;
    listing.names.reserve(entries.size());
    for (NBDirectoryEntry &entry : entries)
        listing.names.push_back(std::move(entry.name));
    return listing;
}

NBErrnoOr<std::vector<NBDirectoryEntry>>
NBNimbrelFS::entriesOfDirectoryAtPath(const std::string &path)
{
    std::vector<NBDirectoryEntry> entries;
    if (const NBDone listed = listFolder(path, entries); !listed)
        return listed.error();
    return entries;
}

NBDone NBNimbrelFS::createDirectoryAtPath(const std::string &path,
                                          const NBItemAttributes &attributes)
{
    const std::string onDiskPath = _securePathWithPath(path);
    const mode_t mode = attributes.posixPermissions.value_or(0777);
    NBDone made = callOnPath(onDiskPath, [&](const char *item) { return ::mkdir(item, mode); });
    if (!made)
        return made;
    // The permissions are in force, under the umask; a chmod would go past it.
    NBItemAttributes others = attributes;
    others.posixPermissions.reset();
    return setOtherAttributes(others, path);
}

NBErrnoOr<NBFileHandle> NBNimbrelFS::createFileAtPath(const std::string &path,
                                                      mode_t posixPermissions, int additionalFlags)
{
    const int flags = O_RDWR | O_CREAT | O_TRUNC | additionalFlags;
    const mode_t mode = static_cast<std::uint16_t>(posixPermissions);
    NBErrnoOr<UniqueFd> descriptor = openOnDisk(_securePathWithPath(path), flags, mode);
    if (!descriptor)
        return descriptor.error();
    return NBFileHandle{.descriptor = *std::move(descriptor)};
}

NBDone NBNimbrelFS::moveItemAtPath(const std::string &path, const std::string &toPath)
{
    return callOnPaths(_securePathWithPath(path), _securePathWithPath(toPath), ::rename);
}

NBDone NBNimbrelFS::removeDirectoryAtPath(const std::string &path)
{
    return callOnPath(_securePathWithPath(path), ::rmdir);
}

NBDone NBNimbrelFS::removeItemAtPath(const std::string &path)
{
    const OnDiskPath item(_securePathWithPath(path));
    return item ? removeTree(item.get()) : NBDone(item.error());
}

NBDone NBNimbrelFS::exchangeDataOfItemAtPath(const std::string &path, const std::string &withPath)
{
    return callOnPaths(_securePathWithPath(path), _securePathWithPath(withPath),
                       [](const char *one, const char *other) {
                           return ::renameat2(AT_FDCWD, one, AT_FDCWD, other, RENAME_EXCHANGE);
                       });
}

} // namespace nimbrel
