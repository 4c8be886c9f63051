#include "observer/Controls.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QToolButton>

#include <functional>

namespace nimbrel::observer {

namespace {

using Condition = std::function<bool(const QWidget &)>;

// Hidden windows last: their controls are found too.
QList<QWidget *> allWindows()
{
    QList<QWidget *> windows = windowsFrontFirst();
    for (QWidget *window : QApplication::topLevelWidgets())
        if (!windows.contains(window))
            windows += window;
    return windows;
}

QList<QWidget *> controlsOf(QWidget &window)
{
    QList<QWidget *> controls{&window};
    for (QWidget *control : window.findChildren<QWidget *>())
        if (control->window() == &window)
            controls += control;
    return controls;
}

QWidget *find(const Condition &fits)
{
    QWidget *hidden = nullptr;
    for (QWidget *window : allWindows())
        for (QWidget *control : controlsOf(*window)) {
            if (!fits(*control))
                continue;
            if (control->isVisible())
                return control;
            hidden = hidden == nullptr ? control : hidden;
        }
    return hidden;
}

bool says(const QWidget &control, const QString &text)
{
    const auto *button = qobject_cast<const QAbstractButton *>(&control);
    return button != nullptr && plainText(button->text()) == text;
}

} // namespace

QString plainText(const QString &text)
{
    static const QRegularExpression mark(QStringLiteral("&(.)"));
    return text.section(u'\t', 0, 0).replace(mark, QStringLiteral("\\1"));
}

QList<QWidget *> windowsFrontFirst()
{
    QList<QWidget *> windows;
    const auto add = [&windows](QWidget *window) {
        if (window != nullptr && window->isVisible() && !windows.contains(window))
            windows += window;
    };
    add(QApplication::activePopupWidget());
    add(QApplication::activeModalWidget());
    add(QApplication::activeWindow());
    for (QWidget *window : QApplication::topLevelWidgets())
        add(window);
    return windows;
}

QWidget *findControl(const QString &name)
{
    QWidget *named = find([&](const QWidget &control) { return control.objectName() == name; });
    if (named != nullptr)
        return named;
    return find([&](const QWidget &control) { return says(control, name); });
}

QAction *findAction(const QString &objectName)
{
    for (QWidget *window : allWindows())
        for (const QWidget *control : controlsOf(*window))
            for (QAction *action : control->actions())
                if (action->objectName() == objectName)
                    return action;
    return nullptr;
}

QAbstractItemView *findTable(const QString &objectName)
{
    return qobject_cast<QAbstractItemView *>(find([&](const QWidget &control) {
        return control.objectName() == objectName &&
               qobject_cast<const QAbstractItemView *>(&control) != nullptr;
    }));
}

Entry findEntry(const QString &text)
{
    for (QWidget *window : windowsFrontFirst())
        for (QWidget *control : controlsOf(*window)) {
            if (!qobject_cast<QMenu *>(control) && !qobject_cast<QMenuBar *>(control))
                continue;
            for (QAction *action : control->actions())
                if (control->isVisible() && action->isVisible() &&
                    plainText(action->text()) == text)
                    return {control, action};
        }
    return {};
}

QWidget *buttonOf(const QAction &action)
{
    return find([&](const QWidget &control) {
        const auto *button = qobject_cast<const QToolButton *>(&control);
        return button != nullptr && button->defaultAction() == &action && button->isVisible();
    });
}

} // namespace nimbrel::observer
