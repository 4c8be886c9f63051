// Changing a volume's options, and taking it off the list.
#include "windows/NBVolumesManagerWindowController.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/NBAdvancedAssistant.h"
#include "volume/NBVolumesController.h"
#include "volume/StoredPassphrase.h"
#include "volume/VolumeServices.h"
#include "windows/Questions.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>

#include <chrono>

namespace nimbrel {

namespace {

constexpr std::chrono::seconds pauseBeforeRemount(1);

// The alternative path isn't shown (kept): the step opens without one.
void fill(const AdvancedAssistantView &controls, const NBNimbrelVolume &volume)
{
    controls.labelTextField->setText(volume.label());
    controls.checkKeyButton->setChecked(volume.checkKey());
    controls.automountButton->setChecked(volume.automount());
    controls.mountAsLocalDiskButton->setChecked(volume.isLocal());
    controls.mountForAllUsersButton->setChecked(volume.allowsAll());
    controls.spotlightButton->setChecked(volume.spotlight());
    controls.mountAsLocalDiskButton->setEnabled(!volume.spotlight());
    controls.mountForAllUsersButton->setEnabled(!volume.spotlight());
}

// The stored password is filed under the label, too: it goes along, or it would lie there for ever
// and be asked for at the next start.
void relabel(NBNimbrelVolume &volume, const QString &label, SecretStore &secrets)
{
    const QString service = volume.keychainServiceName();
    volume.setLabel(label);
    if (!volume.storePassphrase() || volume.passphrase().empty() ||
        volume.keychainServiceName() == service)
        return;
    volume.doStorePassphrase();
    removeStoredPassphrase(secrets, service, volume.path());
}

void takeChanges(const AdvancedAssistantView &controls, NBNimbrelVolume &volume,
                 SecretStore &secrets)
{
    relabel(volume, controls.labelTextField->text(), secrets);
    volume.setCheckKey(controls.checkKeyButton->isChecked());
    volume.setAutomount(controls.automountButton->isChecked());
    volume.setLocal(controls.mountAsLocalDiskButton->isChecked());
    volume.setAllowAll(controls.mountForAllUsersButton->isChecked());
    volume.setSpotlight(controls.spotlightButton->isChecked());
    if (controls.configButton->isChecked())
        volume.setConfigPath(controls.configTextField->text());
}

} // namespace

// The assistant's event loop runs meanwhile: the volume may have left the list, or have become busy
// with the options that it had.
bool NBVolumesManagerWindowController::editOptions(const VolumePtr &volume)
{
    const auto engine = TESetupAssistant::initMini();
    const auto page = assistant<NBAdvancedAssistant>(_services.application);
    engine->addAssistant(page);
    page->setWorkingVolume(volume);
    fill(page->controls(), *volume);
    page->setIsOpen(true);
    engine->setModal(true);
    engine->window()->setWindowTitle(texts::tr("Edit Nimbrel Volume"));
    engine->run();
    if (!engine->finished() || !isListed(volume) || !isIdle(*volume))
        return false;
    takeChanges(page->controls(), *volume, _services.volumes.secrets);
    return true;
}

bool NBVolumesManagerWindowController::isIdle(const NBNimbrelVolume &volume)
{
    if (volume.isBusy())
        questions::tellBusy(volume);
    return !volume.isBusy();
}

void NBVolumesManagerWindowController::editVolume(Sender sender)
{
    const VolumePtr volume = volumeAtRow(sender);
    if (!volume || !isIdle(*volume))
        return;
    if (isAdvanced() && !editOptions(volume))
        return;
    if (!Util::fileExists(volume->configPath()))
        return questions::tellInvalidFolder();
    _volumesController.saveVolumes();
    updateToolbar();
    if (volume->isMounted())
        mountAnew(volume);
}

// So that the new options take effect.
void NBVolumesManagerWindowController::mountAnew(const VolumePtr &volume)
{
    _volumesController.unmountVolume(
        volume, [self = QPointer(this), weak = std::weak_ptr(volume)](bool unmounted) {
            if (!self)
                return;
            self->updateToolbar();
            if (unmounted)
                self->mountAfterPause(weak);
        });
}

// A timer in place of a sleep, which would freeze the window. The user may have done something else
// with the volume meanwhile.
void NBVolumesManagerWindowController::mountAfterPause(std::weak_ptr<NBNimbrelVolume> weak)
{
    QTimer::singleShot(pauseBeforeRemount, this, [this, weak = std::move(weak)] {
        const VolumePtr volume = weak.lock();
        if (volume && isListed(volume) && !volume->isMounted() && !volume->isBusy())
            _volumesController.mountVolume(volume, updating());
    });
}

void NBVolumesManagerWindowController::removeVolume()
{
    const VolumePtr volume = volumeAtRow(Sender::Other);
    if (!volume || !isIdle(*volume))
        return;
    if (!volume->isMounted())
        return removeFromList(volume);
    _volumesController.unmountVolume(
        volume, [self = QPointer(this), weak = std::weak_ptr(volume)](bool unmounted) {
            const VolumePtr alive = weak.lock();
            if (self && unmounted && alive)
                self->removeFromList(alive);
            else if (self)
                self->updateToolbar();
        });
}

void NBVolumesManagerWindowController::removeFromList(const VolumePtr &volume)
{
    volume->clearPassphrase();
    _volumesController.volumes().removeOne(volume);
    _volumesController.saveVolumes();
    updateToolbar();
}

} // namespace nimbrel
