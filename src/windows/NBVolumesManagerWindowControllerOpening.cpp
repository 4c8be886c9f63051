// Opening a folder that exists.
#include "windows/NBVolumesManagerWindowController.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/NBAdvancedAssistant.h"
#include "assistants/widgets/PathControl.h"
#include "volume/NBVolumesController.h"
#include "volume/PathExtension.h"
#include "windows/NBAddVolumesWindowController.h"
#include "windows/Questions.h"
#include "windows/views/AddVolumesWindow.h"
#include "windows/views/VolumesManagerWindow.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPointer>

#include <algorithm>

namespace nimbrel {

namespace {

bool mayReplaceMounted()
{
    return questions::isYes(
        texts::tr("Continue to open this encrypted folder?"),
        texts::tr("Another Nimbrel Folder is already opened in Nimbrel. It will be ejected before "
                  "this Nimbrel Folder will be opened."));
}

// The folder's name without its extension.
QString labelFor(const QString &path)
{
    QString name = path.section(u'/', -1, -1, QString::SectionSkipEmpty);
    if (const QString extension = pathExtension(name); !extension.isEmpty())
        name.chop(extension.size() + 1);
    return name;
}

void takeOptions(const AdvancedAssistantView &controls, NBNimbrelVolume &volume)
{
    volume.setLabel(controls.labelTextField->text());
    volume.setAutomount(controls.automountButton->isChecked());
    volume.setCheckKey(controls.checkKeyButton->isChecked());
    volume.setSpotlight(controls.spotlightButton->isChecked());
    if (controls.configButton->isChecked())
        volume.setConfigPath(controls.configTextField->text());
}

} // namespace

// A folder that is handed over from outside needs no window; without one, the user picks it.
void NBVolumesManagerWindowController::addVolume()
{
    NBApplication &application = _services.application;
    if (const QString file = application.openFile(); !file.isNull()) {
        addFile(file);
        return application.setOpenFile({});
    }
    if (!_window)
        return;
    _addVolumesController =
        std::make_unique<NBAddVolumesWindowController>(application, _services.volumes);
    _addVolumesController->beginSheetModalForWindow(*_window,
                                                    [self = QPointer(this)](const QString &path) {
                                                        if (self)
                                                            self->openFolder(path);
                                                    });
}

void NBVolumesManagerWindowController::addFile(const QString &openFile)
{
    if (!isAdvanced())
        return addFileInSimpleMode(openFile);
    const QList<VolumePtr> &volumes = _volumesController.volumes();
    const auto listed =
        std::find_if(volumes.begin(), volumes.end(),
                     [&openFile](const VolumePtr &volume) { return volume->path() == openFile; });
    if (listed == volumes.end())
        openFolder(openFile);
    else
        _volumesController.openVolumeInFinder(VolumePtr(*listed));
}

void NBVolumesManagerWindowController::addFileInSimpleMode(const QString &openFile)
{
    const VolumePtr last = _volumesController.lastVolume();
    if (last && last->path() == openFile)
        _volumesController.openVolumeInFinder(last);
    else if (!last || !last->isMounted() || mayReplaceMounted())
        openFolder(openFile);
}

void NBVolumesManagerWindowController::openFolder(const QString &path)
{
    if (!mayReplaceLastVolume())
        return;
    const VolumePtr volume = NBNimbrelVolume::withPath(_services.volumes, path);
    if (isAdvanced() && !askForOptions(*volume))
        return;
    if (!Util::fileExists(volume->configPath()))
        return questions::tellInvalidFolder();
    if (isAdvanced())
        _volumesController.volumes().append(volume);
    else
        replaceLastVolume(volume);
    _volumesController.mountVolume(volume, mountDone(volume));
}

// A disk that is on its way would come up behind the list's back.
bool NBVolumesManagerWindowController::mayReplaceLastVolume() const
{
    const VolumePtr last = _volumesController.lastVolume();
    return isAdvanced() || !last || isIdle(*last);
}

bool NBVolumesManagerWindowController::askForOptions(NBNimbrelVolume &volume)
{
    const auto engine = TESetupAssistant::initMini();
    const auto page = assistant<NBAdvancedAssistant>(_services.application);
    engine->addAssistant(page);
    page->controls().labelTextField->setText(labelFor(volume.path()));
    page->setIsOpen(true);
    engine->setModal(true);
    engine->window()->setWindowTitle(QStringLiteral("Nimbrel"));
    engine->run();
    if (engine->finished())
        takeOptions(page->controls(), volume);
    return engine->finished();
}

// The old one's stored password goes before the new one has shown that it mounts (kept). Both
// disks have one place, so the old one is given the time to leave it.
void NBVolumesManagerWindowController::replaceLastVolume(const VolumePtr &volume)
{
    if (const VolumePtr last = _volumesController.lastVolume()) {
        if (last->isMounted())
            _volumesController.makeRoom(last);
        last->clearPassphrase();
    }
    _volumesController.setLastVolume(volume);
}

// Whether it mounted or not, the list is saved with the volume in it (kept).
VolumeHandler NBVolumesManagerWindowController::mountDone(const VolumePtr &volume)
{
    return [self = QPointer(this), controller = QPointer(&_volumesController),
            weak = std::weak_ptr(volume)](bool) {
        if (self)
            self->updateToolbar(); // in simple mode it shows the path, too
        if (!controller)
            return;
        controller->saveVolumes();
        if (const VolumePtr opened = weak.lock(); opened && opened->isMounted())
            controller->openVolumeInFinder(opened);
    };
}

} // namespace nimbrel
