#include "assistants/flows/WelcomeFlow.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/NBPasswordAssistant.h"
#include "assistants/NBRootAssistant.h"
#include "assistants/flows/NewVolume.h"
#include "assistants/widgets/PasswordField.h"
#include "assistants/widgets/PathControl.h"
#include "config/ConfigurationLookup.h"
#include "platform/Workspace.h"
#include "volume/NBVolumesController.h"
#include "volume/TextConversion.h"

#include <QCheckBox>
#include <QPointer>

namespace nimbrel {

namespace {

constexpr qint64 keySize = 256;    // bits
constexpr qint64 blockSize = 4096; // bytes

VolumePtr newVolume(VolumeServices &services, const NBRootAssistant &root,
                    const NBPasswordAssistant &password)
{
    const QString path = root.controls().rootPathControl->path();
    VolumePtr volume = NBNimbrelVolume::withPath(services, path);
    volume->setConfigPath(pathIn(path, qtText(configurationFileName)));
    volume->setPassphrase(password.controls().passphraseTextField->passphrase());
    volume->setStorePassphrase(password.controls().rememberButton->isChecked());
    volume->setEncodeFilenames(true);
    volume->setKeySize(keySize);
    volume->setBlockSize(blockSize);
    return volume;
}

// Replaces the first volume. One that was mounted while the assistant was open stays in the list
// behind the new one: dropping its record would end its disk under the programs that use it.
void makeLastVolume(const VolumePtr &volume, NBVolumesController &controller)
{
    if (const VolumePtr last = controller.lastVolume();
        last && (last->isMounted() || last->isBusy()))
        controller.volumes().prepend(volume);
    else
        controller.setLastVolume(volume);
}

// The closing page. Its event loop runs inside the mount's handler.
void showMounted(NBNimbrelVolume &volume, Workspace &workspace)
{
    volume.writeAuxiliaryFilesToDisk();
    if (showSuccessPage(volume.configPath(), QStringLiteral("Nimbrel")))
        workspace.selectFile(pathIn(volume.mountPoint(), QStringLiteral("Getting Started.pdf")),
                             volume.mountPoint());
}

} // namespace

WelcomeFlow::WelcomeFlow(NBApplication &application, VolumeServices &services,
                         FolderPicker pickFolder)
    : _application(application), _services(services), _pickFolder(std::move(pickFolder))
{
}

void WelcomeFlow::showWelcomeAssistant()
{
    const auto engine = TESetupAssistant::initMini();
    const auto welcome = assistant<NBWelcomeAssistant>(_pickFolder);
    const auto root = assistant<NBRootAssistant>(_application);
    const auto password = assistant<NBPasswordAssistant>(_application);
    engine->addAssistant(welcome);
    engine->addAssistant(root);
    engine->addAssistant(password);
    engine->setModal(true);
    engine->window()->setWindowTitle(QStringLiteral("Nimbrel"));
    engine->run();
    if (!engine->finished())
        return;
    if (welcome->wantsNewFolder())
        createFolder(*root, *password);
    else
        openFolder(*welcome);
}

// The mount goes past the controller, whose notifications don't take part (kept).
void WelcomeFlow::openFolder(const NBWelcomeAssistant &page)
{
    const VolumePtr volume =
        NBNimbrelVolume::withPath(_services, page.controls().pathControl->path());
    if (!Util::fileExists(volume->configPath())) {
        Util::showAlert(texts::tr("If the folder is being synchronized right now, please wait "
                                  "until the whole folder has been synchronized and try again."),
                        texts::tr("This is not a valid Nimbrel Folder."));
        return;
    }
    NBVolumesController &controller = _application.volumesController();
    makeLastVolume(volume, controller);
    controller.saveVolumes();
    controller.lastVolume()->mount(
        [controller = QPointer(&controller),
         wantsToSeeIt = page.controls().openVolumeButton->isChecked()](bool mounted) {
            const VolumePtr last = controller ? controller->lastVolume() : nullptr;
            if (mounted && wantsToSeeIt && last)
                controller->openVolumeInFinder(last);
        });
}

void WelcomeFlow::createFolder(const NBRootAssistant &root, const NBPasswordAssistant &password)
{
    const VolumePtr volume = newVolume(_services, root, password);
    if (!volume->writeToDisk()) {
        Util::showAlert(QStringLiteral("The new Nimbrel Folder has not been created!"));
        return;
    }
    NBVolumesController &controller = _application.volumesController();
    controller.mountVolume(
        volume, [weak = std::weak_ptr(volume), &workspace = _services.workspace](bool mounted) {
            if (const VolumePtr alive = mounted ? weak.lock() : nullptr)
                showMounted(*alive, workspace);
        });
    controller.volumes().append(volume);
    controller.saveVolumes();
}

} // namespace nimbrel
