#include "windows/VolumesTableModel.h"

#include "assistant/Icons.h"
#include "volume/NBVolumesController.h"
#include "windows/VolumeCell.h"

#include <QAbstractItemView>
#include <QItemSelectionModel>

namespace nimbrel {

VolumesTableModel::VolumesTableModel(const NBVolumesController &controller, QAbstractItemView &view)
    : QAbstractListModel(&view), _controller(controller), _view(view)
{
}

void VolumesTableModel::reload()
{
    beginResetModel();
    _rows.clear();
    for (const VolumePtr &volume : _controller.volumes())
        _rows += volume;
    endResetModel();
}

VolumePtr VolumesTableModel::volumeAt(int row) const
{
    const VolumePtr volume = row >= 0 && row < _rows.size() ? _rows[row].lock() : nullptr;
    return _controller.volumes().contains(volume) ? volume : nullptr;
}

int VolumesTableModel::rowOf(const VolumePtr &volume) const
{
    for (int row = 0; row < _rows.size(); ++row)
        if (volume && volumeAt(row) == volume)
            return row;
    return -1;
}

int VolumesTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(_rows.size());
}

QVariant VolumesTableModel::data(const QModelIndex &index, int role) const
{
    const VolumePtr volume = volumeAt(index.row());
    if (!volume)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case LabelRole:
        return volume->label();
    case TextRole:
        return QVariant::fromValue(volumeCell::text(
            *volume, _view.selectionModel()->isSelected(index), _view.font(), _view.palette()));
    case Qt::DecorationRole:
        return icons::named(volumeCell::imageName(*volume));
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
        return QStringLiteral("%1 (%2)").arg(volume->path(), volumeCell::state(*volume));
    case Qt::AccessibleTextRole:
        return QStringLiteral("%1, %2").arg(volume->label(), volumeCell::state(*volume));
    default:
        return {};
    }
}

} // namespace nimbrel
