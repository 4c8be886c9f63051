#include "volume/MountPointFolder.h"

#include "fs/MountTable.h"
#include "fs/Unmounting.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace nimbrel {

namespace {

MountFailure trouble(std::string message)
{
    return {MountFailure::Cause::MountPoint, std::move(message)};
}

bool isOneName(const std::string &name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

std::string reason(int code)
{
    return std::generic_category().message(code);
}

} // namespace

MountPointFolder::MountPointFolder(std::string root, std::string name)
    : _root(std::move(root)), _name(std::move(name)), _path(_root + "/" + _name)
{
}

std::optional<MountFailure> MountPointFolder::prepare()
{
    if (!isOneName(_name))
        return trouble(fmt::format("A disk can't be called \"{}\". Give the volume a name without "
                                   "\"/\".",
                                   _name));
    std::error_code error;
    std::filesystem::create_directories(_root, error);
    if (error)
        return trouble(fmt::format("The folder {} can't be made: {}. Disks are shown in it; check "
                                   "that you may write to the folder above.",
                                   _root, error.message()));
    if (auto failure = makeFolder())
        return failure;
    // A dead disk would keep its folder out of reach. A living one is not ours to change.
    while (isDeadMount(_path) && detachDisk(_path)) {
    }
    if (mountAt(_path))
        return std::nullopt;
    _below = UniqueFd(::open(_path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    setWritable(true);
    return std::nullopt;
}

std::optional<MountFailure> MountPointFolder::makeFolder()
{
    _made = ::mkdir(_path.c_str(), 0700) == 0;
    if (_made || errno == EEXIST)
        return std::nullopt; // what stands there is judged by the mount
    return trouble(
        fmt::format("The folder {} can't be made: {}. The disk is shown in it; check that "
                    "you may write to {}.",
                    _path, reason(errno), _root));
}

void MountPointFolder::protect()
{
    setWritable(false);
    _below = UniqueFd();
}

// An ordinary user's mount needs a writable folder. Someone else's folder can't be changed, and the
// mount says what it thinks of it.
void MountPointFolder::setWritable(bool writable)
{
    struct stat found = {};
    if (!_below || ::fstat(_below.get(), &found) != 0)
        return;
    const mode_t mode = found.st_mode & ALLPERMS;
    const mode_t wanted = writable ? mode | S_IRWXU : mode & ~mode_t{S_IWUSR | S_IWGRP | S_IWOTH};
    if (mode != wanted)
        (void)::fchmod(_below.get(), wanted);
}

void MountPointFolder::giveUp()
{
    _below = UniqueFd();
    if (_made)
        (void)::rmdir(_path.c_str());
}

void MountPointFolder::remove()
{
    (void)::rmdir(_path.c_str());
}

} // namespace nimbrel
