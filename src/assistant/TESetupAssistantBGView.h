// Paints the application's icon, large and faint, behind an assistant.
#pragma once

#include <QIcon>
#include <QRectF>
#include <QWidget>

namespace nimbrel {

class TESetupAssistantBGView final : public QWidget
{
    Q_OBJECT

public:
    explicit TESetupAssistantBGView(QWidget *parent = nullptr);

    [[nodiscard]] double opacity() const noexcept { return _opacity; }
    void setOpacity(double opacity); // 0 to 1
    [[nodiscard]] const QIcon &image() const noexcept { return _image; }
    void setImage(const QIcon &image);
    // x and size count; the icon is anchored to the view's top, so that it stays there when the
    // view changes size.
    [[nodiscard]] const QRectF &imageFrame() const noexcept { return _imageFrame; }
    void setImageFrame(const QRectF &imageFrame);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QIcon _image;
    QRectF _imageFrame;
    double _opacity = 0.15;
};

} // namespace nimbrel
