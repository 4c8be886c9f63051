#include "observer/Facts.h"

#include "observer/Controls.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QJsonObject>
#include <QToolButton>

#include <algorithm>

namespace nimbrel::observer {

namespace {

QString shownText(const QObject &object)
{
    for (const char *name : {"displayText", "text", "currentText", "plainText", "title"})
        if (const QVariant text = object.property(name); text.isValid())
            return plainText(text.toString());
    return {};
}

QJsonValue checkedState(const QObject &object)
{
    return object.property("checkable").toBool() ? QJsonValue(object.property("checked").toBool())
                                                 : QJsonValue();
}

QJsonObject commonFacts(const QObject &object)
{
    return {{QStringLiteral("class"), QLatin1String(object.metaObject()->className())},
            {QStringLiteral("text"), shownText(object)},
            {QStringLiteral("enabled"), object.property("enabled").toBool()},
            {QStringLiteral("checked"), checkedState(object)},
            {QStringLiteral("toolTip"), object.property("toolTip").toString()}};
}

QJsonArray entriesOf(const QComboBox &box)
{
    QJsonArray entries;
    for (int index = 0; index < box.count(); ++index)
        entries += box.itemText(index);
    return entries;
}

QJsonObject factsOf(const QWidget &control)
{
    QJsonObject facts = commonFacts(control);
    facts[QStringLiteral("visible")] = control.isVisible();
    facts[QStringLiteral("focus")] = control.hasFocus();
    facts[QStringLiteral("accessibleName")] = control.accessibleName();
    facts[QStringLiteral("window")] = control.window()->windowTitle();
    if (const QVariant isDefault = control.property("default"); isDefault.isValid())
        facts[QStringLiteral("default")] = isDefault.toBool();
    if (const auto *box = qobject_cast<const QComboBox *>(&control))
        facts[QStringLiteral("entries")] = entriesOf(*box);
    return facts;
}

QJsonObject factsOf(const QAction &action)
{
    QJsonObject facts = commonFacts(action);
    facts[QStringLiteral("visible")] = action.isVisible() && buttonOf(action) != nullptr;
    facts[QStringLiteral("accessibleName")] = plainText(action.iconText());
    return facts;
}

QJsonObject rowOf(const QAbstractItemView &table, int row)
{
    QJsonArray texts;
    QJsonArray accessible;
    bool isSelected = false;
    for (int column = 0; column < table.model()->columnCount(); ++column) {
        const QModelIndex index = table.model()->index(row, column);
        texts += index.data().toString();
        accessible += index.data(Qt::AccessibleTextRole).toString();
        isSelected = isSelected || table.selectionModel()->isSelected(index);
    }
    return {{QStringLiteral("texts"), texts},
            {QStringLiteral("accessible"), accessible},
            {QStringLiteral("selected"), isSelected}};
}

bool isCut(const QWidget &control)
{
    if (control.hasHeightForWidth())
        return control.height() < control.heightForWidth(control.width());
    const QSize needed = control.minimumSizeHint();
    return control.width() < needed.width() || control.height() < needed.height();
}

// A table's headers scroll with it. Of a toolbar's buttons only the one that hides others tells.
bool mayBeCut(const QWidget &control)
{
    return !qobject_cast<const QHeaderView *>(&control) &&
           !qobject_cast<const QToolButton *>(&control);
}

bool hidesOthers(const QWidget &control)
{
    return control.objectName() == QLatin1String("qt_toolbar_ext_button");
}

} // namespace

QJsonValue factsOf(const QString &name)
{
    const QWidget *control = findControl(name);
    if (control != nullptr && control->isVisible())
        return factsOf(*control);
    if (const QAction *action = findAction(name))
        return factsOf(*action);
    if (const QAction *entry = findEntry(name).action) {
        QJsonObject facts = commonFacts(*entry);
        facts[QStringLiteral("visible")] = true;
        return facts;
    }
    return control == nullptr ? QJsonValue() : factsOf(*control);
}

QJsonValue rowsOf(const QString &table)
{
    const QAbstractItemView *found = findTable(table);
    if (found == nullptr)
        return {};
    QJsonArray rows;
    for (int row = 0; row < found->model()->rowCount(); ++row)
        rows += rowOf(*found, row);
    return rows;
}

QJsonArray windows()
{
    QJsonArray all;
    for (QWidget *window : windowsFrontFirst())
        all +=
            QJsonObject{{QStringLiteral("title"), window->windowTitle()},
                        {QStringLiteral("class"), QLatin1String(window->metaObject()->className())},
                        {QStringLiteral("active"), window->isActiveWindow()},
                        {QStringLiteral("modal"), window->isModal()}};
    return all;
}

QStringList cutControls(const QWidget &window)
{
    QStringList cut;
    for (const QWidget *control : window.findChildren<QWidget *>())
        if (control->isVisible() &&
            (hidesOthers(*control) || (mayBeCut(*control) && isCut(*control))))
            cut += control->objectName() + u' ' + QLatin1String(control->metaObject()->className());
    return cut;
}

} // namespace nimbrel::observer
