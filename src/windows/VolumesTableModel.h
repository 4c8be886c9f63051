#pragma once

#include "volume/NBNimbrelVolume.h"

#include <QAbstractListModel>

class QAbstractItemView;

namespace nimbrel {

class NBVolumesController;

// The volumes as a table's view knows them. The list may be changed by anybody at any time, so a
// row stays with its volume until the next reload; what it shows is always of that moment.
class VolumesTableModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role
    {
        TextRole = Qt::UserRole, // AttributedText
        LabelRole
    };
    VolumesTableModel(const NBVolumesController &controller, QAbstractItemView &view);

    void reload(); // loses the selection
    // The volume that a row stands for; null where there is none, or none any more.
    [[nodiscard]] VolumePtr volumeAt(int row) const;
    // -1 for a volume without a row.
    [[nodiscard]] int rowOf(const VolumePtr &volume) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

private:
    const NBVolumesController &_controller;
    QAbstractItemView &_view;
    QList<std::weak_ptr<NBNimbrelVolume>> _rows;
};

} // namespace nimbrel
