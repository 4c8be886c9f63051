#include "fs/FolderRelation.h"

#include "fs/MountTable.h"

#include <optional>
#include <sys/stat.h>
#include <vector>

namespace nimbrel {

namespace {

// The folder's path within its filesystem.
std::string innerPath(const Mount &mount, const std::string &folder)
{
    const std::string rest = mount.point == "/" ? folder : folder.substr(mount.point.size());
    return mount.root == "/" ? rest : mount.root + (rest == "/" ? "" : rest);
}

// A bind mount may show what lies inside `other` while no folder above leads there. Where a whole
// filesystem is shown, the folders above tell all, and some filesystems show each part as whole.
bool isShownFromInside(const std::string &folder, const std::string &other)
{
    const std::vector<Mount> table = mountTable();
    const std::optional<Mount> inner = mountOf(table, folder);
    const std::optional<Mount> outer = mountOf(table, other);
    return inner && outer && inner->root != "/" && inner->device == outer->device &&
           isAtOrBelow(inner->root, innerPath(*outer, other));
}

bool isSameFolder(const std::string &path, const struct stat &wanted)
{
    struct stat found = {};
    return ::stat(path.c_str(), &found) == 0 && found.st_dev == wanted.st_dev &&
           found.st_ino == wanted.st_ino;
}

// Whether `folder`, or one above it, is `other`.
bool hasAmongParents(const std::string &folder, const std::string &other)
{
    struct stat wanted = {};
    if (::stat(other.c_str(), &wanted) != 0)
        return false;
    for (std::string path = folder; !path.empty(); path.erase(path.rfind('/')))
        if (isSameFolder(path, wanted))
            return true;
    return isSameFolder("/", wanted);
}

bool isIn(const std::string &folder, const std::string &other)
{
    return isAtOrBelow(folder, other) || hasAmongParents(folder, other) ||
           isShownFromInside(folder, other);
}

} // namespace

FolderRelation relationOf(const std::string &mountPoint, const std::string &encryptedFolder)
{
    const bool inside = isIn(mountPoint, encryptedFolder);
    const bool above = isIn(encryptedFolder, mountPoint);
    if (inside && above)
        return FolderRelation::Same;
    if (inside)
        return FolderRelation::Inside;
    return above ? FolderRelation::Above : FolderRelation::Apart;
}

} // namespace nimbrel
