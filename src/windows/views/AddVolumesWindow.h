#pragma once

#include <QDialog>

class QAbstractItemModel;
class QLabel;
class QProgressBar;
class QPushButton;
class QTableView;
class QVBoxLayout;

namespace nimbrel {

class PathControl;
class PopUpButton;

class AddVolumesWindow final : public QDialog
{
    Q_OBJECT

public:
    // The table shows what `folders` holds.
    AddVolumesWindow(QAbstractItemModel &folders, QWidget *parent);

    PopUpButton *foldersPopUpButton; // an item's data is its QUrl; item 0 is there
    PathControl *rootPathControl;
    QTableView *foldersTableView; // columns "Name" and "Path"
    QLabel *foldersScanTextField; // what is looked through, then what was found
    QProgressBar *foldersScanProgressIndicator;
    QPushButton *addVolumeButton; // the default one
    QPushButton *cancelButton;

private:
    void setUpTable(QAbstractItemModel &folders);
    void selectWhenAlone(const QModelIndex &row) const;
    void addLocation(QVBoxLayout &column);
    void addScan(QVBoxLayout &column);
    void addButtons(QVBoxLayout &column);
};

} // namespace nimbrel
