#pragma once

#include "cli/ExitStatus.h"

#include <string>

namespace nimbrel {

// Takes a disk of this program away. A disk in use stays, and the holders are named; one whose
// process has died is detached.
[[nodiscard]] ExitStatus runUnmount(const std::string &mountPoint);

} // namespace nimbrel
