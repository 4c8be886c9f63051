#include "config/FileWork.h"

#include "config/UniqueFd.h"
#include "crypto/RandomBytes.h"

#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace nimbrel {

namespace {

bool writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace

std::string folderOfPath(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string pathIn(std::string_view folder, std::string_view name)
{
    return fmt::format("{}/{}", folder, name);
}

FileError fileError(std::string_view task, const std::string &path, int code)
{
    return {code, fmt::format("Could not {} \"{}\": {}.", task, path,
                              std::generic_category().message(code))};
}

bool writeToDisk(int descriptor, std::string_view text)
{
    return writeAll(descriptor, text) && ::fsync(descriptor) == 0;
}

bool syncFolder(const std::string &folder)
{
    const UniqueFd descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A folder that one may write in but not list can't be opened, and so not be synced.
    if (!descriptor)
        return errno == EACCES;
    return ::fsync(descriptor.get()) == 0 || errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
}

bool makePrivateFolder(const std::string &path)
{
    constexpr mode_t mode = 0700;
    const std::string parent = folderOfPath(path);
    if (::mkdir(path.c_str(), mode) != 0) {
        if (errno == EEXIST)
            return true; // not a folder? Then the next step says so.
        if (errno != ENOENT || parent == "." || parent == path || !makePrivateFolder(parent) ||
            ::mkdir(path.c_str(), mode) != 0)
            return false;
    }
    return ::chmod(path.c_str(), mode) == 0 && syncFolder(parent);
}

std::optional<std::string> randomName()
{
    const auto bytes = dataWithRandomBytesAndLength(8);
    if (!bytes)
        return std::nullopt;
    return fmt::format("{:02x}", fmt::join(bytes->bytes(), ""));
}

} // namespace nimbrel
