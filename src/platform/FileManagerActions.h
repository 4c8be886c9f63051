#pragma once

#include <QString>

#include <optional>

// The entry of file managers' menus that shows a file's encrypted counterpart: for Nautilus, Nemo,
// Dolphin and Thunar, in their own places below the user's folders.
//
// What bears our mark is ours, whatever its name: it is replaced and removed. All else is left as
// it is, also a file of the name that ours would have; then there is an error.
namespace nimbrel::fileManagerActions {

// The argument with which they start the program, followed by the file's path or URL.
inline const QString revealArgument = QStringLiteral("--reveal-encrypted");

// True when the entries of all four are there and start the program at `path`, under any title.
[[nodiscard]] bool areInstalled(const QString &path);
// Puts them there, under this title. Nothing when all went well, else why not, for the user; those
// that could be had are there then. Calling it again mends them, also with another title.
[[nodiscard]] std::optional<QString> install(const QString &path, const QString &title);
// Takes ours away and leaves everybody else's.
[[nodiscard]] std::optional<QString> remove();

} // namespace nimbrel::fileManagerActions
