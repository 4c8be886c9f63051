#include "config/AtomicFile.h"

#include "config/FileWork.h"
#include "config/UniqueFd.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nimbrel {

namespace {

// Follows symbolic links at the end of `path`, to a file that needn't exist. False with errno.
bool followLinks(std::string &path)
{
    constexpr int maximumLinks = 40; // the kernel's own
    for (int link = 0; link < maximumLinks; ++link) {
        std::array<char, PATH_MAX> buffer{};
        const ssize_t length = ::readlink(path.c_str(), buffer.data(), buffer.size());
        if (length < 0)
            return errno == EINVAL || errno == ENOENT; // not a link, or nothing
        const std::string target(buffer.data(), static_cast<std::size_t>(length));
        path = target.starts_with('/') ? target : pathIn(folderOfPath(path), target);
    }
    errno = ELOOP;
    return false;
}

// Gone at its end unless it was renamed.
class TemporaryFile final
{
public:
    explicit TemporaryFile(std::string path, unsigned mode)
        : _path(std::move(path)),
          _descriptor(::open(_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                             static_cast<mode_t>(mode)))
    {
    }
    ~TemporaryFile()
    {
        if (_descriptor && !_isRenamed)
            ::unlink(_path.c_str());
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    [[nodiscard]] bool isOpen() const noexcept { return static_cast<bool>(_descriptor); }
    [[nodiscard]] int descriptor() const noexcept { return _descriptor.get(); }
    [[nodiscard]] bool renameTo(const std::string &path)
    {
        _isRenamed = ::rename(_path.c_str(), path.c_str()) == 0;
        return _isRenamed;
    }

private:
    std::string _path;
    UniqueFd _descriptor;
    bool _isRenamed = false;
};

// The new file gets the old one's owner, group and permission bits, so that a folder stays its
// owner's when root writes. Who may not give files away, and filesystems that know no owners or
// bits, keep what they have.
bool takeOver(int descriptor, const struct stat &old)
{
    const auto isRefused = [] {
        return errno == EPERM || errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
    };
    constexpr auto sameOwner = static_cast<uid_t>(-1);
    if (::fchown(descriptor, old.st_uid, old.st_gid) != 0 &&
        ::fchown(descriptor, sameOwner, old.st_gid) != 0 && !isRefused())
        return false;
    return ::fchmod(descriptor, old.st_mode & 0777U) == 0 || isRefused();
}

struct Target
{
    std::string path;
    std::optional<struct stat> old;
};

// Nothing, with errno, when what is there can't be replaced.
std::optional<Target> findTarget(const std::string &path)
{
    Target target{path, std::nullopt};
    if (!followLinks(target.path))
        return std::nullopt;
    struct stat status = {};
    if (::lstat(target.path.c_str(), &status) != 0) {
        if (errno != ENOENT)
            return std::nullopt;
        return target;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return std::nullopt;
    }
    target.old = status;
    return target;
}

std::optional<FileError> replaceTarget(const Target &target, std::string_view text, unsigned mode)
{
    const auto name = randomName();
    if (!name)
        return fileError("write", target.path, EIO);
    const std::string folder = folderOfPath(target.path);
    // Nobody may read the new file who may not read the old one, at no time.
    TemporaryFile file(pathIn(folder, ".nimbrel-" + *name + ".tmp"), target.old ? 0600 : mode);
    if (!file.isOpen() || !writeToDisk(file.descriptor(), text) ||
        (target.old && !takeOver(file.descriptor(), *target.old)) || !file.renameTo(target.path))
        return fileError("write", target.path, errno);
    // The new file is there; that a crash doesn't bring the old one back can't be promised.
    if (!syncFolder(folder))
        return fileError("make sure of", target.path, errno);
    return std::nullopt;
}

} // namespace

std::optional<FileError> replaceFile(const std::string &path, std::string_view text, unsigned mode)
{
    const auto target = findTarget(path);
    if (!target)
        return fileError("write", path, errno);
    return replaceTarget(*target, text, mode);
}

} // namespace nimbrel
