#include "windows/views/DroppedFolder.h"

#include <QFileInfo>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

namespace nimbrel {

QString droppedFolder(const QMimeData &mimeData)
{
    const QList<QUrl> urls = mimeData.urls();
    if (urls.size() != 1 || !urls.first().isLocalFile())
        return {};
    QString path = urls.first().toLocalFile();
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return QFileInfo(path).isDir() ? path : QString();
}

DropFrame::DropFrame(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void DropFrame::paintEvent(QPaintEvent * /*event*/)
{
    constexpr int width = 3; // device-independent pixels
    QColor color = palette().color(QPalette::Highlight);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, width));
    color.setAlphaF(0.12F);
    painter.setBrush(color);
    painter.drawRoundedRect(rect().adjusted(width, width, -width, -width), 2 * width, 2 * width);
}

} // namespace nimbrel
