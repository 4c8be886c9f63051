#include "assistant/TEInstallStepCell.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPixmap>

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

QIcon square()
{
    QPixmap pixels(64, 64);
    pixels.fill(Qt::red);
    return QIcon(pixels);
}

TEST(TEInstallStepCellTest, IsAsWideAsPictureGapAndText)
{
    TEInstallStepCell cell;
    const QFontMetricsF metrics(cell.stringAttributes().font);
    cell.setStringValue(QStringLiteral("A step"));
    EXPECT_DOUBLE_EQ(cell.cellSize().width(),
                     5 + metrics.horizontalAdvance(QStringLiteral("A step")));
    const double without = cell.cellSize().width();
    cell.setImage(square());
    EXPECT_GT(cell.cellSize().width(), without);
    EXPECT_GE(cell.cellSize().height(), metrics.height());
}

TEST(TEInstallStepCellTest, MeasuresAnewWithOtherAttributes)
{
    TEInstallStepCell cell;
    cell.setStringValue(QStringLiteral("A step"));
    const QSizeF before = cell.cellSize();
    StepTextAttributes larger = cell.stringAttributes();
    larger.font.setPointSizeF(larger.font.pointSizeF() * 2);
    cell.setStringAttributes(larger);
    EXPECT_GT(cell.cellSize().width(), before.width());
    EXPECT_GT(cell.cellSize().height(), before.height());
}

TEST(TEInstallStepCellTest, DrawsThePictureAtTheFramesLeftEdge)
{
    TEInstallStepCell cell;
    cell.setImage(square());
    QImage canvas(60, 40, QImage::Format_ARGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    cell.draw(painter, QRectF(10, 5, 50, 30));
    painter.end();
    const int y = 5 + static_cast<int>(cell.cellSize().height() / 2);
    EXPECT_EQ(canvas.pixelColor(12, y), QColor(Qt::red));
    EXPECT_EQ(canvas.pixelColor(8, y), QColor(Qt::white));
}

} // namespace
} // namespace nimbrel::test
