#pragma once

#include "config/NBPreferencesDictionary.h"

#include <optional>
#include <string>

namespace nimbrel {

// Judges values that the reader accepts and that no machine should act on: a block size that isn't
// 16 bytes to 64 MiB, or an iteration count that isn't 1 to 10,000,000. The message names the value
// and the bound; nothing when all is well. Asked before a key is derived.
[[nodiscard]] std::optional<std::string> judgeLimits(const NBPreferencesDictionary &preferences);

} // namespace nimbrel
