#include "assistants/NBPasswordAssistant.h"

#include "assistant/NBPassphraseStrengthIndicator.h"
#include "assistants/AssistantFixture.h"
#include "assistants/NBAdvancedAssistant.h"
#include "assistants/NBRootAssistant.h"
#include "assistants/widgets/PasswordField.h"

#include <QLabel>

namespace nimbrel::test {
namespace {

const QString noPassword = QStringLiteral("Please enter a password.");
const QString noMatch = QStringLiteral("The passwords do not match.");

class NBPasswordAssistantTest : public PagesTest
{
protected:
    // On show, the location before it is passed.
    void show(bool isAdvanced)
    {
        setAdvanced(isAdvanced);
        run();
        root->controls().folderNameTextField->setText(QStringLiteral("Private"));
        next();
        ASSERT_EQ(engine->currAssistant(), page);
    }
    void type(const QString &password, const QString &again)
    {
        view().passphraseTextField->setText(password);
        view().confirmTextField->setText(again);
    }
    [[nodiscard]] const PasswordAssistantView &view() const { return page->controls(); }

    std::shared_ptr<NBRootAssistant> root = add<NBRootAssistant>(desk.application);
    std::shared_ptr<NBPasswordAssistant> page = add<NBPasswordAssistant>(desk.application);
};

TEST_F(NBPasswordAssistantTest, TheStepBeginsInTheFirstFieldAndIsTheLastInSimpleMode)
{
    show(false);
    EXPECT_EQ(page->orderedSteps(), QStringList{QStringLiteral("Create a password")});
    EXPECT_EQ(firstResponder(), view().passphraseTextField);
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Finish"));
    EXPECT_EQ(engine->prevButton()->text(), QStringLiteral("Go Back"));
    EXPECT_TRUE(view().rememberButton->isChecked());
}

TEST_F(NBPasswordAssistantTest, InAdvancedModeAnotherStepFollows)
{
    const auto advanced = add<NBAdvancedAssistant>(desk.application);
    show(true);
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Next"));
    type(QStringLiteral("a"), QStringLiteral("a"));
    next();
    EXPECT_EQ(engine->currAssistant(), advanced);
}

TEST_F(NBPasswordAssistantTest, AnEmptyPasswordIsRefusedInBothModes)
{
    show(false);
    for (const bool isAdvanced : {false, true}) {
        setAdvanced(isAdvanced);
        type({}, QStringLiteral("secret"));
        next();
        EXPECT_EQ(alerts(), QStringList{noPassword});
        EXPECT_EQ(engine->currAssistant(), page);
        EXPECT_EQ(view().confirmTextField->text(), QStringLiteral("secret"));
    }
}

TEST_F(NBPasswordAssistantTest, TheTwoFieldsAreComparedAsExactStrings)
{
    show(false);
    const QList<std::pair<QString, QString>> pairs{
        {QStringLiteral("secret"), QStringLiteral("secreT")},
        {QStringLiteral("secret"), QStringLiteral("secret ")},
        {QStringLiteral("secret"), QString()},
        {QStringLiteral("\u00e9"), QStringLiteral("e\u0301")}};
    for (const auto &[first, second] : pairs) {
        type(first, second);
        next();
        EXPECT_EQ(alerts(), QStringList{noMatch});
        EXPECT_EQ(engine->currAssistant(), page);
    }
}

TEST_F(NBPasswordAssistantTest, AnyOtherPasswordEndsTheRun)
{
    show(false);
    type(QStringLiteral(" "), QStringLiteral(" "));
    next();
    EXPECT_EQ(alerts(), QStringList());
    EXPECT_TRUE(engine->finished());
    EXPECT_EQ(view().passphraseTextField->passphrase().text(), " "); // for the flow
}

TEST_F(NBPasswordAssistantTest, TheFieldsOutliveGoingBack)
{
    show(false);
    type(QStringLiteral("one"), QStringLiteral("two"));
    view().rememberButton->setChecked(false);
    goBack();
    ASSERT_EQ(engine->currAssistant(), root);
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Next"));
    next();
    EXPECT_EQ(view().passphraseTextField->text(), QStringLiteral("one"));
    EXPECT_EQ(view().confirmTextField->text(), QStringLiteral("two"));
    EXPECT_FALSE(view().rememberButton->isChecked());
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Finish"));
}

TEST_F(NBPasswordAssistantTest, APasswordOnShowIsHiddenAgainWhenTheStepIsLeft)
{
    show(false);
    control<QAction>(*view().passphraseTextField, "showPasswordAction").trigger();
    ASSERT_EQ(view().passphraseTextField->echoMode(), QLineEdit::Normal);
    goBack();
    EXPECT_EQ(view().passphraseTextField->echoMode(), QLineEdit::Password);
}

TEST_F(NBPasswordAssistantTest, TheStrengthOfTheFirstFieldIsShownAsItIsTyped)
{
    show(false);
    view().confirmTextField->setText(QStringLiteral("Correct horse 7!"));
    EXPECT_EQ(view().strengthIndicator->value(), 0);
    EXPECT_EQ(view().guessTimeLabel->text(), QString());
    view().passphraseTextField->setText(QStringLiteral("abcd"));
    EXPECT_EQ(view().strengthIndicator->value(), 1);
    EXPECT_EQ(view().strengthLabel->text(), QStringLiteral("Very Weak"));
    view().passphraseTextField->setText(QStringLiteral("Correct horse 7 battery!"));
    EXPECT_EQ(view().strengthIndicator->value(), 5);
    EXPECT_EQ(view().strengthLabel->text(), QStringLiteral("Very Strong"));
    EXPECT_EQ(view().guessTimeLabel->text(), QStringLiteral("Time to guess it: centuries"));
    view().passphraseTextField->clear();
    EXPECT_EQ(view().strengthIndicator->value(), 0);
    EXPECT_EQ(view().guessTimeLabel->text(), QString());
}

} // namespace
} // namespace nimbrel::test
