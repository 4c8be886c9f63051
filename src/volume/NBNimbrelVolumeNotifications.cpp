// What a disk tells of itself, and its end.
#include "volume/NBNimbrelVolume.h"

#include "app/SystemLog.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "fs/MountHolders.h"
#include "fs/UserFileSystem.h"
#include "volume/Background.h"
#include "volume/DiskFiles.h"
#include "volume/MountFailureAlert.h"
#include "volume/MountPointFolder.h"
#include "volume/StoredPassphrase.h"
#include "volume/TextConversion.h"

#include <cerrno>
#include <system_error>

namespace nimbrel {

namespace {

// How an unmount went: 0, or an errno with those who hold the disk.
struct UnmountResult
{
    int code = 0;
    QString holders = {};
};

HolderWords localWords()
{
    return {.mounted = coreText(texts::tr("a disk is mounted at {path}")),
            .uses = coreText(texts::tr("{who} uses it")),
            .hasOpen = coreText(texts::tr("{who} has {path} open")),
            .more = coreText(texts::tr(", and {count} more"))};
}

UnmountResult unmountDisk(UserFileSystem &disk)
{
    const NBDone done = disk.unmount();
    if (done)
        return {};
    if (done.code() != EBUSY)
        return {done.code()};
    return {EBUSY, qtText(describeHolders(mountHolders(disk.mountPoint()), localWords()))};
}

} // namespace

void NBNimbrelVolume::log(const char *method, int line, const char *what) const
{
    systemLogAt(method, line, QStringLiteral("%1: %2").arg(_label, QLatin1String(what)));
}

// Cleared before it is called: it may start the next mount with another one.
void NBNimbrelVolume::callOnce(VolumeHandler &handler, bool result)
{
    const VolumeHandler taken = std::exchange(handler, {});
    taken(result);
}

// Only a password that a mount has proved is remembered. The store may wait for a person and the
// disk for a slow store, so both are asked off this thread, and the rest follows when they
// answered.
void NBNimbrelVolume::didMount()
{
    _mountPointFolder->protect();
    if (!_storePassphrase)
        return prepareDisk();
    inBackground(
        weak_from_this(),
        [&secrets = _services.secrets, service = keychainServiceName(), account = _path,
         secret = std::make_shared<SecureBuffer>(SecureBuffer::copyOf(_passphrase.text()))] {
            storeSecret(secrets, service, account, secret->text());
            return true;
        },
        [observation = _observation](NBNimbrelVolume &volume, bool) {
            if (volume._observation == observation)
                volume.prepareDisk();
        },
        secretQueue());
}

void NBNimbrelVolume::prepareDisk()
{
    inBackground(
        weak_from_this(),
        [disk = mountPoint()] {
            keepTrashAway(disk);
            return true;
        },
        [observation = _observation](NBNimbrelVolume &volume, bool) {
            if (volume._observation == observation)
                volume.finishMount();
        });
}

void NBNimbrelVolume::finishMount()
{
    const auto self = shared_from_this();
    createAliases();
    _isMounted = true;
    _isBusy = false;
    if (_mountHandler)
        callOnce(_mountHandler, true);
    else if (_delegate != nullptr)
        _delegate->volumeDidMount(*this);
}

void NBNimbrelVolume::didUnmount()
{
    const auto self = shared_from_this();
    _untilUnmounted.reset();
    _observation = 0;
    removeDesktopAlias();
    _mountPointFolder->remove();
    if (!_storePassphrase)
        _passphrase = {};
    const bool wasMounted = std::exchange(_isMounted, false);
    _isBusy = false;
    if (!wasMounted && _mountHandler) // gone before the mount was through
        callOnce(_mountHandler, false);
    if (_unmountHandler)
        callOnce(_unmountHandler, true);
    else if (_delegate != nullptr)
        _delegate->volumeDidUnmount(*this);
}

// The handler hears only that it failed; the reason goes to the log, and to the user.
void NBNimbrelVolume::mountFailed(const MountFailure &failure)
{
    const auto self = shared_from_this();
    _observation = 0;
    _mountPointFolder->giveUp();
    _isBusy = false;
    systemLog(QStringLiteral("%1: %2").arg(_label, qtText(failure.message)));
    if (_mountHandler)
        callOnce(_mountHandler, false);
    showMountFailure(_label, failure);
}

void NBNimbrelVolume::unmount(VolumeHandler withCompletionHandler)
{
    _unmountHandler = std::move(withCompletionHandler);
    unmount();
}

void NBNimbrelVolume::unmount()
{
    log("-[NBNimbrelVolume unmount]", __LINE__, "Unmounting...");
    if (_isBusy)
        return log("-[NBNimbrelVolume unmount]", __LINE__, "Busy...");
    if (!_fuseFS)
        return;
    _isBusy = true;
    _untilUnmounted = shared_from_this();
    inBackground(
        weak_from_this(), [disk = _fuseFS] { return unmountDisk(*disk); },
        [](NBNimbrelVolume &volume, const UnmountResult &result) {
            if (result.code != 0)
                volume.unmountRefused(result.code, result.holders);
        });
}

void NBNimbrelVolume::unmountRefused(int code, const QString &holders)
{
    const auto self = shared_from_this();
    // Ejected from outside in the same moment: its own notification is on the way, or has been.
    if (!_isBusy || (code == ENOTCONN && _isMounted))
        return;
    if (code == ENOTCONN)
        _untilUnmounted.reset(); // else the disk lives on, and with it its record, listed or not
    _isBusy = false;
    const QString reason = qtText(std::generic_category().message(code));
    systemLog(QStringLiteral("%1: not unmounted: %2 %3").arg(_label, reason, holders));
    if (_unmountHandler)
        callOnce(_unmountHandler, false);
    if (code == ENOTCONN)
        return; // there was nothing to unmount
    const QString detail =
        code != EBUSY ? reason
        : holders.isEmpty()
            ? texts::tr("Its files are in use. Close the programs that use them, "
                        "then try again.")
            : formatted(texts::tr("%@. Close that first, then try again."), {holders});
    Util::showAlert(asFormat(detail),
                    formatted(texts::tr("\"%@\" could not be unmounted."), {_label}));
}

} // namespace nimbrel
