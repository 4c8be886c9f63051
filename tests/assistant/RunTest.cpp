// The way through the pages.
#include "assistant/EngineFixture.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QSignalSpy>

namespace nimbrel::test {
namespace {

class RunTest : public EngineTest
{
};

TEST_F(RunTest, ARunWithoutPagesShowsNothingThoughTheWindowIsLoaded)
{
    TESetupAssistant full;
    EXPECT_FALSE(full.run());
    ASSERT_NE(full.window(), nullptr);
    EXPECT_FALSE(full.window()->isVisible());
}

TEST_F(RunTest, ARunStartsWithTheFirstPage)
{
    const auto first = add(QStringLiteral("a"));
    const auto second = add(QStringLiteral("b"));
    EXPECT_TRUE(engine->run());
    EXPECT_TRUE(engine->window()->isVisible());
    EXPECT_TRUE(first->view()->isVisible());
    EXPECT_EQ(first->calls, QStringList{QStringLiteral("start")});
    EXPECT_TRUE(second->calls.isEmpty());
    EXPECT_EQ(engine->installStepView()->steps(),
              (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

TEST_F(RunTest, EachPageFindsTheButtonsAsNew)
{
    const auto first = add(QStringLiteral("a"));
    add(QStringLiteral("b"));
    first->whenStarted = [this] {
        engine->nextButton()->setText(QStringLiteral("Other"));
        engine->nextButton()->setEnabled(false);
    };
    EXPECT_TRUE(engine->run());
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Other"));
    EXPECT_FALSE(engine->prevButton()->isEnabled());
    engine->runNextAssistant();
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Next"));
    EXPECT_EQ(engine->prevButton()->text(), QStringLiteral("Go Back"));
    EXPECT_TRUE(engine->nextButton()->isEnabled());
    EXPECT_TRUE(engine->prevButton()->isEnabled());
}

TEST_F(RunTest, TheButtonsWalkThePages)
{
    const auto first = add(QStringLiteral("a"));
    const auto second = add(QStringLiteral("b"));
    EXPECT_TRUE(engine->run());
    engine->nextButton()->click();
    EXPECT_EQ(engine->currAssistant(), second);
    EXPECT_EQ(engine->installStepView()->currentStep(), QStringLiteral("b"));
    engine->prevButton()->click();
    EXPECT_EQ(engine->currAssistant(), first);
    EXPECT_EQ(first->calls, (QStringList{QStringLiteral("start"), QStringLiteral("restart"),
                                         QStringLiteral("start")}));
}

TEST_F(RunTest, GoingBackOnTheFirstPageShowsItAnewThroughStart)
{
    const auto first = add(QStringLiteral("a"));
    EXPECT_TRUE(engine->run());
    first->prevPressed();
    EXPECT_EQ(first->calls, (QStringList{QStringLiteral("start"), QStringLiteral("start")}));
    EXPECT_EQ(engine->currentAssistant(), 0);
}

TEST_F(RunTest, AListenerOfTheEndFindsThePagesAlreadyGone)
{
    add(QStringLiteral("a"));
    bool wasFinished = false;
    qsizetype pages = -1;
    QObject::connect(engine.get(), &TESetupAssistant::TESetupAssistantFinishedNotification,
                     engine.get(), [&] {
                         wasFinished = engine->finished();
                         pages = engine->assistants().size();
                     });
    EXPECT_TRUE(engine->run());
    engine->nextButton()->click();
    EXPECT_TRUE(wasFinished);
    EXPECT_EQ(pages, 0);
    EXPECT_FALSE(engine->window()->isVisible());
    EXPECT_EQ(engine->currentAssistant(), 1);
}

TEST_F(RunTest, EachPageThatIsLeftForwardIsAnnounced)
{
    const auto first = add(QStringLiteral("a"));
    const auto second = add(QStringLiteral("b"));
    QList<TEBaseAssistant *> left;
    QObject::connect(engine.get(), &TESetupAssistant::TEAssistantDidFinishNotification,
                     engine.get(), [&](TEBaseAssistant *page) { left += page; });
    EXPECT_TRUE(engine->run());
    engine->runNextAssistant();
    engine->runPreviousAssistant();
    engine->runNextAssistant();
    engine->runNextAssistant();
    EXPECT_EQ(left, (QList<TEBaseAssistant *>{first.get(), first.get(), second.get()}));
}

TEST_F(RunTest, APageInsertedDuringARunIsNotAmongTheSteps)
{
    add(QStringLiteral("a"));
    EXPECT_TRUE(engine->run());
    engine->insertNextAssistant(assistant<TestPage>(QStringLiteral("late")));
    const Messages log;
    engine->runNextAssistant();
    EXPECT_EQ(engine->currAssistant()->orderedSteps(), QStringList{QStringLiteral("late")});
    EXPECT_EQ(engine->installStepView()->steps(), QStringList{QStringLiteral("a")});
    EXPECT_EQ(engine->installStepView()->currentStep(), QStringLiteral("a"));
    EXPECT_EQ(log.texts(), QStringList{QStringLiteral(
                               "ERROR (-[TEInstallStepView selectStep:]:98): bad step: late")});
}

TEST_F(RunTest, AModalRunEndsWithItsLastPage)
{
    const auto page = add(QStringLiteral("a"));
    whileModal([this] { engine->nextButton()->click(); });
    EXPECT_TRUE(engine->run());
    EXPECT_TRUE(engine->finished());
    EXPECT_NE(page->view(), nullptr); // for the flow that reads its controls
    EXPECT_EQ(page->view()->parent(), nullptr);
}

TEST_F(RunTest, ClosingTheWindowByHandEndsAModalRunUnfinished)
{
    add(QStringLiteral("a"));
    whileModal([this] { engine->window()->close(); });
    EXPECT_TRUE(engine->run());
    EXPECT_FALSE(engine->finished());
    EXPECT_EQ(engine->assistants().size(), 1); // it does nothing else
}

TEST_F(RunTest, EscapeClosesTheWindow)
{
    add(QStringLiteral("a"));
    whileModal([this] {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(engine->window(), &press);
    });
    EXPECT_TRUE(engine->run());
    EXPECT_FALSE(engine->finished());
    EXPECT_FALSE(engine->window()->isVisible());
}

TEST_F(RunTest, ResetForgetsAllButTheOutcome)
{
    add(QStringLiteral("a"));
    add(QStringLiteral("b"));
    engine->setObject(1, QStringLiteral("key"));
    EXPECT_TRUE(engine->run());
    engine->runNextAssistant();
    engine->setFinished(true);
    EXPECT_EQ(engine->objectForKey(QStringLiteral("key")), QVariant(1));
    engine->reset();
    EXPECT_TRUE(engine->assistants().isEmpty());
    EXPECT_FALSE(engine->objectForKey(QStringLiteral("key")).isValid());
    EXPECT_TRUE(engine->installStepView()->currentStep().isNull());
    EXPECT_TRUE(engine->finished());
    EXPECT_EQ(engine->currentAssistant(), 1);
}

TEST_F(RunTest, APageMayEndTheRunItselfWithoutAnybodyHoldingIt)
{
    engine->addAssistant(assistant<TestPage>(QStringLiteral("a")));
    EXPECT_TRUE(engine->run());
    engine->nextButton()->click();
    EXPECT_TRUE(engine->finished());
    engine->nextPressed(); // a click that was still waiting
    engine->prevPressed();
    engine->runNextAssistant();
    engine->runPreviousAssistant();
}

TEST_F(RunTest, DismissingIsAnnouncedOnceThenNothingIsLeftToDismiss)
{
    add(QStringLiteral("a"));
    QSignalSpy dismissed(engine.get(), &TESetupAssistant::TESetupAssistantWasDismissedNotification);
    EXPECT_TRUE(engine->run());
    engine->dismissAssistant();
    EXPECT_EQ(dismissed.count(), 1);
    EXPECT_FALSE(engine->window()->isVisible());
    engine->dismissAssistant();
    EXPECT_EQ(dismissed.count(), 1);
}

TEST_F(RunTest, AnEngineThatGoesDuringItsRunLeavesThePagesTheirViews)
{
    const auto page = add(QStringLiteral("a"));
    EXPECT_TRUE(engine->run());
    engine.reset();
    EXPECT_EQ(page->view()->parent(), nullptr);
}

} // namespace
} // namespace nimbrel::test
