#include "fs/OnDiskPath.h"

#include <climits>
#include <cstddef>
#include <fcntl.h>
#include <utility>

namespace nimbrel {

namespace {

// What one system call is given: room for the final zero and for a descriptor's path before it.
constexpr std::size_t longestPiece = PATH_MAX - 32;

// Where the piece that the next call takes ends: at a slash, as far as it fits; the last name
// always stays over, for the operation itself.
std::size_t endOfPiece(const std::string &path)
{
    const std::size_t end = path.rfind('/', longestPiece);
    return end == std::string::npos ? 0 : end;
}

std::string pathThrough(const UniqueFd &folder, const std::string &rest)
{
    return "/proc/self/fd/" + std::to_string(folder.get()) + "/" + rest;
}

} // namespace

OnDiskPath::OnDiskPath(std::string path) : _path(std::move(path))
{
    if (_path.size() >= PATH_MAX)
        shorten();
}

void OnDiskPath::shorten()
{
    std::string rest = std::exchange(_path, {});
    while (rest.size() >= longestPiece) {
        const std::size_t end = endOfPiece(rest);
        if (end == 0) { // a single name that no filesystem takes
            _error = ENAMETOOLONG;
            return;
        }
        const std::string piece = rest.substr(0, end);
        const std::string prefix = _folder ? pathThrough(_folder, piece) : piece;
        UniqueFd next(::open(prefix.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!next) {
            _error = errno;
            return;
        }
        _folder = std::move(next);
        rest.erase(0, rest.find_first_not_of('/', end));
    }
    _path = pathThrough(_folder, rest);
}

NBErrnoOr<UniqueFd> openOnDisk(const std::string &path, int flags, mode_t mode)
{
    const OnDiskPath item(path);
    if (!item)
        return item.error();
    UniqueFd descriptor(::open(item.get(), flags | O_CLOEXEC, mode));
    if (!descriptor)
        return NBErrno::last();
    return descriptor;
}

} // namespace nimbrel
