// Where a person points the mouse to hit something. All places are in the display's own pixels,
// whatever the program's scale; nothing where no part of it can be seen.
#pragma once

#include <QPoint>
#include <QString>

#include <optional>

namespace nimbrel::observer {

using Place = std::optional<QPoint>;

// The control's middle, of a check box or radio button the box. `name` is the objectName of a
// control or of a toolbar's action, the text of a button, of an open menu's entry or of an open
// list's.
[[nodiscard]] Place placeOf(const QString &name);

// `row` is a number from 0, or the text of one of the row's cells; also of a list or a tree.
[[nodiscard]] Place placeOfRow(const QString &table, const QString &row);

} // namespace nimbrel::observer
