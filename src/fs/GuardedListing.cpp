#include "fs/GuardedListing.h"

#include "crypto/StoredName.h"
#include "fs/LinkLength.h"

namespace nimbrel {

namespace {

bool canBeName(std::string_view name)
{
    return !name.empty() && !isDotName(name) && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

} // namespace

NBErrnoOr<GuardedListing> GuardedListing::open(NBNimbrelFS &delegate, const std::string &path)
{
    NBErrnoOr<DirectoryStream> stream = DirectoryStream::open(delegate._securePathWithPath(path));
    if (!stream)
        return stream.error();
    return GuardedListing(delegate, *std::move(stream), path == "/");
}

NBErrnoOr<NBDirectoryEntry *> GuardedListing::next()
{
    for (;;) {
        const NBErrnoOr<const dirent *> stored = _stream.next();
        if (!stored)
            return stored.error();
        if (*stored == nullptr)
            return static_cast<NBDirectoryEntry *>(nullptr);
        if (shows(**stored))
            return &_entry;
    }
}

bool GuardedListing::shows(const dirent &stored)
{
    _entry.storedName = stored.d_name;
    _entry.inode = stored.d_ino;
    _entry.type = stored.d_type;
    _entry.next = stored.d_off;
    if (isDotName(_entry.storedName)) {
        _entry.name = _entry.storedName;
        return true;
    }
    if (!_delegate->isListed(_entry, _isRoot) || !canBeName(_entry.name))
        return false;
    // What the encoder wouldn't write can't be opened by its plain name: that leads to another
    // stored name. Of a canonical one that decodes, the encoder gives every byte again.
    return !_delegate->settings().areFilenamesEncrypted || isCanonicalStoredName(_entry.storedName);
}

NBErrnoOr<struct stat> GuardedListing::attributesOf(const NBDirectoryEntry &entry) const
{
    NBErrnoOr<struct stat> attributes = _stream.attributesOf(entry.storedName.c_str());
    if (attributes && S_ISLNK(attributes->st_mode))
        attributes->st_size = plainTargetLength(attributes->st_size);
    return attributes;
}

} // namespace nimbrel
