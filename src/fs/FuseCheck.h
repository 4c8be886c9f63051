#pragma once

#include "fs/UserFileSystem.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace nimbrel {

// What the check for FUSE looks at.
struct FuseSurroundings
{
    std::string device = "/dev/fuse";
    std::string configuration = "/etc/fuse.conf";
    std::optional<std::string> helper; // fusermount3's path; nothing where it isn't installed
    uid_t user = 0;
    bool mayGainRights = true; // false where set-user-ID programs run without their rights
};

[[nodiscard]] FuseSurroundings fuseSurroundings();

// The check behind checkFuse.
[[nodiscard]] std::optional<MountFailure> checkFuse(const FuseSurroundings &surroundings,
                                                    bool allowOther);

// The version of the FUSE library in use, "3.14.0".
[[nodiscard]] std::string fuseVersion();

} // namespace nimbrel
