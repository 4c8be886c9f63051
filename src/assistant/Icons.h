// Pictures by the names that the code uses.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace nimbrel::icons {

// The desktop's own icon where its theme has one for that purpose, else ours; null for a name that
// nobody knows.
[[nodiscard]] QIcon named(const QString &name);
// A single-coloured icon of ours in `color`.
[[nodiscard]] QIcon tinted(const QString &name, const QColor &color);
// A folder's icon, the documents' own for that one.
[[nodiscard]] QIcon forFolder(const QString &path);

} // namespace nimbrel::icons
