#include "assistant/TEInstallStepCell.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace nimbrel {

namespace {

constexpr double gap = 5.0; // between picture and text

} // namespace

void TEInstallStepCell::setImage(const QIcon &image)
{
    _image = image;
    calculateSizes();
}

void TEInstallStepCell::setStringValue(const QString &text)
{
    _text = text;
    calculateSizes();
}

void TEInstallStepCell::setStringAttributes(const StepTextAttributes &attributes)
{
    _attributes = attributes;
    calculateSizes();
}

// The picture is as high as the text, so that it grows with the user's font.
void TEInstallStepCell::calculateSizes()
{
    const QFontMetricsF metrics(_attributes.font);
    _textSize = QSizeF(metrics.horizontalAdvance(_text), metrics.height());
    _imageSize = _image.isNull() ? QSizeF(0, 0) : QSizeF(metrics.height(), metrics.height());
    _cellSize = QSizeF(_imageSize.width() + gap + _textSize.width(),
                       std::max(_imageSize.height(), _textSize.height()));
}

void TEInstallStepCell::draw(QPainter &painter, const QRectF &withFrame) const
{
    const double top = withFrame.y() + (_cellSize.height() - _imageSize.height()) / 2;
    const QRectF place(QPointF(withFrame.x(), top), _imageSize);
    _image.paint(&painter, place.toAlignedRect());
    drawText(painter, withFrame);
}

void TEInstallStepCell::drawText(QPainter &painter, const QRectF &frame) const
{
    const double top =
        frame.y() + (_cellSize.height() - _textSize.height()) / 2 - _verticalTextOffset;
    const QRectF place(frame.x() + _imageSize.width() + gap, top, _textSize.width() + 1,
                       _textSize.height());
    painter.setFont(_attributes.font);
    if (_attributes.shadowColor.isValid()) {
        painter.setPen(_attributes.shadowColor);
        painter.drawText(place.translated(_attributes.shadowOffset), Qt::AlignVCenter, _text);
    }
    painter.setPen(_attributes.color);
    painter.drawText(place, Qt::AlignVCenter, _text);
}

} // namespace nimbrel
