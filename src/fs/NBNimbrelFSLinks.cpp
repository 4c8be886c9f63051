#include "fs/NBNimbrelFS.h"

#include "fs/OnDiskPath.h"

#include <climits>
#include <unistd.h>

namespace nimbrel {

NBDone NBNimbrelFS::linkItemAtPath(const std::string &path, const std::string &toPath)
{
    return callOnPaths(_securePathWithPath(path), _securePathWithPath(toPath), ::link);
}

// The whole target, slashes included, is one name, with plain names, too: reading a link always
// decodes.
NBDone NBNimbrelFS::createSymbolicLinkAtPath(const std::string &path,
                                             const std::string &destination)
{
    const std::optional<std::string> target = _cryptor.encodeString(destination);
    if (!target)
        return NBErrno{EIO};
    return callOnPath(_securePathWithPath(path),
                      [&](const char *item) { return ::symlink(target->c_str(), item); });
}

NBErrnoOr<std::string> NBNimbrelFS::destinationOfSymbolicLinkAtPath(const std::string &path)
{
    std::string target(PATH_MAX, '\0');
    const NBDone read = callOnPath(_securePathWithPath(path), [&](const char *item) {
        const ssize_t length = ::readlink(item, target.data(), target.size());
        target.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
        return length;
    });
    if (!read)
        return read.error();
    std::optional<std::string> destination = _cryptor.decodeString(target);
    if (!destination)
        return NBErrno{0};
    return *std::move(destination);
}

} // namespace nimbrel
