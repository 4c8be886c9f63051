#include "windows/NBVolumesTableViewController.h"

#include "app/Texts.h"
#include "volume/NBVolumesController.h"
#include "windows/VolumeCellDelegate.h"
#include "windows/VolumesTableModel.h"

#include <QKeyEvent>
#include <QListView>
#include <QMenu>

namespace nimbrel {

NBVolumesTableViewController::NBVolumesTableViewController(NBVolumesController &volumesController,
                                                           QListView &tableView)
    : _volumesController(volumesController), _tableView(tableView),
      _model(new VolumesTableModel(volumesController, tableView)),
      _volumeContextulaMenu(new QMenu(&tableView))
{
    _tableView.setModel(_model);
    _tableView.setItemDelegate(new VolumeCellDelegate(&_tableView));
    _tableView.installEventFilter(this);
    _tableView.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&_tableView, &QWidget::customContextMenuRequested, this,
            [this](const QPoint &position) {
                setClickedRow(_tableView.indexAt(position).row());
                showMenu(_tableView.viewport()->mapToGlobal(position));
            });
    connect(&_tableView, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex &cell) {
        setClickedRow(cell.row());
        doubleClick();
    });
    makeMenu();
}

NBVolumesTableViewController::~NBVolumesTableViewController() = default;

int NBVolumesTableViewController::numberOfRowsInTableView() const
{
    return static_cast<int>(_volumesController.volumes().size());
}

std::variant<QString, AttributedText>
NBVolumesTableViewController::objectValueForTableColumn(const QString &tableColumn, int row) const
{
    const QList<VolumePtr> &volumes = _volumesController.volumes();
    const bool isImage = tableColumn == QLatin1String("image");
    if (row < 0 || row >= volumes.size())
        return isImage ? std::variant<QString, AttributedText>(QString()) : AttributedText{};
    if (isImage)
        return volumeCell::imageName(*volumes[row]);
    return volumeCell::text(*volumes[row], row == selectedRow(), _tableView.font(),
                            _tableView.palette());
}

int NBVolumesTableViewController::rowOf(const VolumePtr &volume) const
{
    return volume ? static_cast<int>(_volumesController.volumes().indexOf(volume)) : -1;
}

int NBVolumesTableViewController::clickedRow() const
{
    return rowOf(_clicked.lock());
}

VolumePtr NBVolumesTableViewController::selectedVolume() const
{
    const QModelIndexList selected = _tableView.selectionModel()->selectedIndexes();
    return selected.isEmpty() ? nullptr : _model->volumeAt(selected.first().row());
}

int NBVolumesTableViewController::selectedRow() const
{
    return rowOf(selectedVolume());
}

void NBVolumesTableViewController::deselectAll()
{
    _tableView.selectionModel()->clear();
}

void NBVolumesTableViewController::reloadData()
{
    const VolumePtr selected = selectedVolume();
    _model->reload();
    if (const int row = _model->rowOf(selected); row >= 0)
        _tableView.setCurrentIndex(_model->index(row));
}

void NBVolumesTableViewController::setClickedRow(int modelRow)
{
    _clicked = _model->volumeAt(modelRow);
}

void NBVolumesTableViewController::doubleClick()
{
    if (const int row = clickedRow(); row >= 0)
        _volumesController.openVolumeInFinder(_volumesController.volumes()[row]);
}

// Keys come to the view, and so do the menus that they ask for; the mouse's come to its viewport.
bool NBVolumesTableViewController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &_tableView && event->type() == QEvent::KeyPress)
        return takeKey(static_cast<const QKeyEvent &>(*event));
    if (watched != &_tableView || event->type() != QEvent::ContextMenu)
        return QObject::eventFilter(watched, event);
    showMenuAtCurrentRow();
    return true;
}

bool NBVolumesTableViewController::takeKey(const QKeyEvent &key)
{
    if (key.key() == Qt::Key_F10 && key.modifiers() == Qt::ShiftModifier) {
        showMenuAtCurrentRow();
        return true;
    }
    if (key.key() != Qt::Key_Return && key.key() != Qt::Key_Enter)
        return false;
    setClickedRow(currentRow());
    doubleClick();
    return true;
}

int NBVolumesTableViewController::currentRow() const
{
    return _tableView.currentIndex().row();
}

} // namespace nimbrel
