// The flow that makes a new encrypted folder.
#include "volume/NBVolumesController.h"

#include "app/Texts.h"
#include "app/Util.h"
#include "config/ConfigurationLookup.h"
#include "platform/Workspace.h"
#include "volume/NBVolumesUserInterface.h"
#include "volume/TextConversion.h"

#include <QPointer>

#include <utility>

namespace nimbrel {

// The next steps don't wait for the mount: the success page is up while it goes on.
void NBVolumesController::newVolume()
{
    std::optional<NBNewVolumeSettings> settings = _services.userInterface.newVolumeSettings();
    if (!settings)
        return;
    if (!_services.userInterface.advancedMode())
        clearTheWay();
    const VolumePtr volume = newVolumeWith(std::move(*settings));
    if (!volume->writeToDisk()) {
        Util::showAlert(texts::tr("The new Nimbrel Folder has not been created!"));
        return;
    }
    mountNewVolume(volume);
    _volumes.append(volume);
    saveVolumes();
    if (_services.userInterface.showSuccess(*volume))
        _services.workspace.selectFile(
            pathIn(volume->mountPoint(), QStringLiteral("Getting Started.pdf")),
            volume->mountPoint());
}

// Simple mode serves one volume. A stored password is only cleared where the old one is mounted
// (kept); its folder is left as it is.
void NBVolumesController::clearTheWay()
{
    const VolumePtr old = lastVolume();
    const bool wasMounted = old && old->isMounted();
    if (wasMounted)
        old->clearPassphrase();
    _volumes.clear();
    if (wasMounted)
        makeRoom(old);
    saveVolumes();
}

void NBVolumesController::makeRoom(const VolumePtr &mounted)
{
    keepReporting(mounted);
    unmountVolume(mounted, [controller = QPointer(this)](bool unmounted) {
        if (controller)
            controller->mountWaiting(unmounted);
    });
}

// A disk that doesn't go tells the user why; a mount on top of it could only fail. Somebody else
// may have mounted the waiting one meanwhile.
void NBVolumesController::mountWaiting(bool hasRoom)
{
    const VolumePtr next = std::exchange(_waiting, {}).lock();
    VolumeHandler handler = std::exchange(_waitingHandler, {});
    if (next && hasRoom && !next->isMounted())
        mountVolume(next, std::move(handler));
    else if (next && handler)
        handler(next->isMounted());
}

void NBVolumesController::mountNewVolume(const VolumePtr &volume)
{
    mountVolume(volume, [weak = std::weak_ptr(volume)](bool mounted) {
        if (const VolumePtr alive = mounted ? weak.lock() : nullptr)
            alive->writeAuxiliaryFilesToDisk();
    });
}

VolumePtr NBVolumesController::newVolumeWith(NBNewVolumeSettings settings)
{
    VolumePtr volume = NBNimbrelVolume::withPath(_services, settings.path, {}, settings.keySize,
                                                 settings.blockSize);
    volume->setConfigPath(settings.configPath.isNull()
                              ? pathIn(settings.path, qtText(configurationFileName))
                              : settings.configPath);
    volume->setLabel(settings.label);
    volume->setKeySize(settings.keySize);
    volume->setBlockSize(settings.blockSize);
    volume->setEncodeFilenames(settings.encodeFilenames);
    volume->setAutomount(settings.automount);
    volume->setLocal(settings.local || settings.spotlight);
    volume->setAllowAll(settings.allowAll || settings.spotlight);
    volume->setSpotlight(settings.spotlight);
    volume->setPassphrase(std::move(settings.passphrase));
    volume->setStorePassphrase(settings.storePassphrase);
    return volume;
}

} // namespace nimbrel
