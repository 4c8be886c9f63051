#include "assistant/TEInstallStepView.h"

#include "support/Messages.h"

#include <QImage>

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

using RowState = TEInstallStepView::RowState;

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");
const QString c = QStringLiteral("c");

TEST(TEInstallStepViewTest, TheFirstStepIsCurrentAtFirst)
{
    TEInstallStepView view;
    view.setSteps({a, b});
    EXPECT_EQ(view.currentStep(), a);
    EXPECT_EQ(view.rowStates(), (QList<RowState>{RowState::Current, RowState::After}));
}

TEST(TEInstallStepViewTest, RowsAreDoneCurrentOrStillToCome)
{
    TEInstallStepView view;
    view.setSteps({a, b, c});
    EXPECT_EQ(view.selectStep(b), 0);
    EXPECT_EQ(view.rowStates(),
              (QList<RowState>{RowState::Before, RowState::Current, RowState::After}));
}

TEST(TEInstallStepViewTest, AnUnknownTitleLeavesTheHighlightWhereItWas)
{
    TEInstallStepView view;
    view.setSteps({a, b});
    const Messages log;
    EXPECT_EQ(view.selectStep(c), -192);
    EXPECT_EQ(view.currentStep(), a);
    EXPECT_EQ(log.texts(), QStringList{QStringLiteral(
                               "ERROR (-[TEInstallStepView selectStep:]:98): bad step: c")});
}

TEST(TEInstallStepViewTest, TwoEqualTitlesInARowAreBothCurrent)
{
    TEInstallStepView view;
    view.setSteps({a, b, b, c, b});
    EXPECT_EQ(view.selectStep(b), 0);
    EXPECT_EQ(view.rowStates(),
              (QList<RowState>{RowState::Before, RowState::Current, RowState::Current,
                               RowState::After, RowState::After}));
}

TEST(TEInstallStepViewTest, WithoutACurrentStepAllRowsAreDone)
{
    TEInstallStepView view;
    view.setSteps({});
    EXPECT_TRUE(view.rowStates().isEmpty());
    EXPECT_TRUE(view.currentStep().isNull());
}

TEST(TEInstallStepViewTest, NothingIsDrawnAfterTheStepsAreCleared)
{
    TEInstallStepView view;
    view.resize(200, 200);
    const QImage empty = view.grab().toImage();
    view.setSteps({a, b});
    EXPECT_NE(view.grab().toImage(), empty);
    view.clearSteps();
    EXPECT_TRUE(view.currentStep().isNull());
    EXPECT_EQ(view.grab().toImage(), empty);
}

TEST(TEInstallStepViewTest, ThePitchIsTheDesiredOneWhereThereIsRoom)
{
    EXPECT_DOUBLE_EQ(TEInstallStepView::spacing(3, 20, 300), 25);
}

TEST(TEInstallStepViewTest, ThePitchNeverFallsBelowTheRowsHeight)
{
    EXPECT_DOUBLE_EQ(TEInstallStepView::spacing(3, 20, 100), 20);
}

TEST(TEInstallStepViewTest, ThePitchShrinksWithTheRoom)
{
    EXPECT_DOUBLE_EQ(TEInstallStepView::spacing(3, 20, 151), 22);
}

TEST(TEInstallStepViewTest, TheTextOffsetOfTheCellsIsTwo)
{
    TEInstallStepView view;
    EXPECT_DOUBLE_EQ(view.verticalTextOffset(), 2.0);
    view.setVerticalTextOffset(1);
    EXPECT_DOUBLE_EQ(view.verticalTextOffset(), 1.0);
}

TEST(TEInstallStepViewTest, StepsDoneAndCurrentShareTheirBoldText)
{
    const TEInstallStepView view;
    EXPECT_EQ(view.look(RowState::Before).text, view.look(RowState::Current).text);
    EXPECT_TRUE(view.look(RowState::Current).text.font.bold());
    EXPECT_FALSE(view.look(RowState::After).text.font.bold());
}

TEST(TEInstallStepViewTest, ALookOfTheFlowsOwnStaysOverAChangeOfThePalette)
{
    TEInstallStepView view;
    TEInstallStepView::Look own = view.look(RowState::Current);
    own.text.color = Qt::magenta;
    view.setLook(RowState::Current, own);
    QPalette other = view.palette();
    other.setColor(QPalette::WindowText, Qt::green);
    view.setPalette(other);
    EXPECT_EQ(view.look(RowState::Current).text.color, QColor(Qt::magenta));
}

TEST(TEInstallStepViewTest, TakesTheColoursOfADarkPalette)
{
    TEInstallStepView view;
    EXPECT_TRUE(view.look(RowState::Current).text.shadowColor.isValid());
    QPalette dark = view.palette();
    dark.setColor(QPalette::Window, Qt::black);
    dark.setColor(QPalette::WindowText, Qt::white);
    view.setPalette(dark);
    EXPECT_EQ(view.look(RowState::Current).text.color, QColor(Qt::white));
    EXPECT_FALSE(view.look(RowState::Current).text.shadowColor.isValid());
}

TEST(TEInstallStepViewTest, HasRoomForTheLongestTitleInItsBoldestLook)
{
    TEInstallStepView view;
    view.setSteps({a, QStringLiteral("Modify the advanced options of this folder")});
    TEInstallStepCell cell;
    cell.setImage(view.look(RowState::Current).image);
    cell.setStringAttributes(view.look(RowState::Current).text);
    cell.setStringValue(view.steps().last());
    EXPECT_GE(view.sizeHint().width(), cell.cellSize().width());
}

TEST(TEInstallStepViewTest, TellsScreenReadersWhereTheAssistantIs)
{
    TEInstallStepView view;
    view.setSteps({a, b});
    EXPECT_EQ(view.selectStep(b), 0);
    EXPECT_EQ(view.accessibleName(), QStringLiteral("Step 2 of 2: b"));
}

} // namespace
} // namespace nimbrel::test
