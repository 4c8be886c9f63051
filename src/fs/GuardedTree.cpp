#include "fs/GuardedTree.h"

#include "crypto/Utf8.h"
#include "fs/ConfigurationProtection.h"
#include "fs/LinkLength.h"
#include "fs/OnDiskPath.h"
#include "fs/PlainPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel {

namespace {

constexpr std::size_t longestStoredName = 255;         // bytes, on every usual store
constexpr std::size_t longestEncryptedPlainName = 189; // its stored form has 255 bytes

} // namespace

GuardedTree::GuardedTree(NBNimbrelFS &delegate) : _delegate(delegate) {}

std::size_t GuardedTree::longestName() const noexcept
{
    return _delegate.settings().areFilenamesEncrypted ? longestEncryptedPlainName
                                                      : longestStoredName;
}

NBDone GuardedTree::checkName(std::string_view name) const
{
    if (name.size() > longestName())
        return NBErrno{ENAMETOOLONG};
    if (_delegate.settings().areFilenamesEncrypted && !isUtf8(name))
        return NBErrno{EILSEQ};
    return {};
}

NBDone GuardedTree::checkChange(const std::string &path)
{
    return isConfiguration(_delegate, path) ? NBErrno{EPERM} : NBDone();
}

NBDone GuardedTree::checkNew(const std::string &path)
{
    const NBDone named = checkName(nameOf(path));
    return named ? checkChange(path) : named;
}

NBErrnoOr<struct stat> GuardedTree::attributes(const std::string &path)
{
    NBErrnoOr<struct stat> attributes = _delegate.attributesOfItemAtPath(path);
    if (!attributes || !S_ISLNK(attributes->st_mode))
        return attributes;
    if (nameOf(path).empty())
        return rootAttributes();
    attributes->st_size = plainTargetLength(attributes->st_size);
    return attributes;
}

// The encrypted folder may be given by a link; the disk's root is a folder all the same.
NBErrnoOr<struct stat> GuardedTree::rootAttributes()
{
    struct stat attributes = {};
    const NBDone done = callOnPath(_delegate.rootPath(),
                                   [&](const char *root) { return ::stat(root, &attributes); });
    if (!done)
        return done.error();
    return attributes;
}

NBErrnoOr<struct stat> GuardedTree::attributes(const NBFileHandle &file)
{
    struct stat attributes = {};
    if (::fstat(file.descriptor.get(), &attributes) != 0)
        return NBErrno::last();
    return attributes;
}

NBErrnoOr<struct statvfs> GuardedTree::fileSystem(const std::string &path)
{
    NBErrnoOr<struct statvfs> figures = _delegate.attributesOfFileSystemForPath(path);
    if (figures)
        figures->f_namemax = longestName();
    return figures;
}

NBErrnoOr<std::string> GuardedTree::linkTarget(const std::string &path)
{
    NBErrnoOr<std::string> target = _delegate.destinationOfSymbolicLinkAtPath(path);
    if (!target && target.code() == 0)
        return NBErrno{EIO}; // not one of ours, or damaged
    return target;
}

NBDone GuardedTree::syncFolder(const std::string &path)
{
    const NBErrnoOr<UniqueFd> folder =
        openOnDisk(_delegate._securePathWithPath(path), O_RDONLY | O_DIRECTORY);
    if (!folder)
        return folder.error();
    return ::fsync(folder->get()) == 0 ? NBDone() : NBErrno::last();
}

} // namespace nimbrel
