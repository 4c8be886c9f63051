// One row of a list of steps: a picture and a title.
#pragma once

#include "assistant/StepTextAttributes.h"

#include <QIcon>
#include <QRectF>
#include <QSizeF>
#include <QString>

class QPainter;

namespace nimbrel {

// Sizes in device-independent pixels; each change of picture, text or attributes measures anew.
class TEInstallStepCell final
{
public:
    void setImage(const QIcon &image);
    [[nodiscard]] const QIcon &image() const noexcept { return _image; }
    void setStringValue(const QString &text);
    [[nodiscard]] const QString &stringValue() const noexcept { return _text; }
    void setStringAttributes(const StepTextAttributes &attributes);
    [[nodiscard]] const StepTextAttributes &stringAttributes() const noexcept
    {
        return _attributes;
    }
    void setVerticalTextOffset(double offset) noexcept { _verticalTextOffset = offset; }
    [[nodiscard]] double verticalTextOffset() const noexcept { return _verticalTextOffset; }
    // The picture's width, 5 and the text's width, by the higher of both.
    [[nodiscard]] QSizeF cellSize() const noexcept { return _cellSize; }

    // drawWithFrame:inView:
    // The picture at the frame's left edge, the text 5 right of it, both centred in the cell's
    // height; the text is raised by the offset.
    void draw(QPainter &painter, const QRectF &withFrame) const;

private:
    void calculateSizes();
    void drawText(QPainter &painter, const QRectF &frame) const;

    QIcon _image;
    QString _text;
    StepTextAttributes _attributes;
    QSizeF _imageSize;
    QSizeF _textSize;
    QSizeF _cellSize;
    double _verticalTextOffset = 0;
};

} // namespace nimbrel
