// Opening and making files.
#include "fs/GuardedTree.h"

#include "fs/ConfigurationProtection.h"
#include "fs/OwnerAccess.h"
#include "fs/PlainPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace nimbrel {

namespace {

constexpr int mostTries = 8;

// The flags that mean the same on the on-disk file. O_APPEND would make the kernel ignore offsets,
// and O_DIRECT ask for aligned buffers.
constexpr int keptFlags = O_ACCMODE | O_TRUNC | O_SYNC | O_DSYNC | O_NOATIME;

// Never through a link, and never waiting for a pipe's other end.
constexpr int addedFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

bool isForWriting(int flags)
{
    return (flags & O_ACCMODE) != O_RDONLY || (flags & O_TRUNC) != 0;
}

mode_t permissionsFor(int flags)
{
    switch (flags & O_ACCMODE) {
    case O_RDONLY:
        return (flags & O_TRUNC) == 0 ? S_IRUSR : S_IRUSR | S_IWUSR;
    case O_WRONLY:
        return S_IWUSR;
    default:
        return S_IRUSR | S_IWUSR;
    }
}

NBDone checkIsFile(const NBFileHandle &file)
{
    struct stat attributes = {};
    if (::fstat(file.descriptor.get(), &attributes) != 0)
        return NBErrno::last();
    if (S_ISREG(attributes.st_mode))
        return {};
    return NBErrno{S_ISDIR(attributes.st_mode) ? EISDIR : ENXIO};
}

} // namespace

NBErrnoOr<NBFileHandle> GuardedTree::open(const std::string &path, int flags)
{
    if (isForWriting(flags))
        if (const NBDone allowed = checkChange(path); !allowed)
            return allowed.error();
    NBErrnoOr<NBFileHandle> file = openOnce(path, flags & keptFlags);
    if (file.code() == EPERM && (flags & O_NOATIME) != 0)
        // Only the owner may leave the access time alone, and that is asked of this process.
        return openOnce(path, flags & keptFlags & ~O_NOATIME);
    if (file.code() != EACCES)
        return file;
    const mode_t needed = _isCheckedByKernel ? 0 : permissionsFor(flags);
    const auto again = [&]() -> NBDone {
        file = openOnce(path, flags & keptFlags);
        return file ? NBDone() : file.error();
    };
    const NBDone opened = withOwnerAccess(_delegate._securePathWithPath(path), needed, again);
    if (!opened)
        return opened.error();
    return file;
}

NBErrnoOr<NBFileHandle> GuardedTree::openOnce(const std::string &path, int flags)
{
    NBErrnoOr<NBFileHandle> file = _delegate.openFileAtPath(path, flags | addedFlags);
    // Somebody has a lease on the file and is asked to give it up, which is worth the waiting. Only
    // a regular file can have one.
    if (file.code() == EWOULDBLOCK)
        file = _delegate.openFileAtPath(path, (flags | addedFlags) & ~O_NONBLOCK);
    if (!file)
        return file;
    if (const NBDone isFile = checkIsFile(*file); !isFile)
        return isFile.error();
    return file;
}

NBErrnoOr<NBFileHandle> GuardedTree::create(const std::string &path, int flags, mode_t mode,
                                            Creator creator)
{
    if (const NBDone allowed = checkNew(path); !allowed)
        return allowed.error();
    const int added = (flags & (O_SYNC | O_DSYNC)) | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    for (int i = 0; i < mostTries; ++i) {
        NBErrnoOr<NBFileHandle> file = _delegate.createFileAtPath(path, mode, added);
        if (file) {
            const std::string folder = _delegate._securePathWithPath(folderOf(path));
            const NBDone given = giveTo(creator, file->descriptor.get(), folder);
            if (given)
                return file;
            (void)removeFile(path); // the first error is the one to tell
            return given.error();
        }
        if (file.code() != EEXIST || (flags & O_EXCL) != 0)
            return file;
        // Another program was faster: its file is opened, and cut only where that is asked for.
        file = open(path, flags);
        if (file.code() != ENOENT)
            return file;
    }
    return NBErrno{EAGAIN}; // made and removed again and again
}

} // namespace nimbrel
