#pragma once

#include "config/FileError.h"

#include <optional>
#include <string>

namespace nimbrel {

// $XDG_STATE_HOME/Nimbrel/backups, else ~/.local/state/Nimbrel/backups; never inside a synced
// folder of its own accord. Empty when neither variable nor home directory is known.
[[nodiscard]] std::string configurationBackupFolder();

// Copies the configuration at `path` into `backupFolder` (made with mode 0700 when missing; the
// copy has 0600), under a name of the folder's name and the time, never over another backup. A file
// that doesn't exist needs none. The copy is on disk (fsync) when this returns without an error.
[[nodiscard]] std::optional<FileError> backUpConfiguration(const std::string &path,
                                                           const std::string &backupFolder);

} // namespace nimbrel
