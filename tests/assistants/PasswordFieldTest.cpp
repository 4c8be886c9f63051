#include "assistants/widgets/PasswordField.h"

#include "assistants/Modal.h"
#include "assistants/widgets/CapsLock.h"
#include "assistants/widgets/CapsLockHint.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QClipboard>
#include <QKeyEvent>
#include <QMenu>
#include <QTest>
#include <QVBoxLayout>

namespace nimbrel::test {
namespace {

// A field with the focus, and its hint.
class PasswordFieldTest : public ::testing::Test
{
protected:
    PasswordFieldTest()
    {
        auto *column = new QVBoxLayout(&window);
        for (QWidget *widget : {static_cast<QWidget *>(field), static_cast<QWidget *>(other),
                                static_cast<QWidget *>(hint)})
            column->addWidget(widget);
        hint->watch(*field);
        window.show();
        window.activateWindow();
        field->setFocus();
        QCoreApplication::processEvents();
    }

    // A key with the state that the window system tells; 0 tells nothing here.
    void press(int key, const QString &text, Qt::KeyboardModifiers modifiers = {},
               quint32 nativeModifiers = 0)
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, 0, 0, nativeModifiers, text);
        QApplication::sendEvent(field, &event);
    }
    [[nodiscard]] QAction &showAction() { return control<QAction>(*field, "showPasswordAction"); }

    QWidget window;
    PasswordField *field = new PasswordField(&window);
    QLineEdit *other = new QLineEdit(&window);
    CapsLockHint *hint = new CapsLockHint(&window);
};

TEST_F(PasswordFieldTest, TheTextIsHiddenAndNoInputMethodLearnsIt)
{
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
    const auto secret = Qt::ImhSensitiveData | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase;
    EXPECT_EQ(field->inputMethodHints() & secret, secret);
    showAction().trigger();
    EXPECT_EQ(field->inputMethodHints() & secret, secret);
    EXPECT_FALSE(field->dragEnabled());
}

TEST_F(PasswordFieldTest, TheButtonShowsTheTextAndHidesItAgain)
{
    EXPECT_EQ(showAction().text(), QStringLiteral("Show password"));
    showAction().trigger();
    EXPECT_EQ(field->echoMode(), QLineEdit::Normal);
    EXPECT_EQ(showAction().text(), QStringLiteral("Hide password"));
    showAction().trigger();
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
}

TEST_F(PasswordFieldTest, TheKeyboardReachesTheButton)
{
    QTest::keyClick(field, Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(field->echoMode(), QLineEdit::Normal);
    EXPECT_EQ(field->text(), QString());
    EXPECT_TRUE(showAction().toolTip().contains(
        showAction().shortcut().toString(QKeySequence::NativeText)));
}

TEST_F(PasswordFieldTest, TheContextMenuHasTheButtonToo)
{
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
    QApplication::sendEvent(field, &event);
    QMenu &menu = *field->findChild<QMenu *>();
    EXPECT_TRUE(menu.actions().contains(&showAction()));
    menu.close();
}

TEST_F(PasswordFieldTest, ATextOnShowIsHiddenWhenTheFieldIs)
{
    showAction().trigger();
    window.hide();
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
}

TEST_F(PasswordFieldTest, AHiddenTextCantBeCopied)
{
    field->setText(QStringLiteral("secret"));
    QApplication::clipboard()->clear();
    field->selectAll();
    field->copy();
    field->cut();
    EXPECT_EQ(QApplication::clipboard()->text(), QString());
}

TEST_F(PasswordFieldTest, ThePassphraseIsUtf8)
{
    EXPECT_TRUE(field->passphrase().empty());
    field->setText(QStringLiteral(" pä\u20acß\U0001F511 "));
    EXPECT_EQ(field->passphrase().text(), " pä\xe2\x82\xacß\xf0\x9f\x94\x91 ");
}

TEST_F(PasswordFieldTest, ACopyOfTheTextOutlivesTheField)
{
    field->setText(QStringLiteral("secret"));
    const QString copy = field->text();
    delete field;
    EXPECT_EQ(copy, QStringLiteral("secret"));
}

TEST_F(PasswordFieldTest, TheLockThatTheWindowSystemTellsIsShown)
{
    constexpr quint32 lock = 2;
    press(Qt::Key_A, QStringLiteral("a"), {}, lock);
    EXPECT_TRUE(field->isCapsLockOn());
    EXPECT_TRUE(hint->isVisible());
    EXPECT_EQ(hint->text(), QStringLiteral("Caps Lock is on."));
    constexpr quint32 numLock = 16;
    press(Qt::Key_A, QStringLiteral("A"), {}, numLock);
    EXPECT_FALSE(field->isCapsLockOn());
    EXPECT_FALSE(hint->isVisible());
}

TEST_F(PasswordFieldTest, TheLockKeyItselfTurnsIt)
{
    press(Qt::Key_CapsLock, QString());
    EXPECT_TRUE(field->isCapsLockOn());
    press(Qt::Key_CapsLock, QString());
    EXPECT_FALSE(field->isCapsLockOn());
    constexpr quint32 lock = 2; // what was before the press
    press(Qt::Key_CapsLock, QString(), {}, lock);
    EXPECT_FALSE(field->isCapsLockOn());
}

TEST_F(PasswordFieldTest, WithoutAWindowSystemTheLettersTell)
{
    press(Qt::Key_A, QStringLiteral("A"));
    EXPECT_TRUE(field->isCapsLockOn());
    press(Qt::Key_1, QStringLiteral("1")); // tells nothing
    EXPECT_TRUE(field->isCapsLockOn());
    press(Qt::Key_A, QStringLiteral("A"), Qt::ShiftModifier);
    EXPECT_FALSE(field->isCapsLockOn());
    press(Qt::Key_A, QStringLiteral("a"), Qt::ShiftModifier);
    EXPECT_TRUE(field->isCapsLockOn());
    press(Qt::Key_A, QStringLiteral("a"));
    EXPECT_FALSE(field->isCapsLockOn());
}

TEST_F(PasswordFieldTest, TheHintGoesWithTheFocus)
{
    press(Qt::Key_A, QStringLiteral("A"));
    ASSERT_TRUE(hint->isVisible());
    other->setFocus();
    EXPECT_FALSE(hint->isVisible());
    EXPECT_FALSE(field->isCapsLockOn());
}

TEST_F(PasswordFieldTest, TheHintKeepsItsRoom)
{
    const QSize size = window.sizeHint();
    press(Qt::Key_A, QStringLiteral("A"));
    EXPECT_EQ(window.sizeHint(), size);
}

} // namespace
} // namespace nimbrel::test
