#include "assistants/NBChangePassphraseAssistant.h"

#include "assistants/AssistantsDesk.h"
#include "assistants/flows/ChangePassphrase.h"
#include "assistants/widgets/PasswordField.h"
#include "volume/OpenedFolder.h"

#include <QLabel>

namespace nimbrel::test {
namespace {

const QString oldPassword = QStringLiteral("old password");
const QString newPassword = QStringLiteral("neues Paßwort");

class NBChangePassphraseAssistantTest : public ::testing::Test
{
protected:
    explicit NBChangePassphraseAssistantTest(PrivateDesktopOptions options = {.bus = false,
                                                                              .keyring = false})
        : desk(options)
    {
    }
    void SetUp() override
    {
        NIMBREL_NEED_MOUNTS();
        volume = desk.mounted("Safe", coreText(oldPassword));
        settle();
    }
    void TearDown() override
    {
        if (volume && volume->isMounted()) {
            EXPECT_TRUE(desk.desk.unmount(volume));
        }
    }

    void change(std::deque<Person::Step> steps)
    {
        Person person(std::move(steps));
        showChangePassphrase(volume);
        EXPECT_TRUE(person.steps.empty());
    }
    static Person::Step fill(const QString &old, const QString &wanted, const QString &confirmed)
    {
        return [=](QWidget &window) {
            control<QLineEdit>(window, "oldPassphraseTextField").setText(old);
            control<QLineEdit>(window, "passphraseTextField").setText(wanted);
            control<QLineEdit>(window, "confirmTextField").setText(confirmed);
        };
    }
    // The step is still on show, with this in its fields.
    static Person::Step expectOpen(const QString &old, const QString &wanted,
                                   const QString &confirmed)
    {
        return [=](QWidget &window) {
            EXPECT_TRUE(window.isVisible() && window.isEnabled());
            EXPECT_EQ(control<QLineEdit>(window, "oldPassphraseTextField").text(), old);
            EXPECT_EQ(control<QLineEdit>(window, "passphraseTextField").text(), wanted);
            EXPECT_EQ(control<QLineEdit>(window, "confirmTextField").text(), confirmed);
        };
    }
    // Whether the password opens the folder as it stands on disk.
    bool opens(const QString &password) const
    {
        const OpenedFolder folder = openFolder(coreText(volume->path()),
                                               coreText(volume->configPath()), coreText(password));
        return folder.view != nullptr;
    }
    std::string configuration() const { return readFile(coreText(volume->configPath())); }

    AssistantsDesk desk;
    Watchdog watchdog;
    VolumePtr volume;
};

const QString changed = QStringLiteral("You have successfully changed the password!");

TEST_F(NBChangePassphraseAssistantTest, TheStepBeginsInTheOldPasswordWithCancelAndChange)
{
    for (const bool stored : {true, false}) {
        volume->setStorePassphrase(stored);
        change({[&](QWidget &window) {
            EXPECT_EQ(window.windowTitle(), QStringLiteral("Nimbrel"));
            EXPECT_EQ(control<QLabel>(window, "stepTitle").text(),
                      QStringLiteral("Change password"));
            EXPECT_EQ(control<QPushButton>(window, "prevButton").text(), QStringLiteral("Cancel"));
            EXPECT_TRUE(control<QPushButton>(window, "prevButton").isEnabled());
            EXPECT_EQ(control<QPushButton>(window, "nextButton").text(), QStringLiteral("Change"));
            EXPECT_EQ(window.focusWidget(),
                      &control<PasswordField>(window, "oldPassphraseTextField"));
            EXPECT_EQ(control<QCheckBox>(window, "rememberButton").isChecked(), stored);
            window.close();
        }});
    }
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(NBChangePassphraseAssistantTest, WhatIsMissingIsSaidOldPasswordFirstAndTheStepStays)
{
    const std::string before = configuration();
    change({next, // all are empty
            fill(oldPassword, {}, {}), next, fill(oldPassword, {}, newPassword), next,
            fill(oldPassword, newPassword, newPassword.toUpper()), next,
            fill(oldPassword, newPassword, newPassword + u' '), next,
            expectOpen(oldPassword, newPassword, newPassword + u' '), previous});
    EXPECT_EQ(desk.alertTexts(),
              (QStringList{QStringLiteral("You did not enter the current password."),
                           QStringLiteral("Please enter a password."),
                           QStringLiteral("Please enter a password."),
                           QStringLiteral("The passwords do not match."),
                           QStringLiteral("The passwords do not match.")}));
    EXPECT_EQ(configuration(), before);
}

TEST_F(NBChangePassphraseAssistantTest, WrongOldPasswordIsSaidByTheVolumeAloneAndChangesNothing)
{
    const std::string before = configuration();
    volume->setStorePassphrase(false);
    const QString wrong = QStringLiteral("wrong");
    change({fill(wrong, newPassword, newPassword), check("rememberButton", true), next,
            expectOpen(wrong, newPassword, newPassword), closeWindow});
    EXPECT_EQ(desk.alertTexts(),
              QStringList{QStringLiteral("The current password is not correct.")});
    EXPECT_EQ(configuration(), before);
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_EQ(volume->passphrase(), coreText(oldPassword));
}

TEST_F(NBChangePassphraseAssistantTest, ConfigurationThatIsAnothersIsSaidByTheVolumeAlone)
{
    const QString another = desk.desk.makeVolume("Another", coreText(oldPassword))->configPath();
    writeFile(coreText(volume->configPath()), readFile(coreText(another)));
    change({fill(oldPassword, newPassword, newPassword), next,
            expectOpen(oldPassword, newPassword, newPassword), previous});
    EXPECT_EQ(desk.alertTexts(), QStringList{QStringLiteral("Could not change the password.")});
    EXPECT_EQ(configuration(), readFile(coreText(another)));
    EXPECT_EQ(volume->passphrase(), coreText(oldPassword));
}

TEST_F(NBChangePassphraseAssistantTest, TheNewPasswordOpensTheFolderAndTheOldOneDoesNot)
{
    change({fill(oldPassword, newPassword, newPassword), next});
    EXPECT_EQ(desk.alertTexts(), QStringList{changed});
    EXPECT_TRUE(opens(newPassword));
    EXPECT_FALSE(opens(oldPassword));
    EXPECT_TRUE(volume->isMounted());
}

TEST_F(NBChangePassphraseAssistantTest, RightPasswordAfterAWrongOneChangesIt)
{
    change({fill(newPassword, newPassword, newPassword), next,
            type("oldPassphraseTextField", oldPassword), next});
    EXPECT_EQ(desk.alertTexts(),
              (QStringList{QStringLiteral("The current password is not correct."), changed}));
    EXPECT_TRUE(opens(newPassword));
}

TEST_F(NBChangePassphraseAssistantTest, NewPasswordMayBeTheOldOne)
{
    change({fill(oldPassword, oldPassword, oldPassword), next});
    EXPECT_EQ(desk.alertTexts(), QStringList{changed});
    EXPECT_TRUE(opens(oldPassword));
}

TEST_F(NBChangePassphraseAssistantTest, CancelAfterAFailedTryLeavesTheOldPassword)
{
    change({fill(newPassword, newPassword, newPassword), next,
            type("oldPassphraseTextField", oldPassword), previous});
    EXPECT_TRUE(opens(oldPassword));
    EXPECT_FALSE(opens(newPassword));
}

TEST_F(NBChangePassphraseAssistantTest, TheWindowAnswersToNobodyWhileTheKeyIsDerived)
{
    std::vector<bool> enabled;
    desk.desk.alerts.whileShown = [&](const Alert &) {
        enabled.push_back(QApplication::activeModalWidget()->isEnabled());
    };
    writeFile(coreText(volume->configPath()), "no configuration");
    change({fill(oldPassword, newPassword, newPassword),
            [](QWidget &window) {
                control<QLineEdit>(window, "confirmTextField").setFocus();
                control<QPushButton>(window, "nextButton").click();
                EXPECT_TRUE(window.isEnabled());
                EXPECT_EQ(window.focusWidget(), &control<QLineEdit>(window, "confirmTextField"));
            },
            previous});
    EXPECT_EQ(enabled, std::vector<bool>{false});
}

TEST_F(NBChangePassphraseAssistantTest, TheWindowIsAliveAndSaysThatItIsBusyMeanwhile)
{
    int turns = 0;
    QTimer watching;
    QObject::connect(&watching, &QTimer::timeout, &watching, [&] {
        const QWidget *window = QApplication::activeModalWidget();
        if (window == nullptr || window->isEnabled())
            return;
        ++turns;
        EXPECT_TRUE(window->findChild<QWidget *>(QStringLiteral("busyIndicator"))->isVisible());
    });
    watching.start(0);
    change({fill(oldPassword, newPassword, newPassword), next});
    EXPECT_GT(turns, 0);
    EXPECT_TRUE(opens(newPassword));
}

class ChangeStoredPassphraseTest : public NBChangePassphraseAssistantTest
{
protected:
    ChangeStoredPassphraseTest() : NBChangePassphraseAssistantTest({.bus = true, .keyring = true})
    {
    }

    std::optional<std::string> stored()
    {
        settle();
        const auto found = desk.desk.secrets.find(volume->keychainServiceName(), volume->path());
        return found ? std::optional(std::string(found->text())) : std::nullopt;
    }
};

TEST_F(ChangeStoredPassphraseTest, UntickedBoxStillHasTheStoredPasswordChangedAndNoneDeleted)
{
    volume->setStorePassphrase(true);
    volume->doStorePassphrase();
    ASSERT_EQ(stored(), coreText(oldPassword));
    change({fill(oldPassword, newPassword, newPassword), check("rememberButton", false), next});
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_EQ(stored(), coreText(newPassword));
}

TEST_F(ChangeStoredPassphraseTest, TickedBoxStoresTheNewPasswordAtTheNextMountAndNotBefore)
{
    volume->clearPassphrase(); // what the first mount stored
    volume->setPassphrase(SecureBuffer::copyOf(coreText(oldPassword)));
    ASSERT_EQ(stored(), std::nullopt);
    change({fill(oldPassword, newPassword, newPassword), check("rememberButton", true), next});
    EXPECT_TRUE(volume->storePassphrase());
    EXPECT_EQ(stored(), std::nullopt);
    ASSERT_TRUE(desk.desk.unmount(volume));
    ASSERT_TRUE(desk.desk.mount(volume));
    EXPECT_EQ(stored(), coreText(newPassword));
}

} // namespace
} // namespace nimbrel::test
