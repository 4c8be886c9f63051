// Paths of any length for system calls that take PATH_MAX bytes.
#pragma once

#include "config/UniqueFd.h"
#include "fs/NBErrno.h"

#include <string>
#include <sys/types.h>

namespace nimbrel {

// An encrypted name is a third longer than its plain form, so a plain path that the kernel accepts
// can be too long on disk. Then the leading folders are opened step by step, and the path goes
// through the last one's descriptor; it is valid as long as this object.
class OnDiskPath final
{
public:
    explicit OnDiskPath(std::string path);

    // False when a leading folder can't be opened; error() says why.
    [[nodiscard]] explicit operator bool() const noexcept { return _error == 0; }
    [[nodiscard]] NBErrno error() const noexcept { return {_error}; }
    [[nodiscard]] const char *get() const noexcept { return _path.c_str(); }

private:
    void shorten();

    std::string _path;
    UniqueFd _folder;
    int _error = 0;
};

// `call` gets the path and gives what a system call gives: below zero means errno.
template <class Call>
NBDone callOnPath(const std::string &path, Call call)
{
    const OnDiskPath item(path);
    if (!item)
        return item.error();
    if (call(item.get()) < 0)
        return NBErrno::last();
    return {};
}

// The same with two paths.
template <class Call>
NBDone callOnPaths(const std::string &path, const std::string &otherPath, Call call)
{
    const OnDiskPath other(otherPath);
    if (!other)
        return other.error();
    return callOnPath(path, [&](const char *item) { return call(item, other.get()); });
}

// open(2), always with O_CLOEXEC.
NBErrnoOr<UniqueFd> openOnDisk(const std::string &path, int flags, mode_t mode = 0);

} // namespace nimbrel
