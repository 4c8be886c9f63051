#include "assistant/Appearance.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

class AppearanceTest : public ::testing::Test
{
protected:
    AppearanceTest() { QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion"))); }
    ~AppearanceTest() override { appearance::apply(appearance::ColorScheme::Light); }
};

TEST_F(AppearanceTest, QtsOwnStyleTurnsDarkAndLightAgain)
{
    appearance::apply(appearance::ColorScheme::Dark);
    EXPECT_TRUE(appearance::isDark(QApplication::palette()));
    appearance::apply(appearance::ColorScheme::Light);
    EXPECT_FALSE(appearance::isDark(QApplication::palette()));
}

TEST_F(AppearanceTest, DarkTextIsReadableInEveryRole)
{
    appearance::apply(appearance::ColorScheme::Dark);
    const QPalette palette = QApplication::palette();
    for (const auto &[text, ground] : {std::pair{QPalette::WindowText, QPalette::Window},
                                      {QPalette::Text, QPalette::Base},
                                      {QPalette::ButtonText, QPalette::Button},
                                      {QPalette::ToolTipText, QPalette::ToolTipBase},
                                      {QPalette::PlaceholderText, QPalette::Base}})
        EXPECT_GT(palette.color(text).lightness() - palette.color(ground).lightness(), 100);
}

TEST_F(AppearanceTest, ADesktopThatSaysNothingIsLight)
{
    EXPECT_EQ(appearance::preferredColorScheme(), appearance::ColorScheme::Light);
}

} // namespace
} // namespace nimbrel::test
