// What the window shows, and what can be done.
#include "windows/NBVolumesManagerWindowController.h"

#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/Icons.h"
#include "assistants/widgets/PathControl.h"
#include "volume/NBVolumesController.h"
#include "windows/NBVolumesTableViewController.h"
#include "windows/VolumeCell.h"
#include "windows/views/VolumesManagerWindow.h"

#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QToolBar>

namespace nimbrel {

void NBVolumesManagerWindowController::updateToolbar()
{
    if (!_window)
        return;
    const bool advanced = isAdvanced();
    if (!advanced)
        _window->tableScrollView->hide();
    int height = _window->height();
    if (_toolbarFirstInit || _toolbarIsAdvancedMode != advanced) {
        buildToolbar();
        using Contents = VolumesManagerWindow::Contents;
        height = _window->heightFor(advanced ? Contents::List : Contents::OneFolder);
    }
    if (advanced)
        _window->tableScrollView->show();
    _window->changePasswordToolbarItem->setEnabled(false);
    showContents(height);
    validateToolbar();
}

// The mode's item names the mode that it leads to.
void NBVolumesManagerWindowController::buildToolbar()
{
    const bool advanced = isAdvanced();
    Util::clearToolbar(*_window->toolbar);
    QAction &add = *_window->addVolumeToolbarItem;
    add.setText(advanced ? texts::tr("Add") : texts::tr("Open"));
    add.setIcon(
        icons::named(advanced ? QStringLiteral("add_32x32") : QStringLiteral("open_32x32")));
    _window->switchModeToolbarItem->setText(advanced ? texts::tr("Simple") : texts::tr("Advanced"));
    _window->switchModeToolbarItem->setToolTip(advanced
                                                   ? texts::tr("Serve one encrypted folder only")
                                                   : texts::tr("Serve several encrypted folders, "
                                                               "with more options"));
    using Contents = VolumesManagerWindow::Contents;
    _window->insertItems(advanced ? Contents::List : Contents::OneFolder);
    _toolbarIsAdvancedMode = advanced;
    _toolbarFirstInit = false;
}

void NBVolumesManagerWindowController::showContents(int height)
{
    const bool advanced = isAdvanced();
    _window->folderPanel->setVisible(!advanced);
    if (advanced)
        _tableViewController->reloadData();
    else
        showLastVolume();
    if (height != _window->height())
        _window->resize(_window->width(), height);
}

void NBVolumesManagerWindowController::showLastVolume()
{
    const VolumePtr last = _volumesController.lastVolume();
    const QUrl url = QUrl::fromLocalFile(last ? last->path() : QString());
    if (_window->customPathControl->URL() != url)
        _window->customPathControl->setURL(url);
}

// In words, for simple mode.
void NBVolumesManagerWindowController::showState()
{
    const VolumePtr last = _volumesController.lastVolume();
    QString text = texts::tr("Create a new encrypted folder, or open one that exists.");
    if (last)
        text = last->isMounted() ? texts::tr("The folder is mounted.")
                                 : texts::tr("The folder is not mounted.");
    _window->stateTextField->setText(text);
    constexpr int side = VolumesManagerWindow::stateIconSide;
    const QIcon icon = last ? icons::named(volumeCell::imageName(*last)) : QIcon();
    _window->stateIcon->setPixmap(icon.pixmap(QSize(side, side), _window->devicePixelRatioF()));
    _window->stateIcon->setVisible(!icon.isNull());
    _window->showInFinderButton->setEnabled(last != nullptr);
}

void NBVolumesManagerWindowController::validateToolbar()
{
    if (!_window)
        return;
    for (QAction *item : _window->toolbar->actions())
        item->setEnabled(validateToolbarItem(*item));
    showState();
    _window->tableView->viewport()->update(); // its pictures show the moment's state
}

bool NBVolumesManagerWindowController::validateToolbarItem(const QAction &item) const
{
    const VolumePtr volume = targetVolume(Sender::Other);
    const bool isMounted = volume && volume->isMounted();
    const QString identifier = item.objectName();
    if (identifier == QLatin1String("change") || identifier == QLatin1String("unmount"))
        return isMounted;
    if (identifier == QLatin1String("clear"))
        return isMounted && volume->storePassphrase();
    if (identifier == QLatin1String("mount"))
        return volume && !isMounted;
    if (identifier == QLatin1String("remove"))
        return volumeAtRow(Sender::Other) != nullptr;
    return true;
}

} // namespace nimbrel
