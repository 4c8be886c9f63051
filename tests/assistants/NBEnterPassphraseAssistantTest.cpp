#include "assistants/NBEnterPassphraseAssistant.h"

#include "assistants/AssistantsDesk.h"
#include "assistants/flows/EnterPassphrase.h"
#include "assistants/widgets/CapsLockHint.h"
#include "assistants/widgets/PasswordField.h"
#include "assistants/widgets/PathControl.h"

#include <QLayout>
#include <QTest>

namespace nimbrel::test {
namespace {

class NBEnterPassphraseAssistantTest : public ::testing::Test
{
protected:
    NBEnterPassphraseAssistantTest()
    {
        engine->addAssistant(page);
        engine->setModal(true);
    }

    // True when the run ended with the answer.
    bool run(std::deque<Person::Step> steps)
    {
        Person person(std::move(steps));
        EXPECT_TRUE(engine->run());
        EXPECT_TRUE(person.steps.empty());
        return engine->finished();
    }

    FakeAlerts alerts;
    Watchdog watchdog;
    std::shared_ptr<NBEnterPassphraseAssistant> page = assistant<NBEnterPassphraseAssistant>();
    std::unique_ptr<TESetupAssistant> engine = TESetupAssistant::initMini();
};

TEST_F(NBEnterPassphraseAssistantTest, TheStepAsksWithCancelAndOKAndBeginsInThePasswordField)
{
    EXPECT_EQ(page->orderedSteps(), QStringList{QStringLiteral("Enter Password")});
    run({[&](QWidget &window) {
        EXPECT_EQ(engine->prevButton()->text(), QStringLiteral("Cancel"));
        EXPECT_TRUE(engine->prevButton()->isEnabled());
        EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("OK"));
        EXPECT_EQ(window.focusWidget(), page->controls().passphraseTextField);
        window.close();
    }});
}

TEST_F(NBEnterPassphraseAssistantTest, TheRememberBoxStandsInTheButtonRowAtThePagesLeftEdge)
{
    run({[&](QWidget &window) {
        const QCheckBox &box = *page->controls().rememberButton;
        EXPECT_TRUE(box.isVisible());
        EXPECT_TRUE(engine->specialView()->isAncestorOf(&box));
        EXPECT_FALSE(page->view()->isAncestorOf(&box));
        EXPECT_EQ(box.mapTo(&window, QPoint()).x(),
                  engine->assistantBox()->mapTo(&window, QPoint()).x());
        const QRect prev(engine->prevButton()->mapTo(&window, QPoint()),
                         engine->prevButton()->size());
        const int middle = box.mapTo(&window, box.rect().center()).y();
        EXPECT_TRUE(prev.top() < middle && middle < prev.bottom());
        window.close();
    }});
}

TEST_F(NBEnterPassphraseAssistantTest, StartedAnewTheRememberBoxStillStandsThereOnceAsItWas)
{
    run({[&](QWidget &window) {
        page->controls().rememberButton->setChecked(true);
        engine->runPreviousAssistant(); // shows the first page anew
        EXPECT_EQ(engine->specialView()->layout()->count(), 1);
        EXPECT_TRUE(page->controls().rememberButton->isVisible());
        EXPECT_TRUE(page->controls().rememberButton->isChecked());
        window.close();
    }});
}

TEST_F(NBEnterPassphraseAssistantTest, NothingMovesWhenCapsLockIsSaid)
{
    run({[&](QWidget &window) {
        const auto hint = page->view()->findChild<CapsLockHint *>();
        const QRect field = page->controls().passphraseTextField->geometry();
        const QSize room = page->view()->sizeHint();
        hint->show();
        page->view()->layout()->activate();
        EXPECT_EQ(page->view()->sizeHint(), room);
        EXPECT_EQ(page->controls().passphraseTextField->geometry(), field);
        window.close();
    }});
}

TEST_F(NBEnterPassphraseAssistantTest, NoPasswordIsSaidAndTheStepStays)
{
    const bool finished = run({next, [&](QWidget &window) {
                                   EXPECT_TRUE(window.isVisible());
                                   window.close();
                               }});
    EXPECT_FALSE(finished);
    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_EQ(alerts.shown[0].messageText, QStringLiteral("You did not enter any password."));
}

TEST_F(NBEnterPassphraseAssistantTest, AnyPasswordEndsTheRunAndIsStillThereToBeRead)
{
    EXPECT_TRUE(run({type("passphraseTextField", QStringLiteral(" ")), next}));
    EXPECT_EQ(page->controls().passphraseTextField->passphrase().text(), " ");
    EXPECT_TRUE(alerts.shown.empty());
}

TEST_F(NBEnterPassphraseAssistantTest, ReturnInTheFieldIsOK)
{
    EXPECT_TRUE(run({[&](QWidget &window) {
        PasswordField &field = control<PasswordField>(window, "passphraseTextField");
        QTest::keyClicks(&field, QStringLiteral("typed"));
        QTest::keyClick(&field, Qt::Key_Return);
    }}));
    EXPECT_EQ(page->controls().passphraseTextField->text(), QStringLiteral("typed"));
}

TEST_F(NBEnterPassphraseAssistantTest, CancelEscapeAndTheWindowsCloseEndTheRunUnfinished)
{
    const Person::Step escape = [](QWidget &window) { QTest::keyClick(&window, Qt::Key_Escape); };
    for (const Person::Step &way : {previous, escape, closeWindow}) {
        engine = TESetupAssistant::initMini();
        page = assistant<NBEnterPassphraseAssistant>();
        engine->addAssistant(page);
        engine->setModal(true);
        EXPECT_FALSE(run({type("passphraseTextField", QStringLiteral("typed")), way}));
    }
    EXPECT_TRUE(alerts.shown.empty());
}

TEST_F(NBEnterPassphraseAssistantTest, TheBoxIsReadableAfterTheWindowHasGone)
{
    for (const Person::Step &way : {closeWindow, previous}) {
        engine = TESetupAssistant::initMini();
        page = assistant<NBEnterPassphraseAssistant>();
        engine->addAssistant(page);
        engine->setModal(true);
        run({check("rememberButton", true), way});
        const QPointer<QCheckBox> box = page->controls().rememberButton;
        engine.reset();
        ASSERT_FALSE(box.isNull());
        EXPECT_TRUE(box->isChecked());
        page.reset();
        EXPECT_TRUE(box.isNull());
    }
}

class AskForPassphraseTest : public ::testing::Test
{
protected:
    std::optional<PassphraseAnswer> ask(std::deque<Person::Step> steps)
    {
        Person person(std::move(steps));
        std::optional<PassphraseAnswer> answer = askForPassphrase(*volume);
        EXPECT_TRUE(person.steps.empty());
        return answer;
    }

    AssistantsDesk desk;
    Watchdog watchdog;
    VolumePtr volume = NBNimbrelVolume::withPath(desk.services, desk.path("Tax & Bank.nmc"));
};

TEST_F(AskForPassphraseTest, TheFolderIsShownByItsPathWhateverItsLabel)
{
    volume->setLabel(QStringLiteral("Quite another label"));
    ask({[&](QWidget &window) {
        EXPECT_EQ(window.windowTitle(), QStringLiteral("Nimbrel"));
        EXPECT_EQ(control<PathControl>(window, "customPathControl").path(),
                  desk.path("Tax & Bank.nmc"));
        window.close();
    }});
}

TEST_F(AskForPassphraseTest, TheRememberBoxBeginsAsTheVolumeHasIt)
{
    for (const bool stored : {true, false}) {
        volume->setStorePassphrase(stored);
        ask({[&](QWidget &window) {
            EXPECT_EQ(control<QCheckBox>(window, "rememberButton").isChecked(), stored);
            window.close();
        }});
    }
}

TEST_F(AskForPassphraseTest, TheAnswerIsThePasswordAndTheBox)
{
    for (const bool wanted : {true, false}) {
        const auto answer = ask({type("passphraseTextField", QStringLiteral("Füße ♥")),
                                 check("rememberButton", wanted), next});
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->passphrase.text(), "Füße ♥");
        EXPECT_EQ(answer->storePassphrase, wanted);
    }
}

TEST_F(AskForPassphraseTest, CancelAnswersNothing)
{
    EXPECT_FALSE(ask({type("passphraseTextField", QStringLiteral("typed")), previous}));
}

} // namespace
} // namespace nimbrel::test
