#include "fs/DirectoryStream.h"

#include "fs/OnDiskPath.h"

#include <cerrno>
#include <utility>

namespace nimbrel {

NBErrnoOr<DirectoryStream> DirectoryStream::open(const std::string &path)
{
    const OnDiskPath item(path);
    if (!item)
        return item.error();
    DirectoryHandle directory = openDirectoryAt(AT_FDCWD, item.get());
    if (directory == nullptr)
        return NBErrno::last();
    return DirectoryStream(std::move(directory));
}

NBErrnoOr<const dirent *> DirectoryStream::next()
{
    errno = 0;
    const dirent *entry = ::readdir(_directory.get());
    if (entry == nullptr && errno != 0)
        return NBErrno::last();
    return entry;
}

void DirectoryStream::seek(off_t place)
{
    if (place == 0)
        ::rewinddir(_directory.get());
    else
        ::seekdir(_directory.get(), place);
}

NBErrnoOr<struct stat> DirectoryStream::attributesOf(const char *storedName) const
{
    struct stat attributes = {};
    if (::fstatat(::dirfd(_directory.get()), storedName, &attributes, AT_SYMLINK_NOFOLLOW) != 0)
        return NBErrno::last();
    return attributes;
}

NBErrnoOr<struct stat> DirectoryStream::attributes() const
{
    struct stat attributes = {};
    if (::fstat(::dirfd(_directory.get()), &attributes) != 0)
        return NBErrno::last();
    return attributes;
}

} // namespace nimbrel
