#pragma once

#include "crypto/CHandle.h"

#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace nimbrel {

using DirectoryHandle = CHandle<DIR, closedir>;

// "." and "..", which every folder lists and nobody made.
[[nodiscard]] inline bool isDotName(std::string_view name) noexcept
{
    return name == "." || name == "..";
}

// opendir(3) below the folder `folder`, with further flags of open(2); null, with errno set, on
// failure.
[[nodiscard]] inline DirectoryHandle openDirectoryAt(int folder, const char *path, int flags = 0)
{
    const int descriptor = ::openat(folder, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
    if (descriptor < 0)
        return nullptr;
    DirectoryHandle directory(::fdopendir(descriptor));
    if (directory == nullptr)
        ::close(descriptor);
    return directory;
}

} // namespace nimbrel
