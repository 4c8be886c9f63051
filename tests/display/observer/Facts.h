// What can be read off the program's windows, as JSON for the tests.
#pragma once

#include <QJsonArray>
#include <QJsonValue>
#include <QString>
#include <QStringList>

class QWidget;

namespace nimbrel::observer {

// Of a control or an action, by the names of findControl: class, text, enabled, visible, toolTip,
// accessibleName, checked (null where it can't be), and of a pop-up button its entries. A password
// field's text is what it shows. Null for none.
[[nodiscard]] QJsonValue factsOf(const QString &name);

// One object a row: texts (display role), accessible (their accessible texts), selected. Null
// without such a table.
[[nodiscard]] QJsonValue rowsOf(const QString &table);

// The visible ones, the one in front first: title, class, active, and whether it is modal.
[[nodiscard]] QJsonArray windows();

// Those controls of `window` that have too little room for what they show: "NAME CLASS".
[[nodiscard]] QStringList cutControls(const QWidget &window);

} // namespace nimbrel::observer
