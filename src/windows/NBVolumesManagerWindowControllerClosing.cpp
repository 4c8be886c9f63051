// Whether the window may close.
#include "windows/NBVolumesManagerWindowController.h"

#include "app/Texts.h"
#include "app/Util.h"
#include "volume/NBVolumesController.h"
#include "windows/Questions.h"

namespace nimbrel {

namespace {

bool wantsNoFolder()
{
    return questions::isYes(
        texts::tr("Nimbrel will not create the Nimbrel volume and you will not be able to encrypt "
                  "or decrypt files. Please create or open an encrypted folder in order to secure "
                  "your private files with Nimbrel.\n\nDo you really want to close this window?"),
        texts::tr("You did not choose any encrypted folder."));
}

// Tells what is missing.
bool isThere(const NBNimbrelVolume &volume)
{
    if (!Util::directoryExists(volume.path())) {
        Util::showAlert(texts::tr("The encrypted folder does not exist."));
        return false;
    }
    if (!Util::fileExists(volume.configPath())) {
        Util::showAlert(texts::tr("The configuration file does not exist."));
        return false;
    }
    return true;
}

} // namespace

// Closing in simple mode asks for a mount, and doesn't wait for its end.
bool NBVolumesManagerWindowController::windowShouldClose()
{
    if (_volumesController.volumes().isEmpty())
        return wantsNoFolder();
    if (isAdvanced()) {
        stopObserving();
        return true;
    }
    const VolumePtr volume = _volumesController.lastVolume();
    if (!isThere(*volume))
        return false;
    // A mount that goes on is such a request already, and its handler is still to be called.
    if (!volume->isMounted() && !volume->isBusy())
        _volumesController.mountVolume(volume);
    if (!volume->isMounted())
        Util::showAlert(texts::tr("You can mount the volume always using the Nimbrel icon in the "
                                  "menu bar."),
                        texts::tr("The Nimbrel Volume has not been mounted."));
    stopObserving();
    return true;
}

} // namespace nimbrel
