// Volumes that ask their questions with the real windows.
#include "assistants/AssistantsDesk.h"
#include "assistants/widgets/PathControl.h"

namespace nimbrel::test {
namespace {

const std::string password = "the right password";

class AssistantsUserInterfaceTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_MOUNTS();
        volume = desk.archived("Safe", password);
        desk.controller().volumes().append(volume);
    }

    AssistantsDesk desk;
    Watchdog watchdog;
    VolumePtr volume;
    std::vector<bool> mounted; // what the handler heard
    const VolumeHandler handler = [this](bool result) { mounted.push_back(result); };
};

TEST_F(AssistantsUserInterfaceTest, TheModeIsAskedOfTheApplicationAtEachUse)
{
    EXPECT_FALSE(desk.windows.advancedMode());
    desk.application.isAdvanced = true;
    EXPECT_TRUE(desk.windows.advancedMode());
}

TEST_F(AssistantsUserInterfaceTest, WrongPasswordBringsTheQuestionBackUntilItIsRight)
{
    Person person({type("passphraseTextField", QStringLiteral("wrong")), next,
                   [](QWidget &window) {
                       EXPECT_EQ(control<QLineEdit>(window, "passphraseTextField").text(),
                                 QString());
                   },
                   type("passphraseTextField", QStringLiteral("wrong again")), next,
                   type("passphraseTextField", QString::fromStdString(password)),
                   check("rememberButton", false), next});
    volume->mount(handler);
    EXPECT_TRUE(eventLoopUntil([&] { return !mounted.empty(); }));
    EXPECT_EQ(mounted, std::vector<bool>{true});
    EXPECT_TRUE(person.steps.empty());
    EXPECT_EQ(volume->passphrase(), password);
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(AssistantsUserInterfaceTest, CancelEndsTheMountAndLeavesPasswordAndFlag)
{
    ASSERT_TRUE(volume->storePassphrase());
    Person person({type("passphraseTextField", QStringLiteral("typed")),
                   check("rememberButton", false), previous});
    volume->mount(handler);
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isBusy(); }));
    EXPECT_TRUE(person.steps.empty());
    EXPECT_TRUE(volume->storePassphrase());
    EXPECT_TRUE(volume->passphrase().empty());
    EXPECT_FALSE(volume->isMounted());
    EXPECT_TRUE(mounted.empty());
}

TEST_F(AssistantsUserInterfaceTest, CancelAfterAWrongPasswordLeavesTheWrongOneToBeAskedForAgain)
{
    {
        Person person({type("passphraseTextField", QStringLiteral("wrong")), next, closeWindow});
        volume->mount(handler);
        EXPECT_TRUE(eventLoopUntil([&] { return person.steps.empty() && !volume->isBusy(); }));
    }
    EXPECT_EQ(volume->passphrase(), "wrong");
    Person person({type("passphraseTextField", QString::fromStdString(password)), next});
    volume->mount(handler);
    EXPECT_TRUE(eventLoopUntil([&] { return !mounted.empty(); }));
    EXPECT_TRUE(volume->isMounted());
}

TEST_F(AssistantsUserInterfaceTest, TwoVolumesAskOneAfterTheOtherAndBothGetTheirOwn)
{
    const VolumePtr other = desk.archived("Other", "other password");
    desk.controller().volumes().append(other);
    const auto answer = [&](QWidget &window) {
        const bool asksForOther =
            control<PathControl>(window, "customPathControl").path() == other->path();
        control<QLineEdit>(window, "passphraseTextField")
            .setText(asksForOther ? QStringLiteral("other password")
                                  : QString::fromStdString(password));
        control<QPushButton>(window, "nextButton").click();
    };
    Person person({answer, answer});
    desk.controller().mountVolumes();
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted() && other->isMounted(); }));
    EXPECT_TRUE(person.steps.empty());
}

} // namespace
} // namespace nimbrel::test
