// Mounting: the checks, the key, the disk.
#include "volume/NBNimbrelVolume.h"

#include "app/SystemLog.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "config/ConfigurationLookup.h"
#include "config/NBPreferencesError.h"
#include "fs/NBNimbrelFS.h"
#include "fs/UserFileSystem.h"
#include "platform/Workspace.h"
#include "volume/Background.h"
#include "volume/DiskStart.h"
#include "volume/MountPointFolder.h"
#include "volume/NBVolumesUserInterface.h"
#include "volume/OpenedFolder.h"
#include "volume/TextConversion.h"

namespace nimbrel {

namespace {

std::vector<std::string> coreTexts(const QStringList &texts)
{
    std::vector<std::string> result;
    for (const QString &text : texts)
        result.push_back(coreText(text));
    return result;
}

MountFailure noContexts()
{
    return {MountFailure::Cause::Folder,
            "There is not enough memory for the folder's key. Close other programs and try again."};
}

} // namespace

void NBNimbrelVolume::mount(VolumeHandler withCompletionHandler)
{
    _mountHandler = std::move(withCompletionHandler);
    mount();
}

void NBNimbrelVolume::mount()
{
    const auto self = shared_from_this(); // an alert's event loop may drop the last other pointer
    log("-[NBNimbrelVolume mount]", __LINE__, "Mounting...");
    if (_isBusy)
        return log("-[NBNimbrelVolume mount]", __LINE__, "Busy...");
    _isBusy = true;
    if (!hasFolderAndConfiguration() || !mayUseMountPoint())
        return stopMounting();
    if (_passphrase.empty() && !showPassphraseAssistant())
        return stopMounting();
    open();
}

bool NBNimbrelVolume::hasFolderAndConfiguration()
{
    if (!Util::directoryExists(_path)) {
        Util::showAlert(texts::tr("The Nimbrel Folder does not exist."));
        return false;
    }
    // A configuration found elsewhere isn't taken over: what is read is the record's own (kept).
    if (Util::fileExists(_configPath) || findConfiguration(coreText(_path)))
        return true;
    Util::showAlert(formatted(texts::tr("Tried to find it at %@"), {asFormat(_configPath)}),
                    texts::tr("The configuration file does not exist."));
    return false;
}

// Despite the question nothing is unmounted here (kept): the mount goes ahead, clears a dead disk
// away and is refused by a living one.
bool NBNimbrelVolume::mayUseMountPoint() const
{
    if (!isMountPointInUse())
        return true;
    return Util::showAlert(
               texts::tr("It will be unmounted now.\n\nDo you want to continue?"),
               formatted(texts::tr("The mount point %@ is already in use."), {mountPoint()}),
               {.defaultButton = texts::tr("OK"), .alternateButton = texts::tr("Cancel")}) == 1;
}

bool NBNimbrelVolume::showPassphraseAssistant()
{
    std::optional<PassphraseAnswer> answer = _services.userInterface.passphraseFor(*this);
    if (!answer)
        return false;
    _passphrase = std::move(answer->passphrase);
    _storePassphrase = answer->storePassphrase;
    return true;
}

// The configuration is read and its key derived off this thread: the folder may lie on a slow
// store, and a derivation takes as long as the folder's own iterations make it.
void NBNimbrelVolume::open()
{
    inBackground(
        weak_from_this(),
        [root = coreText(_path), configPath = coreText(_configPath),
         passphrase = std::make_shared<SecureBuffer>(SecureBuffer::copyOf(_passphrase.text()))] {
            return openFolder(root, configPath, passphrase->text());
        },
        [](NBNimbrelVolume &volume, const OpenedFolder &opened) { volume.didOpen(opened); });
}

void NBNimbrelVolume::refuseConfiguration(const NBPreferencesError &error)
{
    const QString message = qtText(error.message);
    if (error.domain == NBNMFSPreferencesErrorDomain) {
        Util::runModal({.messageText = texts::tr("Wrong folder configuration file!"),
                        .informativeText = formatted(message),
                        .isCaution = true,
                        .showHelp = [this] { alertShowHelp(); }});
        return;
    }
    systemLog(QStringLiteral("%1: %2").arg(_configPath, message));
    Util::showAlert(
        texts::tr("Please choose a different folder or create a new Nimbrel Folder. If the folder "
                  "is being synchronized right now, please wait until the whole folder has been "
                  "synchronized and try again."),
        formatted(texts::tr("The path %@ is not a valid Nimbrel Folder."), {_path}));
}

// Neither is a wrong password: the question comes back, as often as the user tries.
void NBNimbrelVolume::didOpen(const OpenedFolder &opened)
{
    const auto self = shared_from_this();
    if (opened.refusal) {
        refuseConfiguration(*opened.refusal);
        return stopMounting();
    }
    _nmFS = opened.view;
    if (_nmFS)
        return startDisk();
    const bool given = showPassphraseAssistant();
    _isBusy = false;
    if (given)
        mount();
}

void NBNimbrelVolume::startDisk()
{
    const Observation observation = ++_lastObservation;
    _observation = observation;
    const std::weak_ptr<NBNimbrelVolume> weak = weak_from_this();
    const auto tell = [weak, observation](auto heard) {
        onMainThread(weak, [observation, heard](NBNimbrelVolume &volume) {
            if (volume._observation == observation)
                heard(volume);
        });
    };
    UserFileSystemNotifications notifications{
        .didMount = [tell] { tell([](NBNimbrelVolume &volume) { volume.didMount(); }); },
        .didUnmount = [tell] { tell([](NBNimbrelVolume &volume) { volume.didUnmount(); }); },
        .mountFailed =
            [tell](const MountFailure &failure) {
                tell([failure](NBNimbrelVolume &volume) { volume.mountFailed(failure); });
            }};
    _mountPointFolder = std::make_shared<MountPointFolder>(coreText(_services.mountRoot),
                                                           coreText(mountPointName()));
    std::shared_ptr<NBNimbrelFS> ofDisk = _nmFS->copy();
    if (!ofDisk)
        return notifications.mountFailed(noContexts());
    _fuseFS = std::make_shared<UserFileSystem>(std::move(ofDisk), notifications, _services.keeper);
    const ThreadHandover handover;
    handover.give();
    backgroundPool().start(
        [handover, start = DiskStart(_fuseFS, _mountPointFolder, coreTexts(mountOptions()),
                                     notifications.mountFailed)] {
            handover.take();
            start();
        });
}

void NBNimbrelVolume::openAndMountIfRequired()
{
    if (_isMounted)
        return _services.workspace.openFile(mountPoint());
    mount([weak = weak_from_this()](bool mounted) {
        if (const VolumePtr volume = mounted ? weak.lock() : nullptr)
            volume->_services.workspace.openFile(volume->mountPoint());
    });
}

} // namespace nimbrel
