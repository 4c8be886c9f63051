#include "app/Util.h"

#include "app/SystemLog.h"

#include <QAction>
#include <QApplication>
#include <QFont>
#include <QFontMetrics>
#include <QLabel>
#include <QMessageBox>
#include <QPalette>
#include <QPushButton>
#include <QStyle>
#include <QThread>
#include <QToolBar>
#include <QWindow>

#include <algorithm>
#include <atomic>

namespace nimbrel {

namespace {

std::atomic<AlertPresenter *> currentPresenter = nullptr;

// False where there is no application to tell.
bool isOffMainThread()
{
    const QCoreApplication *application = QCoreApplication::instance();
    return application != nullptr && application->thread() != QThread::currentThread();
}

bool hasWindows()
{
    return qobject_cast<QApplication *>(QCoreApplication::instance()) != nullptr;
}

int logInstead(const Alert &alert)
{
    QStringList texts{alert.messageText, alert.informativeText};
    texts.removeAll(QString());
    systemLog(texts.join(QLatin1Char(' ')));
    return alert.answerOfNobody();
}

// QMessageBox names its labels so for style sheets.
QLabel *label(const QMessageBox &box, const char *name)
{
    return box.findChild<QLabel *>(QLatin1String(name));
}

// About fifty characters, at any size of letters.
int readableWidth(const QMessageBox &box)
{
    constexpr int characters = 50;
    return box.fontMetrics().averageCharWidth() * characters;
}

// Texts hold paths and other programs' words: none of it is markup, all of it may be copied.
void setTexts(QMessageBox &box, const Alert &alert)
{
    box.setText(alert.messageText);
    box.setInformativeText(alert.informativeText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    // The box's own setting leaves the second label out.
    for (QLabel *each : box.findChildren<QLabel *>())
        each->setTextFormat(Qt::PlainText);
    if (alert.informativeText.isEmpty())
        return;
    QFont bold = box.font();
    bold.setBold(true);
    if (QLabel *headline = label(box, "qt_msgbox_label"))
        headline->setFont(bold);
    // The headline alone would decide how narrow the lines below it are.
    if (QLabel *text = label(box, "qt_msgbox_informativelabel"))
        text->setMinimumWidth(readableWidth(box));
}

// Returns the default button.
QAbstractButton *addButtons(QMessageBox &box, const Alert &alert)
{
    QList<QPushButton *> buttons;
    for (const QString &title : alert.buttons)
        buttons += box.addButton(title, buttons.isEmpty() ? QMessageBox::AcceptRole
                                                          : QMessageBox::RejectRole);
    if (buttons.isEmpty())
        buttons += box.addButton(QMessageBox::Ok);
    for (QPushButton *button : std::as_const(buttons))
        button->setIcon({}); // the words say it
    box.setDefaultButton(buttons.first());
    box.setEscapeButton(alert.isDefaultHarmless ? buttons.first() : buttons.last());
    return buttons.first();
}

void addHelp(QMessageBox &box, const std::function<void()> &showHelp)
{
    if (!showHelp)
        return;
    QPushButton *help = box.addButton(QMessageBox::Help);
    help->disconnect(); // from the box, which any of its buttons closes
    QObject::connect(help, &QPushButton::clicked, &box, [&showHelp] { showHelp(); });
}

// The application's own icon, or a sign of warning.
void setSign(QMessageBox &box, const Alert &alert)
{
    const QIcon icon = QApplication::windowIcon();
    box.setIcon(alert.isCaution ? QMessageBox::Warning : QMessageBox::Information);
    if (!alert.isCaution && !icon.isNull())
        box.setIconPixmap(icon.pixmap(box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize)));
}

// Above the window that the user works in; that one may go before the alert does.
void putAbove(QMessageBox &box, const QWidget *window)
{
    if (window == nullptr || box.winId() == 0)
        return;
    box.windowHandle()->setTransientParent(window->windowHandle());
}

int showMessageBox(const Alert &alert)
{
    QMessageBox box;
    putAbove(box, QApplication::activeWindow());
    box.setWindowTitle(alert.windowTitle);
    setSign(box, alert);
    setTexts(box, alert);
    const QAbstractButton *defaultButton = addButtons(box, alert);
    addHelp(box, alert.showHelp);
    box.exec();
    if (box.clickedButton() == nullptr) // the program ends meanwhile
        return alert.answerOfNobody();
    return box.clickedButton() == defaultButton ? 1 : 0;
}

} // namespace

void Util::clearToolbar(QToolBar &toolbar)
{
    while (!toolbar.actions().isEmpty())
        toolbar.removeAction(toolbar.actions().first());
}

void Util::removeItem(QAction *item, QToolBar &fromToolbar)
{
    const QList<QAction *> items = fromToolbar.actions();
    std::for_each(items.crbegin(), items.crend(), [&](QAction *each) {
        if (each == item)
            fromToolbar.removeAction(each);
    });
}

int Util::runModal(const Alert &alert)
{
    if (isOffMainThread())
        return logInstead(alert);
    if (AlertPresenter *presenter = currentPresenter)
        return presenter->runModal(alert);
    return hasWindows() ? showMessageBox(alert) : logInstead(alert);
}

void Util::setAlertPresenter(AlertPresenter *presenter)
{
    currentPresenter = presenter;
}

QColor Util::controlTextColor(const QVariant &value, const QPalette &palette)
{
    if (value.isNull() || !value.canConvert<bool>())
        return {};
    return palette.color(value.toBool() ? QPalette::Active : QPalette::Disabled,
                         QPalette::WindowText);
}

} // namespace nimbrel
