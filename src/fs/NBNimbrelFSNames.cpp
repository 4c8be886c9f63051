#include "fs/NBNimbrelFS.h"

#include "fs/DirectoryStream.h"
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

} // namespace

// With encrypted names all that doesn't decode is hidden, at every depth; with plain names only the
// root hides what is the folder's own.
bool NBNimbrelFS::isListed(NBDirectoryEntry &entry, bool isInRoot) const
{
    if (_settings.areFilenamesEncrypted)
        return _cryptor.decodeName(entry.storedName, entry.name) && entry.name != entry.storedName;
    entry.name = entry.storedName;
    return !isInRoot || std::ranges::find(ownFiles, entry.name) == ownFiles.end();
}

NBDone NBNimbrelFS::listFolder(const std::string &path, std::vector<std::string> &names)
{
    NBErrnoOr<DirectoryStream> stream = DirectoryStream::open(_securePathWithPath(path));
    if (!stream)
        return stream.error();
    NBDirectoryEntry entry;
    for (;;) {
        const NBErrnoOr<const dirent *> stored = stream->next();
        if (!stored)
            return stored.error();
        if (*stored == nullptr)
            return {};
        entry.storedName = (*stored)->d_name;
        if (!isDotName(entry.storedName) && isListed(entry, path == "/"))
            names.push_back(entry.name);
    }
}

NBDirectoryListing NBNimbrelFS::contentsOfDirectoryAtPath(const std::string &path)
{
    NBDirectoryListing listing;
    const NBDone listed = listFolder(path, listing.names);
    return listed ? listing : NBDirectoryListing{{}, listed.code()};
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
