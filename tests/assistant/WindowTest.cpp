// The engine's window.
#include "assistant/EngineFixture.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace nimbrel::test {
namespace {

class WindowTest : public EngineTest
{
protected:
    // A page with a field in it.
    static std::shared_ptr<TestPage> pageWithField(const QString &step)
    {
        auto page = nimbrel::assistant<TestPage>(step);
        nibs::add(page->assistantNib(), [] {
            auto view = std::make_unique<QWidget>();
            auto *column = new QVBoxLayout(view.get());
            column->addWidget(new QLineEdit(view.get()));
            return view;
        });
        return page;
    }
};

TEST_F(WindowTest, HasRoomForTheLargestPageFromTheStart)
{
    const auto small = add(QStringLiteral("small"));
    const auto large = add(QStringLiteral("large"));
    large->view()->setMinimumSize(900, 700);
    large->view()->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    auto *column = new QVBoxLayout(large->view());
    auto *content = new QWidget(large->view());
    content->setFixedSize(900, 700);
    column->addWidget(content);
    EXPECT_TRUE(engine->run());
    EXPECT_GE(engine->assistantBox()->width(), 900);
    EXPECT_GE(engine->assistantBox()->height(), 700);
    const QSize size = engine->window()->size();
    engine->runNextAssistant();
    QCoreApplication::processEvents();
    EXPECT_EQ(engine->window()->size(), size);
}

TEST_F(WindowTest, TheHeadingIsTheStepOfThePage)
{
    add(QStringLiteral("first step"));
    add(QStringLiteral("second step"));
    EXPECT_TRUE(engine->run());
    EXPECT_EQ(engine->stepTitle()->text(), QStringLiteral("first step"));
    engine->runNextAssistant();
    EXPECT_EQ(engine->stepTitle()->text(), QStringLiteral("second step"));
}

TEST_F(WindowTest, EnterInAFieldMeansNext)
{
    engine->addAssistant(pageWithField(QStringLiteral("a")));
    const auto second = add(QStringLiteral("b"));
    EXPECT_TRUE(engine->run());
    auto *field = engine->window()->findChild<QLineEdit *>();
    ASSERT_NE(field, nullptr);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QCoreApplication::sendEvent(field, &press);
    EXPECT_EQ(engine->currAssistant(), second);
}

TEST_F(WindowTest, TheTabKeyGoesFromThePageToTheButtonsAndBack)
{
    engine->addAssistant(pageWithField(QStringLiteral("a")));
    engine->addAssistant(pageWithField(QStringLiteral("b")));
    EXPECT_TRUE(engine->run());
    engine->runNextAssistant();
    QWidget *const field = engine->assistantBox()->findChild<QLineEdit *>();
    QList<QWidget *> order;
    for (QWidget *next = field->nextInFocusChain(); next != field; next = next->nextInFocusChain())
        if (next->focusPolicy() & Qt::TabFocus)
            order += next;
    EXPECT_EQ(order, (QList<QWidget *>{engine->prevButton(), engine->nextButton()}));
}

TEST_F(WindowTest, ControlsInTheSpecialViewGoBackToTheirPage)
{
    const auto first = add(QStringLiteral("a"));
    add(QStringLiteral("b"));
    auto *control = new QCheckBox(first->view());
    first->whenStarted = [&] { engine->specialView()->layout()->addWidget(control); };
    EXPECT_TRUE(engine->run());
    EXPECT_EQ(control->parent(), engine->specialView());
    engine->runNextAssistant();
    EXPECT_EQ(control->parent(), first->view());
    EXPECT_EQ(engine->specialView()->layout()->count(), 0);
}

TEST_F(WindowTest, ASpecialControlOutlivesItsEngine)
{
    const auto page = add(QStringLiteral("a"));
    auto *control = new QCheckBox(page->view());
    page->whenStarted = [&] { engine->specialView()->layout()->addWidget(control); };
    EXPECT_TRUE(engine->run());
    control->setChecked(true);
    engine->nextButton()->click();
    engine.reset();
    EXPECT_TRUE(control->isChecked());
}

} // namespace
} // namespace nimbrel::test
