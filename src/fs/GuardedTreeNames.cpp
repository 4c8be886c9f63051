// Making, moving and removing names.
#include "fs/GuardedTree.h"

#include "crypto/Utf8.h"
#include "fs/OnDiskPath.h"
#include "fs/PlainPath.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel {

NBDone GuardedTree::handOver(const std::string &path, Creator creator,
                             NBDone (GuardedTree::*undo)(const std::string &))
{
    NBDone given = giveTo(creator, _delegate._securePathWithPath(path),
                          _delegate._securePathWithPath(folderOf(path)));
    if (!given)
        (void)(this->*undo)(path); // the first error is the one to tell
    return given;
}

NBDone GuardedTree::makeFolder(const std::string &path, mode_t mode, Creator creator)
{
    if (NBDone allowed = checkNew(path); !allowed)
        return allowed;
    NBItemAttributes attributes;
    attributes.posixPermissions = mode & 07777U;
    if (NBDone made = _delegate.createDirectoryAtPath(path, attributes); !made)
        return made;
    return handOver(path, creator, &GuardedTree::removeFolder);
}

NBDone GuardedTree::makeNode(const std::string &path, mode_t mode, dev_t device, Creator creator)
{
    if (NBDone allowed = checkNew(path); !allowed)
        return allowed;
    NBDone made = callOnPath(_delegate._securePathWithPath(path),
                             [&](const char *item) { return ::mknod(item, mode, device); });
    return made ? handOver(path, creator, &GuardedTree::removeFile) : made;
}

NBDone GuardedTree::makeLink(const std::string &path, const std::string &target, Creator creator)
{
    if (NBDone allowed = checkNew(path); !allowed)
        return allowed;
    if (target.empty())
        return NBErrno{ENOENT}; // symlink(2)'s own; its stored form isn't empty
    if (!isUtf8(target))
        return NBErrno{EILSEQ}; // it would be stored, and never decode
    if (NBDone made = _delegate.createSymbolicLinkAtPath(path, target); !made)
        return made;
    return handOver(path, creator, &GuardedTree::removeFile);
}

NBDone GuardedTree::hardLink(const std::string &path, const std::string &newPath)
{
    // A second name would be a way around the protection of the first.
    if (NBDone allowed = checkChange(path); !allowed)
        return allowed;
    if (NBDone allowed = checkNew(newPath); !allowed)
        return allowed;
    return _delegate.linkItemAtPath(path, newPath);
}

NBDone GuardedTree::move(const std::string &path, const std::string &newPath, unsigned flags)
{
    if (flags != 0 && flags != RENAME_NOREPLACE && flags != RENAME_EXCHANGE)
        return NBErrno{EINVAL};
    if (NBDone allowed = checkChange(path); !allowed)
        return allowed;
    if (NBDone allowed = checkNew(newPath); !allowed)
        return allowed;
    if (flags == RENAME_EXCHANGE)
        return _delegate.exchangeDataOfItemAtPath(path, newPath);
    if (flags == 0)
        return _delegate.moveItemAtPath(path, newPath);
    return callOnPaths(_delegate._securePathWithPath(path), _delegate._securePathWithPath(newPath),
                       [](const char *from, const char *to) {
                           return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
                       });
}

// Not by the delegate's removal, which takes a whole tree where a folder has come to stand there.
NBDone GuardedTree::removeFile(const std::string &path)
{
    if (NBDone allowed = checkChange(path); !allowed)
        return allowed;
    return callOnPath(_delegate._securePathWithPath(path), ::unlink);
}

NBDone GuardedTree::removeFolder(const std::string &path)
{
    return _delegate.removeDirectoryAtPath(path);
}

} // namespace nimbrel
