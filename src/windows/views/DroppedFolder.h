// A folder that is dragged over a window.
#pragma once

#include <QString>
#include <QWidget>

class QMimeData;

namespace nimbrel {

// The path, without a slash at its end, where exactly one folder of this computer is dragged; null
// otherwise.
[[nodiscard]] QString droppedFolder(const QMimeData &mimeData);

// Shows that the window would take what is dragged over it. Hidden at first; in nobody's way.
class DropFrame final : public QWidget
{
    Q_OBJECT

public:
    explicit DropFrame(QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace nimbrel
