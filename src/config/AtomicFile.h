#pragma once

#include "config/FileError.h"

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

// Replaces the file at `path` by one that holds `text`: a temporary file beside it, fsync, rename,
// fsync of the folder. Whatever happens, the path names the whole old or the whole new file; a
// failure leaves no temporary file. An existing file's permission bits are kept, a new one gets
// `mode` (before the umask). A symbolic link at `path` is followed: its target is replaced.
[[nodiscard]] std::optional<FileError> replaceFile(const std::string &path, std::string_view text,
                                                   unsigned mode = 0644);

} // namespace nimbrel
