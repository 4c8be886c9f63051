// The table that advanced mode shows: its rows, its context menu, its double click.
#pragma once

#include "volume/NBNimbrelVolume.h"
#include "windows/VolumeCell.h"

#include <QObject>

#include <variant>

class QAction;
class QListView;
class QMenu;

namespace nimbrel {

class NBVolumesController;
class VolumesTableModel;

// Keeps no volumes. Rows are those of the controller's list at the moment of the call. Main thread
// only; the view is somebody else's and outlives it.
class NBVolumesTableViewController final : public QObject
{
    Q_OBJECT

public:
    // awakeFromNib
    NBVolumesTableViewController(NBVolumesController &volumesController, QListView &tableView);
    ~NBVolumesTableViewController() override;

    // numberOfRowsInTableView:
    [[nodiscard]] int numberOfRowsInTableView() const;
    // tableView:objectValueForTableColumn:row:
    // The name of a picture for the column "image", a text for all others; empty without a volume
    // in that row.
    [[nodiscard]] std::variant<QString, AttributedText>
    objectValueForTableColumn(const QString &tableColumn, int row) const;

    // The row that the context menu or a double click is about; -1 for none, also when its volume
    // has left the list since.
    [[nodiscard]] int clickedRow() const;
    [[nodiscard]] int selectedRow() const; // likewise
    void deselectAll();
    void reloadData(); // the selection stays with its volume

    // menuNeedsUpdate:
    // Fits the menu to the clicked volume; false when no menu is to be shown.
    [[nodiscard]] bool menuNeedsUpdate();
    void doubleClick(); // doubleClick:

    [[nodiscard]] QMenu &volumeContextulaMenu() const noexcept { return *_volumeContextulaMenu; }

Q_SIGNALS:
    // The context menu's actions, for the clicked row.
    void openVolume();
    void mountVolume();
    void unmountVolume();
    void changePassphrase();
    void clearPassphrase();
    void editVolume();
    void showInFinder();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void makeMenu();
    void sendFirstItem();
    void setClickedRow(int modelRow);
    [[nodiscard]] int currentRow() const;
    [[nodiscard]] bool takeKey(const QKeyEvent &key);
    void showMenu(const QPoint &globalPosition);
    void showMenuAtCurrentRow();
    [[nodiscard]] VolumePtr selectedVolume() const;
    [[nodiscard]] int rowOf(const VolumePtr &volume) const;

    NBVolumesController &_volumesController;
    QListView &_tableView;
    VolumesTableModel *_model; // the view's
    QMenu *_volumeContextulaMenu;
    bool _firstItemOpens = false;
    std::weak_ptr<NBNimbrelVolume> _clicked;
};

} // namespace nimbrel
