#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <sys/stat.h>
#include <sys/types.h>

namespace nimbrel {

// What is to be set on an item; an absent field stays as it is.
struct NBItemAttributes
{
    std::optional<std::int64_t> size = {};   // bytes
    std::optional<std::uint32_t> flags = {}; // inode flags of FS_IOC_SETFLAGS
    std::optional<mode_t> posixPermissions = {};
    std::optional<uid_t> owner = {};
    std::optional<gid_t> group = {};
    std::optional<timespec> accessDate = {}; // UTIME_NOW in tv_nsec means now
    std::optional<timespec> modificationDate = {};
};

} // namespace nimbrel
