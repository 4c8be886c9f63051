// How the sheet follows its scan, and shows what that has found.
#include "windows/NBAddVolumesWindowController.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "assistants/widgets/LocationsMenu.h"
#include "assistants/widgets/PathControl.h"
#include "assistants/widgets/PopUpButton.h"
#include "windows/views/AddVolumesWindow.h"

#include <QLabel>
#include <QProgressBar>
#include <QTableView>

namespace nimbrel {

namespace {

QString countText(qsizetype count)
{
    if (count == 0)
        return texts::tr("No Nimbrel Folders were found here. Use “Other…” to browse.");
    if (count == 1)
        return texts::tr("1 Nimbrel Folder was found here.");
    return formatted(texts::tr("%@ Nimbrel Folders were found here."), {QString::number(count)});
}

QString searchText(const QString &location)
{
    return formatted(texts::tr("Looking for Nimbrel Folders in %@…"), {location});
}

} // namespace

void NBAddVolumesWindowController::windowDidLoad()
{
    locations::setUpDocuments(*_window->foldersPopUpButton);
    setControlsEnabled(false);
    startScan();
}

void NBAddVolumesWindowController::startScan()
{
    const PopUpButton &popUp = *_window->foldersPopUpButton;
    _window->foldersScanTextField->setText(searchText(popUp.itemText(0)));
    _scan = std::make_shared<FolderScan>();
    connect(_scan.get(), &FolderScan::locationFound, this,
            &NBAddVolumesWindowController::showLocation);
    connect(_scan.get(), &FolderScan::ended, this, &NBAddVolumesWindowController::scanEnded);
    _scan->start(popUp.itemData(0).toUrl());
}

void NBAddVolumesWindowController::setControlsEnabled(bool isEnabled)
{
    _window->foldersPopUpButton->setEnabled(isEnabled);
    _window->foldersTableView->setEnabled(isEnabled);
    _window->rootPathControl->setEnabled(isEnabled);
    _window->foldersScanProgressIndicator->setVisible(!isEnabled);
}

void NBAddVolumesWindowController::showLocation(const QString &name, const QUrl &url)
{
    PopUpButton &popUp = *_window->foldersPopUpButton;
    _window->foldersScanTextField->setText(searchText(name));
    if (_locations.size() == 1)
        popUp.insertSeparator(popUp.count());
    _locations.append(locations::add(popUp, name, url));
}

void NBAddVolumesWindowController::scanEnded(const FolderScan::Result &folders)
{
    PopUpButton &popUp = *_window->foldersPopUpButton;
    for (qsizetype location = 0; location < folders.size(); ++location)
        _availableFolders.insert(_locations.at(location), folders.at(location));
    if (_locations.size() > 1)
        popUp.insertSeparator(popUp.count());
    _otherItem = locations::addOther(popUp);
    _scan.reset();
    updateRootPath();
    setControlsEnabled(true);
    reloadData();
    popUp.setFocus();
}

QList<QUrl> NBAddVolumesWindowController::foldersHere() const
{
    return _availableFolders.value(_window->foldersPopUpButton->currentIndex());
}

void NBAddVolumesWindowController::reloadData()
{
    _folders.setFolders(foldersHere());
    const int count = _folders.numberOfRowsInTableView();
    _window->foldersTableView->setEnabled(count != 0);
    _window->foldersScanTextField->setText(countText(count));
}

} // namespace nimbrel
