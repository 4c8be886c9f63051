#pragma once

#include <QStyledItemDelegate>

namespace nimbrel {

// Paints a volume's row: the picture of its state beside label and path. What has no room is
// shortened, the path in its middle.
class VolumeCellDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const override;
};

} // namespace nimbrel
