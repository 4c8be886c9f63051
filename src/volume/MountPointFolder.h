#pragma once

#include "config/UniqueFd.h"
#include "fs/UserFileSystem.h"

#include <optional>
#include <string>

namespace nimbrel {

// The folder that a disk is mounted on: made with the mount, removed after it. While the disk
// stands nobody may write into the folder below it, so that a program which goes on after the
// disk's sudden end meets an error in place of storing plain files there.
class MountPointFolder final
{
public:
    // `root` is made, too, with all that is missing above it.
    MountPointFolder(std::string root, std::string name);

    [[nodiscard]] const std::string &path() const noexcept { return _path; }

    // Nothing when the folder is there and ready to be mounted on. Refuses a name that would lead
    // out of the root.
    [[nodiscard]] std::optional<MountFailure> prepare();
    // For a mounted disk: locks the folder below.
    void protect();
    // For a mount that failed: removes what prepare() made.
    void giveUp();
    // After the disk: removes the folder if it is empty.
    void remove();

private:
    [[nodiscard]] std::optional<MountFailure> makeFolder();
    void setWritable(bool writable);

    std::string _root;
    std::string _name;
    std::string _path;
    UniqueFd _below; // opened before the mount: it stays the folder below
    bool _made = false;
};

} // namespace nimbrel
