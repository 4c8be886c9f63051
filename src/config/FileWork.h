// Steps of writing files that several writers take.
#pragma once

#include "config/FileError.h"

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

// The folder that `path` lies in ("." for a bare name).
[[nodiscard]] std::string folderOfPath(const std::string &path);

// The path of `name` in `folder`.
[[nodiscard]] std::string pathIn(std::string_view folder, std::string_view name);

// Could not `task` "`path`": what `code` (an errno) means.
[[nodiscard]] FileError fileError(std::string_view task, const std::string &path, int code);

// True when all of `text` is written and on disk; errno tells why not.
[[nodiscard]] bool writeToDisk(int descriptor, std::string_view text);

// Makes the names in `folder` durable. True, too, where the filesystem has no such operation.
[[nodiscard]] bool syncFolder(const std::string &folder);

// Makes a folder with all that is missing above it, each with mode 0700 under any umask, durably.
// One that exists stays as it is, whatever stands there. False with errno.
[[nodiscard]] bool makePrivateFolder(const std::string &path);

// 16 random hexadecimal digits, for a name that nobody else takes. Nothing when the random
// generator fails.
[[nodiscard]] std::optional<std::string> randomName();

} // namespace nimbrel
