// The helper by which an ordinary user mounts and unmounts FUSE disks.
#pragma once

#include "fs/NBErrno.h"

#include <optional>
#include <string>
#include <vector>

namespace nimbrel {

// Where it is: the system's own folders before those of PATH; nothing where it isn't installed.
[[nodiscard]] std::optional<std::string> findFusermount();

// Runs it to its end, without a shell, and gives what it wrote to standard error, in English.
// ENOSYS where it isn't installed. Its exit status isn't told: a process that ignores SIGCHLD
// can't learn it, so callers look at the mount table.
NBErrnoOr<std::string> runFusermount(const std::vector<std::string> &arguments);

} // namespace nimbrel
