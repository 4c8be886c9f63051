#pragma once

#include "cli/ExitStatus.h"

#include <functional>

namespace nimbrel {

// What the arguments ask for, ready to run. Throws CommandError (Usage) where they make no sense.
[[nodiscard]] std::function<ExitStatus()> parseCommandLine(int count, const char *const *arguments);

} // namespace nimbrel
