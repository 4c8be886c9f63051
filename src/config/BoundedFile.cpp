#include "config/BoundedFile.h"

#include "config/UniqueFd.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace nimbrel {

namespace {

NBPreferencesError readError(const std::string &path, int code)
{
    return {std::string(posixErrorDomain), code,
            fmt::format("Could not read \"{}\": {}.", path, std::generic_category().message(code))};
}

NBPreferencesError sizeError(const std::string &path, std::size_t maximumSize)
{
    return {std::string(boundErrorDomain), -1,
            fmt::format("\"{}\" is larger than {} bytes.", path, maximumSize)};
}

// Up to one byte more than `maximumSize`: a file may grow while it is read. Nothing with errno.
std::optional<std::string> readUpTo(int descriptor, std::size_t maximumSize)
{
    std::string text;
    std::array<char, 16384> buffer{};
    while (text.size() <= maximumSize) {
        const std::size_t wanted = std::min(buffer.size(), maximumSize + 1 - text.size());
        const ssize_t got = ::read(descriptor, buffer.data(), wanted);
        if (got == 0)
            break;
        if (got < 0 && errno != EINTR)
            return std::nullopt;
        text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
    return text;
}

} // namespace

std::variant<std::string, NBPreferencesError> readBoundedFile(const std::string &path,
                                                              std::size_t maximumSize)
{
    const UniqueFd descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status = {};
    if (!descriptor || ::fstat(descriptor.get(), &status) != 0)
        return readError(path, errno);
    if (S_ISDIR(status.st_mode))
        return readError(path, EISDIR);
    if (!S_ISREG(status.st_mode))
        return NBPreferencesError{std::string(posixErrorDomain), EINVAL,
                                  fmt::format("\"{}\" is not a regular file.", path)};
    if (status.st_size > static_cast<off_t>(maximumSize))
        return sizeError(path, maximumSize);
    auto text = readUpTo(descriptor.get(), maximumSize);
    if (!text)
        return readError(path, errno);
    if (text->size() > maximumSize)
        return sizeError(path, maximumSize);
    return std::move(*text);
}

} // namespace nimbrel
