// The table's context menu.
#include "windows/NBVolumesTableViewController.h"

#include "app/Texts.h"
#include "volume/NBVolumesController.h"

#include <QListView>
#include <QMenu>

namespace nimbrel {

namespace {

// The places of the items that change.
enum Item
{
    OpenOrMount = 0,
    Unmount = 1,
    ChangePassword = 3,
    ClearPassword = 4
};

} // namespace

void NBVolumesTableViewController::makeMenu()
{
    QMenu &menu = *_volumeContextulaMenu;
    menu.setObjectName(QStringLiteral("volumeContextulaMenu"));
    const auto add = [this, &menu](const QString &title, auto action) {
        connect(menu.addAction(title), &QAction::triggered, this, action);
    };
    using This = NBVolumesTableViewController;
    add(texts::tr("Mount"), &This::sendFirstItem);
    add(texts::tr("Unmount"), &This::unmountVolume);
    menu.addSeparator();
    add(texts::tr("Change Password…"), &This::changePassphrase);
    add(texts::tr("Clear Password"), &This::clearPassphrase);
    menu.addSeparator();
    add(texts::tr("Edit…"), &This::editVolume);
    add(texts::tr("Show in File Manager"), &This::showInFinder);
}

// As the menu was when it came up: the volume may have been mounted while the user looked at it.
void NBVolumesTableViewController::sendFirstItem()
{
    if (_firstItemOpens)
        Q_EMIT openVolume();
    else
        Q_EMIT mountVolume();
}

bool NBVolumesTableViewController::menuNeedsUpdate()
{
    const int row = clickedRow();
    if (row < 0)
        return false;
    const NBNimbrelVolume &volume = *_volumesController.volumes()[row];
    const bool isMounted = volume.isMounted();
    const QList<QAction *> items = _volumeContextulaMenu->actions();
    _firstItemOpens = isMounted;
    items[OpenOrMount]->setText(isMounted ? texts::tr("Open") : texts::tr("Mount"));
    items[OpenOrMount]->setEnabled(true);
    items[Unmount]->setEnabled(isMounted);
    items[ChangePassword]->setEnabled(isMounted);
    items[ClearPassword]->setEnabled(isMounted && volume.storePassphrase());
    return true;
}

void NBVolumesTableViewController::showMenu(const QPoint &globalPosition)
{
    if (menuNeedsUpdate())
        _volumeContextulaMenu->popup(globalPosition);
}

void NBVolumesTableViewController::showMenuAtCurrentRow()
{
    const QModelIndex current = _tableView.currentIndex();
    setClickedRow(current.row());
    _tableView.scrollTo(current);
    const QRect cell = _tableView.visualRect(current);
    showMenu(_tableView.viewport()->mapToGlobal(cell.center()));
}

} // namespace nimbrel
