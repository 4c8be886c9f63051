#include "volume/DiskStart.h"

#include "volume/MountPointFolder.h"

#include <mutex>
#include <utility>

namespace nimbrel {

DiskStart::DiskStart(std::shared_ptr<UserFileSystem> disk, std::shared_ptr<MountPointFolder> folder,
                     std::vector<std::string> options,
                     std::function<void(const MountFailure &)> mountFailed)
    : _disk(std::move(disk)), _folder(std::move(folder)), _options(std::move(options)),
      _mountFailed(std::move(mountFailed))
{
}

void DiskStart::operator()() const
{
    static std::mutex turn;
    const std::scoped_lock lock(turn);
    if (const std::optional<MountFailure> failure = _folder->prepare())
        return _mountFailed(*failure);
    _disk->mountAtPath(_folder->path(), _options);
}

} // namespace nimbrel
