#pragma once

#include <QString>

// Whether a program starts with the session: an entry of the freedesktop Desktop Application
// Autostart Specification, $XDG_CONFIG_HOME/autostart/com.nimbrel.Nimbrel.desktop.
namespace nimbrel::loginItem {

// The argument that tells the program that the session started it.
inline const QString launchArgument = QStringLiteral("--launched-at-login");

// True when the entry is there, isn't hidden, and starts the program at `path`.
[[nodiscard]] bool isEnabled(const QString &path);
// Writes the entry, or puts an existing one in force again. False when it can't be written.
[[nodiscard]] bool enable(const QString &path);
// Hides the entry: `Hidden=true`. False when it can't be written.
[[nodiscard]] bool disable(const QString &path);

} // namespace nimbrel::loginItem
