#pragma once

#include <string>

namespace nimbrel {

// How a mount point lies to an encrypted folder.
enum class FolderRelation
{
    Apart,
    Same,
    Inside, // the mount point is in the encrypted folder
    Above   // the encrypted folder is in the mount point
};

// Both are canonical paths of folders. Finds the relation also where one of them is seen through a
// bind mount or under another spelling of a name.
[[nodiscard]] FolderRelation relationOf(const std::string &mountPoint,
                                        const std::string &encryptedFolder);

} // namespace nimbrel
