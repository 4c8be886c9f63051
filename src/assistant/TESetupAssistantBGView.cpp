#include "assistant/TESetupAssistantBGView.h"

#include "assistant/Icons.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>

namespace nimbrel {

namespace {

constexpr double iconSide = 512;
constexpr double iconX = -50;
constexpr double iconBase = 412;  // its lower edge, below the view's top
constexpr double fadedPart = 0.4; // of its height: in a higher window it ends softly

QPixmap faded(QPixmap image)
{
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    const QRectF all(QPointF(), image.deviceIndependentSize());
    QLinearGradient fading(0, all.height() * (1 - fadedPart), 0, all.height());
    fading.setColorAt(0, Qt::black);
    fading.setColorAt(1, Qt::transparent);
    painter.fillRect(all, fading);
    return image;
}

} // namespace

TESetupAssistantBGView::TESetupAssistantBGView(QWidget *parent)
    : QWidget(parent), _imageFrame(iconX, height() - iconBase, iconSide, iconSide)
{
    setImage(icons::named(QStringLiteral("NSApplicationIcon")));
}

void TESetupAssistantBGView::setOpacity(double opacity)
{
    _opacity = opacity;
    update();
}

void TESetupAssistantBGView::setImage(const QIcon &image)
{
    _image = image;
    update();
}

void TESetupAssistantBGView::setImageFrame(const QRectF &imageFrame)
{
    _imageFrame = imageFrame;
    update();
}

void TESetupAssistantBGView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setOpacity(_opacity);
    const QRectF place(QPointF(_imageFrame.x(), iconBase - _imageFrame.height()),
                       _imageFrame.size());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QPixmap pixels = faded(_image.pixmap(place.size().toSize(), devicePixelRatio()));
    painter.drawPixmap(place, pixels, QRectF(pixels.rect()));
}

} // namespace nimbrel
