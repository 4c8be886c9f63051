#pragma once

#include "fs/UserFileSystem.h"

#include <optional>
#include <string>
#include <variant>

namespace nimbrel {

// Where to mount: the canonical path, or why not.
using CheckedMountPoint = std::variant<std::string, MountFailure>;

// Judges an encrypted folder and a mount point before anything is changed: the folder exists and is
// readable, the mount point is an empty folder (`nonempty` lifts that) that the user owns or may
// write, isn't a mount already, isn't inside the encrypted folder and isn't above it, and /dev/fuse
// and fusermount3 are there for who needs them. A dead mount at the mount point is detached first.
[[nodiscard]] CheckedMountPoint checkMount(const std::string &encryptedFolder,
                                           const std::string &mountPoint, bool nonempty = false);

// Without a message: is FUSE usable for this process? The failure's next step names the package or
// the device.
[[nodiscard]] std::optional<MountFailure> checkFuse(bool allowOther);

} // namespace nimbrel
