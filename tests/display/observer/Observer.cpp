#include "observer/Observer.h"

#include "observer/Controls.h"

#include <QAbstractButton>
#include <QEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace nimbrel::observer {

namespace {

QString nameOf(const QObject &object)
{
    return object.objectName().isEmpty() ? QLatin1String(object.metaObject()->className())
                                         : object.objectName();
}

// From left to right, as they stand.
QList<QAbstractButton *> buttonsOf(const QMessageBox &box)
{
    QList<QAbstractButton *> buttons = box.buttons();
    std::sort(buttons.begin(), buttons.end(),
              [](const QAbstractButton *one, const QAbstractButton *other) {
                  return one->mapToGlobal(QPoint()).x() < other->mapToGlobal(QPoint()).x();
              });
    return buttons;
}

QString buttonTexts(const QMessageBox &box)
{
    QStringList texts;
    QString standard;
    for (const QAbstractButton *button : buttonsOf(box)) {
        texts += plainText(button->text());
        const auto *push = qobject_cast<const QPushButton *>(button);
        if (push != nullptr && push->isDefault())
            standard = QStringLiteral(" (default %1)").arg(texts.last());
    }
    return texts.join(u'|') + standard;
}

QString entriesOf(const QMenu &menu)
{
    QStringList entries;
    for (const QAction *action : menu.actions())
        if (action->isSeparator())
            entries += QStringLiteral("-");
        else if (action->isVisible())
            entries += plainText(action->text()) +
                       (action->isEnabled() ? QString() : QStringLiteral(" (off)"));
    return entries.join(u'|');
}

} // namespace

Observer::Observer(Sink sink) : _sink(std::move(sink)) {}

bool Observer::eventFilter(QObject *object, QEvent *event)
{
    const auto *widget = qobject_cast<const QWidget *>(object);
    if (widget == nullptr)
        return false;
    if (event->type() == QEvent::WindowActivate && widget->isWindow())
        tellWindow(*widget);
    else if (event->type() == QEvent::FocusIn)
        tell(QStringLiteral("focus"), nameOf(*widget));
    else if (const auto *menu = qobject_cast<const QMenu *>(widget);
             menu != nullptr && event->type() == QEvent::Show)
        tell(QStringLiteral("menu"), entriesOf(*menu));
    return false;
}

void Observer::tell(const QString &what, const QString &which) const
{
    QString line = which;
    _sink(what, line.replace(u'\n', u' '));
}

void Observer::tellWindow(const QWidget &window) const
{
    if (const auto *box = qobject_cast<const QMessageBox *>(&window))
        tellAlert(*box);
    else
        tell(QStringLiteral("window"), window.windowTitle());
}

void Observer::tellAlert(const QMessageBox &box) const
{
    tell(QStringLiteral("alert"), box.text());
    tell(QStringLiteral("detail"), box.informativeText());
    tell(QStringLiteral("buttons"), buttonTexts(box));
}

} // namespace nimbrel::observer
