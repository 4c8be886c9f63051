#pragma once

#include "fs/NBErrno.h"

#include <cstdint>
#include <sys/stat.h>

namespace nimbrel {

// What the on-disk file reports at this moment, in bytes.
inline NBErrnoOr<std::uint64_t> sizeOfFile(int descriptor)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return NBErrno::last();
    return static_cast<std::uint64_t>(status.st_size);
}

} // namespace nimbrel
