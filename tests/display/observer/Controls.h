// Finds the controls of the running program by the names that tests know them under.
#pragma once

#include <QAction>
#include <QList>
#include <QString>
#include <QWidget>

class QAbstractItemView;

namespace nimbrel::observer {

// As it is read: without the marks of the keyboard's letters and without a shortcut.
[[nodiscard]] QString plainText(const QString &text);

// All that are visible: the open menu or list first, then the modal and the active window.
[[nodiscard]] QList<QWidget *> windowsFrontFirst();

// The one with this objectName; among several a visible one, of the window in front. Without a
// name that fits, the button that says so. Null for none.
[[nodiscard]] QWidget *findControl(const QString &name);
[[nodiscard]] QAction *findAction(const QString &objectName);
[[nodiscard]] QAbstractItemView *findTable(const QString &objectName);

// The entry of an open menu, or of a menu bar.
struct Entry
{
    QWidget *menu = nullptr;
    QAction *action = nullptr;
};
[[nodiscard]] Entry findEntry(const QString &text);

// What a click on `action` has to hit: its button in a visible toolbar. Null for none.
[[nodiscard]] QWidget *buttonOf(const QAction &action);

} // namespace nimbrel::observer
