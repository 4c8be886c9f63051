#include "fs/MountPointCheck.h"

#include "config/UniqueFd.h"
#include "crypto/CHandle.h"
#include "fs/FolderRelation.h"
#include "fs/MountTable.h"
#include "fs/Unmounting.h"

#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace nimbrel {

namespace {

using Trouble = std::optional<MountFailure>;
using Cause = MountFailure::Cause;

// Messages are one line, whatever a path holds.
std::string shown(std::string path)
{
    for (char &character : path)
        if (static_cast<unsigned char>(character) < ' ' || character == '\x7f')
            character = '?';
    return path;
}

std::string reason(int code)
{
    return std::generic_category().message(code);
}

template <class... Arguments>
MountFailure trouble(Cause cause, fmt::format_string<Arguments...> text, Arguments &&...arguments)
{
    return {cause, fmt::format(text, std::forward<Arguments>(arguments)...)};
}

// Final slashes would have the system look into a folder that may be a dead disk.
std::string withoutFinalSlashes(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

// Links and dots resolved, nothing asked of the last folder itself; nothing with errno.
std::optional<std::string> canonical(const std::string &path)
{
    const CHandle<char, std::free> resolved(::realpath(withoutFinalSlashes(path).c_str(), nullptr));
    return resolved ? std::optional<std::string>(resolved.get()) : std::nullopt;
}

Trouble checkEncryptedFolder(const std::string &folder)
{
    const UniqueFd opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened && ::faccessat(opened.get(), ".", X_OK, AT_EACCESS) == 0)
        return std::nullopt;
    const int code = errno;
    const std::string name = shown(folder);
    switch (code) {
    case ENOENT:
        return trouble(Cause::Folder,
                       "The encrypted folder {} doesn't exist. Check the path, and that the disk "
                       "or cloud folder it lies in is there.",
                       name);
    case ENOTDIR:
        return trouble(Cause::Folder, "{} isn't a folder. Choose the encrypted folder itself.",
                       name);
    case EACCES:
        return trouble(Cause::Folder,
                       "The encrypted folder {} can't be read: {}. Ask its owner for the right to "
                       "read and enter it.",
                       name, reason(code));
    default:
        return trouble(Cause::Folder,
                       "The encrypted folder {} can't be opened: {}. Check the disk it lies on.",
                       name, reason(code));
    }
}

MountFailure unresolved(const std::string &path, int code)
{
    const std::string name = shown(path);
    if (code == ENOENT)
        return trouble(Cause::MountPoint,
                       "The mount point {} doesn't exist. Make an empty folder there first.", name);
    if (code == ENOTDIR)
        return trouble(Cause::MountPoint, "{} isn't a folder. Choose an empty folder.", name);
    return trouble(Cause::MountPoint,
                   "The mount point {} can't be reached: {}. Choose a folder of your own.", name,
                   reason(code));
}

// Dead disks may lie one over another when several processes died.
Trouble clearDeadMounts(const std::string &point)
{
    while (isDeadMount(point)) {
        const NBDone done = detachDisk(point);
        // Nothing is there any more where the keeper of the dead program was faster.
        if (!done && done.code() != EINVAL)
            return trouble(Cause::MountPoint,
                           "The disk at {} has lost its program and can't be detached: {}. Run "
                           "`sudo umount -l` on it, then try again.",
                           shown(point), reason(done.code()));
    }
    return std::nullopt;
}

Trouble checkNoMount(const std::string &point)
{
    const std::optional<Mount> mount = mountAt(point);
    if (!mount)
        return std::nullopt;
    const std::string name = shown(point);
    if (mount->type == "fuse.nimbrel")
        return trouble(Cause::MountPoint,
                       "{} already shows the encrypted folder {}. Unmount it first, or choose "
                       "another folder.",
                       name, shown(mount->source));
    return trouble(Cause::MountPoint,
                   "{} already is a mount, of {} ({}). Choose another, empty folder.", name,
                   shown(mount->source), shown(mount->type));
}

Trouble checkFolder(const std::string &point)
{
    struct stat found = {};
    if (::stat(point.c_str(), &found) != 0)
        return unresolved(point, errno);
    return S_ISDIR(found.st_mode) ? std::nullopt : Trouble(unresolved(point, ENOTDIR));
}

Trouble checkRelation(const std::string &point, const std::string &encryptedFolder)
{
    switch (relationOf(point, encryptedFolder)) {
    case FolderRelation::Apart:
        return std::nullopt;
    case FolderRelation::Same:
        return trouble(Cause::MountPoint,
                       "{} is the encrypted folder itself. Choose another, empty folder to mount "
                       "on.",
                       shown(point));
    case FolderRelation::Inside:
        return trouble(Cause::MountPoint,
                       "{} lies inside the encrypted folder {}. Choose a folder outside of it.",
                       shown(point), shown(encryptedFolder));
    case FolderRelation::Above:
        break;
    }
    return trouble(Cause::MountPoint,
                   "{} holds the encrypted folder {}, which the disk would hide. Choose another, "
                   "empty folder.",
                   shown(point), shown(encryptedFolder));
}

// What fusermount3 demands of an ordinary user's mount point.
Trouble checkRights(const std::string &point)
{
    const uid_t user = ::geteuid();
    if (user == 0)
        return std::nullopt;
    struct stat found = {};
    if (::stat(point.c_str(), &found) != 0)
        return unresolved(point, errno);
    if ((found.st_mode & S_ISVTX) != 0 && found.st_uid != user)
        return trouble(Cause::MountPoint,
                       "{} is shared by all users and isn't yours. Make a folder in it and choose "
                       "that.",
                       shown(point));
    if (::faccessat(AT_FDCWD, point.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        return trouble(Cause::MountPoint,
                       "You may not write to {}: {}. Choose a folder of your own.", shown(point),
                       reason(errno));
    return std::nullopt;
}

Trouble checkEmpty(const std::string &point)
{
    const CHandle<DIR, ::closedir> folder(::opendir(point.c_str()));
    if (!folder)
        return trouble(Cause::MountPoint, "{} can't be read: {}. Choose a folder of your own.",
                       shown(point), reason(errno));
    while (const dirent *entry = ::readdir(folder.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            return trouble(Cause::MountPoint,
                           "{} isn't empty. Choose an empty folder, or move its files away first.",
                           shown(point));
    }
    return std::nullopt;
}

Trouble checkMountPoint(const std::string &encryptedFolder, const std::string &point, bool nonempty)
{
    if (Trouble found = clearDeadMounts(point))
        return found;
    if (Trouble found = checkNoMount(point))
        return found;
    if (Trouble found = checkFolder(point))
        return found;
    if (Trouble found = checkRelation(point, encryptedFolder))
        return found;
    if (Trouble found = checkRights(point))
        return found;
    return nonempty ? std::nullopt : checkEmpty(point);
}

} // namespace

CheckedMountPoint checkMount(const std::string &encryptedFolder, const std::string &mountPoint,
                             bool nonempty)
{
    if (Trouble found = checkEncryptedFolder(encryptedFolder))
        return *std::move(found);
    const std::optional<std::string> folder = canonical(encryptedFolder);
    if (!folder)
        return trouble(Cause::Folder, "The encrypted folder {} can't be found: {}. Check the path.",
                       shown(encryptedFolder), reason(errno));
    const std::optional<std::string> point = canonical(mountPoint);
    if (!point)
        return unresolved(mountPoint, errno);
    if (Trouble found = checkMountPoint(*folder, *point, nonempty))
        return *std::move(found);
    return *point;
}

} // namespace nimbrel
