#include "app/Util.h"

#include "support/Messages.h"
#include "support/FakeAlerts.h"
#include "support/PrivateDesktop.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QToolBar>

#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace nimbrel::test {
namespace {

std::unique_ptr<QApplication> madeApplication()
{
    if (QCoreApplication::instance() != nullptr)
        return nullptr; // the program's own
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static std::string name = "test";
    static char *arguments[] = {name.data(), nullptr};
    return std::make_unique<QApplication>(count, arguments);
}

// A person in front of the real message box.
class MessageBoxTest : public testing::Test
{
protected:
    // Shows the alert; `person` acts on the box as soon as it is there.
    template <class Person>
    int show(const Alert &alert, Person person)
    {
        bool wasShown = false;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (box == nullptr || !box->isVisible())
                return;
            timer.stop();
            wasShown = true;
            person(*box);
        });
        timer.start(5);
        const int answer = Util::runModal(alert);
        EXPECT_TRUE(wasShown);
        return answer;
    }

    static void click(QMessageBox &box, const QString &title)
    {
        for (QAbstractButton *button : box.buttons())
            if (button->text().remove(u'&') == title)
                return button->click();
        ADD_FAILURE() << "no button " << title.toStdString();
        box.reject();
    }

    // Where the keyboard is.
    static void press(QMessageBox &box, Qt::Key key)
    {
        QWidget *focused = box.focusWidget() == nullptr ? &box : box.focusWidget();
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QCoreApplication::sendEvent(focused, &event);
        }
    }

    PrivateDesktop _desktop{{.bus = false, .keyring = false}}; // no settings but the defaults
    std::unique_ptr<QApplication> _application = madeApplication();
};

TEST_F(MessageBoxTest, AnAlertIsAModalBoxWithTheInformationSign)
{
    const int answer =
        show({.messageText = u"Message"_qs, .informativeText = u"below"_qs}, [](QMessageBox &box) {
            EXPECT_EQ(box.windowTitle(), u"Nimbrel"_qs);
            EXPECT_EQ(box.text(), u"Message"_qs);
            EXPECT_EQ(box.informativeText(), u"below"_qs);
            EXPECT_EQ(box.icon(), QMessageBox::Information);
            EXPECT_TRUE(box.isModal());
            EXPECT_EQ(box.buttons().size(), 1);
            EXPECT_EQ(box.defaultButton(), box.buttons().first());
            box.defaultButton()->click();
        });
    EXPECT_EQ(answer, 1);
}

TEST_F(MessageBoxTest, ACautionHasTheWarningSign)
{
    show({.messageText = u"Mind."_qs, .isCaution = true, .windowTitle = u"Other"_qs},
         [](QMessageBox &box) {
             EXPECT_EQ(box.icon(), QMessageBox::Warning);
             EXPECT_EQ(box.windowTitle(), u"Other"_qs);
             box.defaultButton()->click();
         });
}

TEST_F(MessageBoxTest, TheDefaultButtonIsOne)
{
    const int answer = show({.messageText = u"?"_qs, .buttons = {u"Unmount"_qs, u"Keep"_qs}},
                            [](QMessageBox &box) {
                                EXPECT_EQ(box.buttons().size(), 2);
                                EXPECT_EQ(box.defaultButton()->text().remove(u'&'), u"Unmount"_qs);
                                click(box, u"Unmount"_qs);
                            });
    EXPECT_EQ(answer, 1);
}

TEST_F(MessageBoxTest, TheOtherButtonIsZero)
{
    const int answer = show({.messageText = u"?"_qs, .buttons = {u"Unmount"_qs, u"Keep"_qs}},
                            [](QMessageBox &box) { click(box, u"Keep"_qs); });
    EXPECT_EQ(answer, 0);
}

TEST_F(MessageBoxTest, ReturnIsTheDefaultButton)
{
    const int answer = show({.messageText = u"?"_qs, .buttons = {u"Unmount"_qs, u"Keep"_qs}},
                            [](QMessageBox &box) { press(box, Qt::Key_Return); });
    EXPECT_EQ(answer, 1);
}

TEST_F(MessageBoxTest, EscapeIsTheOtherButton)
{
    const int answer = show({.messageText = u"?"_qs, .buttons = {u"Unmount"_qs, u"Keep"_qs}},
                            [](QMessageBox &box) { press(box, Qt::Key_Escape); });
    EXPECT_EQ(answer, 0);
}

TEST_F(MessageBoxTest, ClosingTheWindowIsTheOtherButton)
{
    const int answer = show({.messageText = u"?"_qs, .buttons = {u"Unmount"_qs, u"Keep"_qs}},
                            [](QMessageBox &box) { box.close(); });
    EXPECT_EQ(answer, 0);
}

TEST_F(MessageBoxTest, EscapeIsTheOnlyButton)
{
    const int answer =
        show({.messageText = u"!"_qs}, [](QMessageBox &box) { press(box, Qt::Key_Escape); });
    EXPECT_EQ(answer, 1);
}

TEST_F(MessageBoxTest, TheEndOfTheProgramAgreesToNothing)
{
    const int answer = show({.messageText = u"?"_qs, .buttons = {u"Unmount"_qs, u"Keep"_qs}},
                            [](QMessageBox &box) { box.done(0); });
    EXPECT_EQ(answer, 0);
}

TEST_F(MessageBoxTest, HelpKeepsTheAlertOpen)
{
    int helped = 0;
    const int answer =
        show({.messageText = u"Help?"_qs, .showHelp = [&] { ++helped; }}, [&](QMessageBox &box) {
            QAbstractButton *help = box.button(QMessageBox::Help);
            ASSERT_NE(help, nullptr);
            help->click();
            help->click();
            EXPECT_TRUE(box.isVisible());
            box.defaultButton()->click();
        });
    EXPECT_EQ(helped, 2);
    EXPECT_EQ(answer, 1);
}

TEST_F(MessageBoxTest, EscapeIsNotHelp)
{
    const int answer = show({.messageText = u"Help?"_qs, .showHelp = [] { FAIL(); }},
                            [](QMessageBox &box) { press(box, Qt::Key_Escape); });
    EXPECT_EQ(answer, 1);
}

TEST_F(MessageBoxTest, TextsAreNoMarkupAndMayBeCopied)
{
    show({.messageText = u"<b>path</b>"_qs, .informativeText = u"<i>why</i>"_qs},
         [](QMessageBox &box) {
             int seen = 0;
             for (const QLabel *label : box.findChildren<QLabel *>()) {
                 if (label->text().isEmpty())
                     continue; // the sign
                 ++seen;
                 EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
                 EXPECT_TRUE(label->textInteractionFlags() & Qt::TextSelectableByMouse);
             }
             EXPECT_EQ(seen, 2);
             box.defaultButton()->click();
         });
}

TEST_F(MessageBoxTest, AnotherThreadOnlyLogs)
{
    const Messages messages;
    FakeAlerts alerts;
    int answer = -1;
    int question = -1;
    std::jthread([&] {
        answer = Util::showAlert(u"below"_qs, u"Title."_qs);
        question = Util::showAlert(u"Sure?"_qs, Util::Buttons{u"OK"_qs, u"Cancel"_qs});
    }).join();
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(question, 0);
    EXPECT_TRUE(alerts.shown.empty());
    EXPECT_EQ(messages.texts(), (QStringList{u"Title. below"_qs, u"Sure?"_qs}));
}

TEST_F(MessageBoxTest, AClearedToolbarHasNoItems)
{
    QToolBar toolbar;
    toolbar.addAction(u"one"_qs);
    toolbar.addSeparator();
    toolbar.addAction(u"two"_qs);
    Util::clearToolbar(toolbar);
    EXPECT_TRUE(toolbar.actions().isEmpty());
    Util::clearToolbar(toolbar);
}

TEST_F(MessageBoxTest, OnlyTheItemItselfIsRemoved)
{
    QToolBar toolbar;
    const QAction *one = toolbar.addAction(u"same"_qs);
    QAction *two = toolbar.addAction(u"same"_qs);
    Util::removeItem(two, toolbar);
    ASSERT_EQ(toolbar.actions().size(), 1);
    EXPECT_EQ(toolbar.actions().first(), one);
    Util::removeItem(two, toolbar);
    EXPECT_EQ(toolbar.actions().size(), 1);
}

} // namespace
} // namespace nimbrel::test
