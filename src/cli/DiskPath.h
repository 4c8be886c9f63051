#pragma once

#include <string>

namespace nimbrel {

// The mount point that `path` means, as the mount table spells it: absolute, links followed,
// without a final slash. Where a disk is mounted at the path the disk itself isn't asked, since one
// whose process has died or hangs wouldn't answer. Throws CommandError (MountPointTrouble).
[[nodiscard]] std::string mountPointMeantBy(const std::string &path);

} // namespace nimbrel
