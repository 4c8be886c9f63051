#include "windows/VolumeCellDelegate.h"

#include "windows/VolumeCell.h"
#include "windows/VolumesTableModel.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

namespace nimbrel {

namespace {

constexpr int iconSide = 32; // device-independent pixels

QColor textColor(const QStyleOptionViewItem &option)
{
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    return option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
}

// What the cell's own font and colour become at one place of the text.
QTextCharFormat formatAt(const AttributedText &text, int position, const QStyleOptionViewItem &cell)
{
    QTextCharFormat format;
    format.setFont(cell.font);
    format.setForeground(textColor(cell));
    for (const QTextLayout::FormatRange &part : text.attributes)
        if (position >= part.start && position < part.start + part.length)
            format.merge(part.format);
    return format;
}

// Line breaks and the like in a name would spoil its line.
QString onOneLine(QString text)
{
    for (QChar &character : text)
        if (character.category() == QChar::Other_Control)
            character = QChar::ReplacementCharacter;
    return text;
}

// One line at the top of `room`, which it leaves behind.
void drawLine(QPainter &painter, QRect &room, const QTextCharFormat &format, const QString &text,
              Qt::TextElideMode mode)
{
    const QFontMetrics metrics(format.font());
    painter.setFont(format.font());
    painter.setPen(format.foreground().color());
    painter.drawText(room, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                     metrics.elidedText(onOneLine(text), mode, room.width()));
    room.setTop(room.top() + metrics.lineSpacing());
}

int spacing(const QStyleOptionViewItem &option)
{
    return option.fontMetrics.height() * 3 / 4;
}

} // namespace

// Label and path may hold line breaks: their places in the text follow from its end.
void VolumeCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QStyle &style = cell.widget != nullptr ? *cell.widget->style() : *QApplication::style();
    painter->save();
    style.drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, cell.widget);
    const int gap = spacing(cell);
    QRect room = cell.rect.adjusted(gap, 0, -gap, 0);
    const QRect place(room.left(), room.center().y() - iconSide / 2, iconSide, iconSide);
    index.data(Qt::DecorationRole).value<QIcon>().paint(painter, place);
    room.setLeft(place.right() + gap);

    const auto text = index.data(VolumesTableModel::TextRole).value<AttributedText>();
    const QString label = index.data(VolumesTableModel::LabelRole).toString();
    const auto pathAt = static_cast<int>(label.size()) + 3;
    room.setTop(room.top() + QFontMetrics(formatAt(text, 0, cell).font()).lineSpacing());
    drawLine(*painter, room, formatAt(text, 2, cell), label, Qt::ElideRight);
    drawLine(*painter, room, formatAt(text, pathAt, cell), text.string.mid(pathAt),
             Qt::ElideMiddle);
    painter->restore();
}

// The text's lines, with as much room below them as the blank one makes above.
QSize VolumeCellDelegate::sizeHint(const QStyleOptionViewItem &option,
                                   const QModelIndex & /*index*/) const
{
    const int lines = option.fontMetrics.lineSpacing() * 3;
    return {iconSide * 4, std::max(lines, iconSide + spacing(option))};
}

} // namespace nimbrel
