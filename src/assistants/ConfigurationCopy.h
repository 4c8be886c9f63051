// A second copy of a folder's configuration, at a place of the user's choice.
#pragma once

#include "config/FileError.h"

#include <optional>
#include <string>

namespace nimbrel {

// Whether both paths lead to one file, through links of any kind.
[[nodiscard]] bool isSameFile(const std::string &path, const std::string &other);

// Puts a copy of the file at `path` in the place of whatever file or link stands at `to`, mode
// 0600, on disk (fsync), and reads it back. On an error nothing has changed at `to`.
[[nodiscard]] std::optional<FileError> copyConfiguration(const std::string &path,
                                                         const std::string &to);

} // namespace nimbrel
