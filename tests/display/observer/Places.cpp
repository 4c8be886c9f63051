#include "observer/Places.h"

#include "observer/Controls.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>

namespace nimbrel::observer {

namespace {

// Of what can be seen of `area`, a part of `control`.
Place centreOf(const QWidget &control, const QRect &area)
{
    const QRect seen = control.visibleRegion().boundingRect() & area;
    if (!control.isVisible() || seen.isEmpty())
        return std::nullopt;
    const QPointF place = control.mapToGlobal(QRectF(seen).center());
    return (place * control.devicePixelRatioF()).toPoint();
}

// Not the whole control answers a click, only the box and its text.
QRect clickableArea(const QWidget &control)
{
    const bool isRadio = qobject_cast<const QRadioButton *>(&control) != nullptr;
    if (!isRadio && qobject_cast<const QCheckBox *>(&control) == nullptr)
        return control.rect();
    QStyleOptionButton option;
    option.initFrom(&control);
    return control.style()->subElementRect(isRadio ? QStyle::SE_RadioButtonIndicator
                                                   : QStyle::SE_CheckBoxIndicator,
                                           &option, &control);
}

Place placeOfEntry(const QString &text)
{
    const Entry entry = findEntry(text);
    if (const auto *menu = qobject_cast<const QMenu *>(entry.menu))
        return centreOf(*menu, menu->actionGeometry(entry.action));
    if (const auto *bar = qobject_cast<const QMenuBar *>(entry.menu))
        return centreOf(*bar, bar->actionGeometry(entry.action));
    return std::nullopt;
}

int rowSaying(const QAbstractItemModel &model, const QString &text)
{
    for (int row = 0; row < model.rowCount(); ++row)
        for (int column = 0; column < model.columnCount(); ++column)
            if (model.index(row, column).data().toString() == text)
                return row;
    return -1;
}

QRect rowArea(const QAbstractItemView &table, int row)
{
    QRect area;
    for (int column = 0; column < table.model()->columnCount(); ++column)
        area |= table.visualRect(table.model()->index(row, column));
    return area;
}

Place placeInTable(const QAbstractItemView &table, const QString &row)
{
    bool isNumber = false;
    int number = row.toInt(&isNumber);
    if (!isNumber)
        number = rowSaying(*table.model(), row);
    if (number < 0)
        return std::nullopt;
    return centreOf(*table.viewport(), rowArea(table, number));
}

// The list that a pop-up button has opened.
Place placeInOpenList(const QString &text)
{
    const QWidget *popup = QApplication::activePopupWidget();
    const auto *list = popup == nullptr ? nullptr : popup->findChild<QAbstractItemView *>();
    const int row = list == nullptr ? -1 : rowSaying(*list->model(), text);
    return row < 0 ? std::nullopt : placeInTable(*list, QString::number(row));
}

} // namespace

// An open menu has the mouse, whatever else is called the same.
Place placeOf(const QString &name)
{
    if (qobject_cast<const QMenu *>(QApplication::activePopupWidget()) != nullptr)
        if (const Place entry = placeOfEntry(name))
            return entry;
    if (const QWidget *control = findControl(name); control != nullptr && control->isVisible())
        return centreOf(*control, clickableArea(*control));
    if (const QAction *action = findAction(name))
        if (const QWidget *button = buttonOf(*action))
            return centreOf(*button, button->rect());
    if (const Place entry = placeOfEntry(name))
        return entry;
    return placeInOpenList(name);
}

Place placeOfRow(const QString &table, const QString &row)
{
    const QAbstractItemView *found = findTable(table);
    return found == nullptr ? std::nullopt : placeInTable(*found, row);
}

} // namespace nimbrel::observer
