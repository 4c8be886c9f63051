#pragma once

#include "cli/CommandError.h"
#include "fs/UserFileSystem.h"

namespace nimbrel {

// The failure of a mount as the end of a command, with the exit status of its cause.
[[nodiscard]] CommandError commandError(const MountFailure &failure);

} // namespace nimbrel
