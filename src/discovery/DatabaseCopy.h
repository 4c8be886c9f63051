#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace nimbrel {

// What the query gives over the SQLite file at `path`: the first value of each row, up to its first
// zero, on a line of its own, as SQLite's own tool prints it. Nothing when the file can't be read,
// isn't a database, doesn't answer the query, or would take unreasonably long to.
//
// The file is its client's, which may be at work on it: it is copied, with what the client hasn't
// merged into it yet, and the copy is read. So nothing is locked, waited for, or made beside it.
[[nodiscard]] std::optional<QByteArray> databaseLines(const QString &path, const char *query);

} // namespace nimbrel
