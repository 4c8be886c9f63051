// What is done with one volume, and the ways to the other windows.
#include "windows/NBVolumesManagerWindowController.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistants/flows/ChangePassphrase.h"
#include "platform/Workspace.h"
#include "volume/NBVolumesController.h"
#include "windows/NBMobileWindowController.h"
#include "windows/NBPreferencesWindowController.h"
#include "windows/views/VolumesManagerWindow.h"

#include <QPointer>

namespace nimbrel {

void NBVolumesManagerWindowController::newVolume()
{
    if (mayReplaceLastVolume())
        _volumesController.newVolume();
    updateToolbar();
}

void NBVolumesManagerWindowController::mountVolume(Sender sender)
{
    if (const VolumePtr volume = targetVolume(sender))
        mount(volume);
}

void NBVolumesManagerWindowController::unmountVolume(Sender sender)
{
    if (const VolumePtr volume = targetVolume(sender))
        unmount(volume);
}

// What goes on has a handler, which a second call would take the place of: the opened folder
// wouldn't be saved, the edited one not be mounted again. And a second mount ends the first disk.
void NBVolumesManagerWindowController::mount(const VolumePtr &volume)
{
    if (!volume->isBusy() && !volume->isMounted())
        _volumesController.mountVolume(volume, updating());
}

void NBVolumesManagerWindowController::unmount(const VolumePtr &volume)
{
    if (!volume->isBusy() && volume->isMounted())
        _volumesController.unmountVolume(volume, updating());
}

void NBVolumesManagerWindowController::openVolume(Sender sender)
{
    if (const VolumePtr volume = volumeAtRow(sender))
        _volumesController.openVolume(volume);
}

void NBVolumesManagerWindowController::openClick(const VolumePtr &representedObject)
{
    if (representedObject->isMounted())
        _volumesController.openVolumeInFinder(representedObject);
}

void NBVolumesManagerWindowController::mountClick(const VolumePtr &representedObject)
{
    if (representedObject->isMounted())
        unmount(representedObject);
    else
        mount(representedObject);
}

void NBVolumesManagerWindowController::changePassphrase(Sender sender)
{
    if (const VolumePtr volume = targetVolume(sender))
        showChangePassphrase(volume);
}

void NBVolumesManagerWindowController::clearPassphrase(Sender sender)
{
    const VolumePtr volume = targetVolume(sender);
    if (!volume)
        return;
    const int answer = Util::showAlert(
        texts::tr("You will have to re-enter it the next time you want to open this encrypted "
                  "folder."),
        texts::tr("Are you sure that you want to clear the password currently stored on this "
                  "computer?"),
        {.defaultButton = texts::tr("Yes"), .alternateButton = texts::tr("No")});
    if (answer != 1)
        return;
    volume->clearPassphrase();
    _volumesController.saveVolumes();
    Util::showAlert(texts::tr("The stored password was successfully cleared."));
    validateToolbar();
}

void NBVolumesManagerWindowController::showInFinder(Sender sender)
{
    const VolumePtr volume = targetVolume(sender);
    if (volume && !volume->path().isEmpty())
        _services.volumes.workspace.selectFile(volume->path(), Util::getParentPath(volume->path()));
}

void NBVolumesManagerWindowController::showMobileApps()
{
    _mobileWindowController =
        std::make_unique<NBMobileWindowController>(_services.volumes.workspace);
    _mobileWindowController->runModal(_window.get());
}

void NBVolumesManagerWindowController::showPreferences()
{
    if (!_window)
        return;
    _settingsController = std::make_unique<NBPreferencesWindowController>(_services);
    _settingsController->beginSheetModalForWindow(*_window,
                                                  [self = QPointer(this)](QWidget &sheet) {
                                                      if (self)
                                                          self->didEndSheet(sheet);
                                                  });
}

void NBVolumesManagerWindowController::didEndSheet(QWidget &sheet)
{
    sheet.hide();
}

} // namespace nimbrel
