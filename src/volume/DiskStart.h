#pragma once

#include "fs/UserFileSystem.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace nimbrel {

class MountPointFolder;

// The part of a mount that waits for the system; called on a pool thread. One at a time in the
// whole process, so that of two disks for one mount point the second finds the first.
class DiskStart final
{
public:
    DiskStart(std::shared_ptr<UserFileSystem> disk, std::shared_ptr<MountPointFolder> folder,
              std::vector<std::string> options,
              std::function<void(const MountFailure &)> mountFailed);

    void operator()() const;

private:
    std::shared_ptr<UserFileSystem> _disk;
    std::shared_ptr<MountPointFolder> _folder;
    std::vector<std::string> _options;
    std::function<void(const MountFailure &)> _mountFailed;
};

} // namespace nimbrel
