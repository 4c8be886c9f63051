// From one mode to the other.
#include "windows/NBVolumesManagerWindowController.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "platform/Preferences.h"
#include "volume/NBVolumesController.h"
#include "windows/NBVolumesTableViewController.h"
#include "windows/Questions.h"

#include <algorithm>

namespace nimbrel {

namespace {

bool mayForgetAllButFirst()
{
    return questions::isYes(
        texts::tr("Warning: Only the first volume will remain. All additional volumes will be "
                  "unmounted and removed. They will NOT be deleted from your disk."),
        texts::tr("Are you sure that you want to switch to simple mode?"));
}

bool mayShowAllOptions()
{
    return questions::isYes(
        texts::tr("Only enable Advanced Mode if you need to modify advanced options and if you "
                  "know what you do."),
        texts::tr("Do you really want to enable Advanced Mode?"));
}

} // namespace

void NBVolumesManagerWindowController::switchMode()
{
    const bool advanced = isAdvanced();
    if (!advanced && !mayShowAllOptions())
        return;
    if (advanced && _volumesController.volumes().size() >= 2) {
        if (!mayForgetAllButFirst())
            return;
        keepFirstVolume();
    }
    _services.application.setAdvancedMode(!advanced);
    _services.volumes.preferences.setValue(preferencesKey::advanced, !advanced);
    (void)_services.volumes.preferences.synchronize();
    if (_tableViewController)
        _tableViewController->deselectAll();
    updateToolbar();
}

// No unmount is waited for. A disk in use refuses and says so; it keeps its record, off the list,
// until it goes.
void NBVolumesManagerWindowController::keepFirstVolume()
{
    const QList<VolumePtr> others = _volumesController.volumes().mid(1);
    for (const VolumePtr &volume : others) {
        volume->clearPassphrase();
        if (volume->isMounted() && !volume->isBusy())
            _volumesController.unmountVolume(volume);
    }
    _volumesController.volumes().resize(
        std::min<qsizetype>(1, _volumesController.volumes().size()));
    _volumesController.saveVolumes();
}

} // namespace nimbrel
