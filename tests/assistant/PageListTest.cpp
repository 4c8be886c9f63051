// The engine's list of pages.
#include "assistant/EngineFixture.h"

namespace nimbrel::test {
namespace {

class PageListTest : public EngineTest
{
};

TEST_F(PageListTest, PagesStandInTheOrderInWhichTheyAreAdded)
{
    const auto first = add(QStringLiteral("a"));
    const auto second = add(QStringLiteral("b"));
    EXPECT_EQ(engine->assistants(), (QList<AssistantPtr>{first, second}));
    EXPECT_EQ(first->controller(), engine.get());
    EXPECT_NE(first->view(), nullptr);
}

TEST_F(PageListTest, APageWithoutItsViewIsToldToTheUserAndLeftOut)
{
    engine->addAssistant(assistant<TestPage>(QStringLiteral("missing"), false));
    EXPECT_TRUE(engine->assistants().isEmpty());
    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_EQ(alerts.shown[0].messageText, QStringLiteral("Error"));
    EXPECT_EQ(alerts.shown[0].informativeText,
              QStringLiteral("TestPage failed to setup with error: -192. Please contact support."));
    EXPECT_EQ(alerts.shown[0].buttons, QStringList{QStringLiteral("OK")});
    EXPECT_TRUE(alerts.shown[0].isCaution);
}

TEST_F(PageListTest, TheFlowRunsOnWithoutAPageThatCouldNotBePrepared)
{
    engine->addAssistant(assistant<TestPage>(QStringLiteral("missing"), false));
    const auto page = add(QStringLiteral("there"));
    EXPECT_TRUE(engine->run());
    EXPECT_EQ(page->calls, QStringList{QStringLiteral("start")});
}

TEST_F(PageListTest, AddingAPageTwiceIsLoggedAndItStandsTwice)
{
    const auto page = add(QStringLiteral("a"));
    const Messages log;
    engine->addAssistant(page);
    EXPECT_EQ(engine->assistants(), (QList<AssistantPtr>{page, page}));
    EXPECT_EQ(log.texts(),
              QStringList{QStringLiteral("WARN (-[TESetupAssistant insertAssistant:atIndex:]:317): "
                                         "TestPage has already been prepared")});
}

TEST_F(PageListTest, APageIsInsertedRightBehindTheCurrentOne)
{
    const auto first = add(QStringLiteral("a"));
    const auto last = add(QStringLiteral("c"));
    const auto inserted = assistant<TestPage>(QStringLiteral("b"));
    engine->insertNextAssistant(inserted);
    EXPECT_EQ(engine->assistants(), (QList<AssistantPtr>{first, inserted, last}));
}

TEST_F(PageListTest, AnIndexOutsideTheListIsCutToIt)
{
    const auto first = add(QStringLiteral("a"));
    const auto last = assistant<TestPage>(QStringLiteral("b"));
    engine->insertAssistant(last, 7);
    const auto front = assistant<TestPage>(QStringLiteral("c"));
    engine->insertAssistant(front, -1);
    EXPECT_EQ(engine->assistants(), (QList<AssistantPtr>{front, first, last}));
}

TEST_F(PageListTest, OnlyAPageOfExactlyTheClassIsFound)
{
    const auto other = assistant<OtherPage>(QStringLiteral("other"));
    engine->addAssistant(other);
    EXPECT_FALSE(engine->containsAssistantOfClass<TestPage>());
    EXPECT_TRUE(engine->containsAssistantOfClass<OtherPage>());
    EXPECT_EQ(engine->getAssistantOfClass<OtherPage>(), other);
    EXPECT_EQ(engine->getAssistantOfClass<TestPage>(), nullptr);
}

TEST_F(PageListTest, NeighboursAreMissingAtTheEnds)
{
    EXPECT_EQ(engine->currAssistant(), nullptr);
    const auto first = add(QStringLiteral("a"));
    const auto last = add(QStringLiteral("b"));
    EXPECT_EQ(engine->currAssistant(), first);
    EXPECT_EQ(engine->prevAssistant(), nullptr);
    EXPECT_EQ(engine->nextAssistant(), last);
    EXPECT_TRUE(engine->run());
    engine->runNextAssistant();
    EXPECT_EQ(engine->prevAssistant(), first);
    EXPECT_EQ(engine->nextAssistant(), nullptr);
}

TEST_F(PageListTest, APageIsNamedAfterItsClass)
{
    EXPECT_EQ(add(QStringLiteral("a"))->assistantName(), QStringLiteral("TestPage"));
    EXPECT_EQ(TEBaseAssistant().assistantNib(), QStringLiteral("TEBaseAssistant"));
    EXPECT_TRUE(TEBaseAssistant().orderedSteps().isEmpty());
    EXPECT_FALSE(TEBaseAssistant().results().isValid());
}

TEST_F(PageListTest, ThereIsOneSharedEngine)
{
    EXPECT_EQ(&TESetupAssistant::assistant(), &TESetupAssistant::assistant());
    EXPECT_EQ(TESetupAssistant::assistant().nibName(), QStringLiteral("SetupAssistant"));
    EXPECT_EQ(TESetupAssistant::assistant().window(), nullptr);
}

} // namespace
} // namespace nimbrel::test
