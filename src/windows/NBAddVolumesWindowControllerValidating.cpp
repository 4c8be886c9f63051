// Which folders the sheet takes.
#include "windows/NBAddVolumesWindowController.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "volume/NBVolumesController.h"

#include <algorithm>

namespace nimbrel {

namespace {

void tellOfInvalidFolder()
{
    Util::showAlert(
        texts::tr("If the folder is being synchronized right now, please wait until the whole "
                  "folder has been synchronized and try again."),
        texts::tr("This is not a valid Nimbrel Folder."));
}

} // namespace

bool NBAddVolumesWindowController::validateURL(const QUrl &url)
{
    const QString path = pathOf(url);
    return _application.advancedMode() ? validateInAdvancedMode(path) : validateInSimpleMode(path);
}

bool NBAddVolumesWindowController::validateInSimpleMode(const QString &path)
{
    const VolumePtr volume = NBNimbrelVolume::withPath(_services, path);
    if (!Util::fileExists(volume->configPath())) {
        tellOfInvalidFolder();
        return false;
    }
    _selectedPath = volume->path();
    return true;
}

bool NBAddVolumesWindowController::validateInAdvancedMode(const QString &path) const
{
    const QList<VolumePtr> &volumes = _application.volumesController().volumes();
    if (std::any_of(volumes.begin(), volumes.end(),
                    [&](const VolumePtr &volume) { return volume->path() == path; })) {
        Util::showAlert(texts::tr("A volume with this Nimbrel Folder already exists."));
        return false;
    }
    if (!Util::directoryExists(path)) {
        tellOfInvalidFolder();
        return false;
    }
    return true;
}

} // namespace nimbrel
