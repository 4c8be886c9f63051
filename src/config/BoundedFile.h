#pragma once

#include "config/NBPreferencesError.h"

#include <cstddef>
#include <string>
#include <variant>

namespace nimbrel {

// The bytes of the regular file at `path`. An error when it can't be read (posixErrorDomain), isn't
// a regular file, or has more than `maximumSize` bytes (boundErrorDomain). Never waits for a pipe's
// other end.
[[nodiscard]] std::variant<std::string, NBPreferencesError>
readBoundedFile(const std::string &path, std::size_t maximumSize);

} // namespace nimbrel
