// A file that is a menu entry, and ours when it bears our mark.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace nimbrel::fileManagerActions {

// A line of a file of ours, a comment in all forms of entries.
inline const QByteArray mark = QByteArrayLiteral(
    "# com.nimbrel.Nimbrel: Nimbrel made this file, and replaces and removes it.");

// The text; empty where there is no file. Nothing where it can't be read, with the reason.
[[nodiscard]] std::optional<QByteArray> readText(const QString &path, QString *error = nullptr);
[[nodiscard]] bool bearsMark(const QByteArray &text);
// True when the file is ours and has this line.
[[nodiscard]] bool hasLine(const QString &path, const QByteArray &line);

// Writes the file, which is then executable if asked for, with the folders on the way. An error
// when that fails, or a file is there that isn't ours.
[[nodiscard]] std::optional<QString> writeEntry(const QString &path, const QByteArray &text,
                                                bool isExecutable);
// The same without that question.
[[nodiscard]] std::optional<QString> writeText(const QString &path, const QByteArray &text);
// Nothing to do, and no error, where the file isn't there or isn't ours.
[[nodiscard]] std::optional<QString> removeEntry(const QString &path);

// A word for a shell that comes out of it as it was.
[[nodiscard]] QByteArray shellWord(const QByteArray &text);
// A value of a key file; of one line.
[[nodiscard]] QByteArray keyFileValue(const QString &text);

} // namespace nimbrel::fileManagerActions
