#pragma once

#include <QString>

namespace nimbrel::systemFacts {

// The kernel's release as three numbers, "6.1.0"; missing ones are 0.
[[nodiscard]] QString version();
// The same for the text of uname(2)'s release.
[[nodiscard]] QString versionOfRelease(const QString &release);
// /etc/machine-id (machine-id(5)); empty where there is none.
[[nodiscard]] QString serialNumber();
// The same for another file of that form.
[[nodiscard]] QString serialNumberIn(const QString &path);
// The login name of this process's user; the number where it has no account.
[[nodiscard]] QString userName();
// This program's file.
[[nodiscard]] QString programPath();

// The user's home and desktop folders (xdg-user-dirs; ~/Desktop without them).
[[nodiscard]] QString homeFolder();
[[nodiscard]] QString desktopFolder();
// $XDG_CONFIG_HOME, $XDG_DATA_HOME and $XDG_STATE_HOME with their defaults below the home folder
// (XDG Base Directory Specification 0.8: a relative path there doesn't count).
[[nodiscard]] QString configFolder();
[[nodiscard]] QString dataFolder();
[[nodiscard]] QString stateFolder();

} // namespace nimbrel::systemFacts
