#include "assistant/TESetupAssistantBGView.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

QIcon black()
{
    QPixmap pixels(512, 512);
    pixels.fill(Qt::black);
    return QIcon(pixels);
}

QColor at(TESetupAssistantBGView &view, int x, int y)
{
    return view.grab().toImage().pixelColor(x, y);
}

class BackgroundTest : public ::testing::Test
{
protected:
    BackgroundTest()
    {
        view.resize(600, 600);
        view.setImage(black());
        QPalette white = view.palette();
        white.setColor(QPalette::Window, Qt::white);
        view.setPalette(white);
    }

    TESetupAssistantBGView view;
};

TEST_F(BackgroundTest, PaintsTheIconFaintly)
{
    EXPECT_DOUBLE_EQ(view.opacity(), 0.15);
    EXPECT_NEAR(at(view, 100, 100).red(), 255 * 0.85, 2);
}

TEST_F(BackgroundTest, TheIconStaysAnchoredToTheTopWhenTheViewGrows)
{
    EXPECT_NE(at(view, 100, 390), QColor(Qt::white));
    EXPECT_EQ(at(view, 100, 413), QColor(Qt::white));
    view.resize(600, 900);
    EXPECT_NE(at(view, 100, 390), QColor(Qt::white));
    EXPECT_EQ(at(view, 100, 413), QColor(Qt::white));
}

TEST_F(BackgroundTest, TheFrameDecidesOverPlaceAndSize)
{
    EXPECT_EQ(view.imageFrame().size(), QSizeF(512, 512));
    EXPECT_DOUBLE_EQ(view.imageFrame().x(), -50);
    EXPECT_EQ(at(view, 463, 100), QColor(Qt::white));
    view.setImageFrame(QRectF(100, 0, 200, 412));
    EXPECT_EQ(at(view, 99, 100), QColor(Qt::white));
    EXPECT_NE(at(view, 101, 100), QColor(Qt::white));
    EXPECT_EQ(at(view, 301, 100), QColor(Qt::white));
}

TEST_F(BackgroundTest, TheIconEndsSoftly)
{
    EXPECT_LT(at(view, 100, 200).red(), at(view, 100, 330).red());
    EXPECT_LT(at(view, 100, 330).red(), at(view, 100, 400).red());
}

TEST_F(BackgroundTest, OpacityCanBeSet)
{
    view.setOpacity(1);
    EXPECT_EQ(at(view, 100, 100), QColor(Qt::black));
}

} // namespace
} // namespace nimbrel::test
