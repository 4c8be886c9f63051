#include "fs/TreeRemoval.h"

#include "config/UniqueFd.h"
#include "crypto/CHandle.h"
#include "fs/DirectoryNames.h"

#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace nimbrel {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// A folder on the way down, and which of its subfolders the way took.
struct Level
{
    dev_t device;
    ino_t inode;
    std::string subfolder;
};

// True when the entry is gone, false when it is a folder that isn't empty.
NBErrnoOr<bool> removeEntry(int folder, const char *name)
{
    if (::unlinkat(folder, name, 0) == 0)
        return true;
    if (errno != EISDIR)
        return NBErrno::last();
    if (::unlinkat(folder, name, AT_REMOVEDIR) == 0)
        return true;
    if (errno == ENOTEMPTY || errno == EEXIST)
        return false;
    return NBErrno::last();
}

// Removes what can be removed without going down; gives a subfolder to go down into, if any.
NBErrnoOr<std::optional<std::string>> clearFolder(int folder)
{
    const DirectoryHandle stream(openDirectoryAt(folder, "."));
    if (stream == nullptr)
        return NBErrno::last();
    bool removedAny = false;
    for (;;) {
        errno = 0;
        const dirent *entry = ::readdir(stream.get());
        if (entry == nullptr && errno != 0)
            return NBErrno::last();
        if (entry == nullptr && !removedAny)
            return std::optional<std::string>();
        if (entry == nullptr) { // a stream may skip entries when others go
            removedAny = false;
            ::rewinddir(stream.get());
            continue;
        }
        if (isDotName(entry->d_name))
            continue;
        const NBErrnoOr<bool> removed = removeEntry(folder, entry->d_name);
        if (!removed)
            return removed.error();
        if (!*removed)
            return std::optional<std::string>(entry->d_name);
        removedAny = true;
    }
}

NBDone goDown(UniqueFd &folder, std::vector<Level> &levels, const std::string &subfolder)
{
    struct stat status = {};
    if (::fstat(folder.get(), &status) != 0)
        return NBErrno::last();
    UniqueFd next(::openat(folder.get(), subfolder.c_str(), folderFlags));
    if (!next)
        return NBErrno::last();
    levels.push_back({status.st_dev, status.st_ino, subfolder});
    folder = std::move(next);
    return {};
}

// Back to the folder that the way came from, which a descriptor of its own doesn't hold open: the
// depth is not bounded by the number of open files.
NBDone goUp(UniqueFd &folder, std::vector<Level> &levels)
{
    UniqueFd parent(::openat(folder.get(), "..", folderFlags));
    struct stat status = {};
    if (!parent || ::fstat(parent.get(), &status) != 0)
        return NBErrno::last();
    const Level level = std::move(levels.back());
    levels.pop_back();
    if (status.st_dev != level.device || status.st_ino != level.inode)
        return NBErrno{ESTALE}; // somebody moved the subfolder
    if (::unlinkat(parent.get(), level.subfolder.c_str(), AT_REMOVEDIR) != 0)
        return NBErrno::last();
    folder = std::move(parent);
    return {};
}

NBDone clearTree(UniqueFd folder)
{
    std::vector<Level> levels;
    for (;;) {
        const NBErrnoOr<std::optional<std::string>> subfolder = clearFolder(folder.get());
        if (!subfolder)
            return subfolder.error();
        if (!*subfolder && levels.empty())
            return {};
        const NBDone moved =
            *subfolder ? goDown(folder, levels, **subfolder) : goUp(folder, levels);
        if (!moved)
            return moved;
    }
}

} // namespace

NBDone removeTree(const char *path)
{
    const NBErrnoOr<bool> removed = removeEntry(AT_FDCWD, path);
    if (!removed)
        return removed.error();
    if (*removed)
        return {};
    UniqueFd folder(::open(path, folderFlags));
    if (!folder)
        return NBErrno::last();
    if (const NBDone cleared = clearTree(std::move(folder)); !cleared)
        return cleared;
    if (::rmdir(path) != 0)
        return NBErrno::last();
    return {};
}

} // namespace nimbrel
