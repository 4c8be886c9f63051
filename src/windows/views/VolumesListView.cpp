#include "windows/views/VolumesListView.h"

#include "app/Texts.h"

#include <QMouseEvent>
#include <QPainter>

namespace nimbrel {

VolumesListView::VolumesListView(QWidget *parent) : QListView(parent)
{
    setAccessibleName(texts::tr("Encrypted folders"));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setUniformItemSizes(true);
    setResizeMode(QListView::Adjust);
    setAlternatingRowColors(true);
}

void VolumesListView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton)
        event->accept(); // the menu has an event of its own
    else
        QListView::mousePressEvent(event);
}

void VolumesListView::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    if (model() == nullptr || model()->rowCount() > 0)
        return;
    const int margin = fontMetrics().height() * 2;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignCenter | Qt::TextWordWrap,
                     texts::tr("There is no encrypted folder yet. Create a new one, or add one "
                               "that exists: you can drop it here."));
}

} // namespace nimbrel
