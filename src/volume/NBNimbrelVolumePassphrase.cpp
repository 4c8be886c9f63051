// The password: in the record, in the secret store, in the configuration.
#include "volume/NBNimbrelVolume.h"

#include "app/SystemLog.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "config/ConfigurationBackup.h"
#include "config/ConfigurationWriter.h"
#include "fs/NBNimbrelFS.h"
#include "volume/BusyWait.h"
#include "volume/OpenedFolder.h"
#include "volume/StoredPassphrase.h"
#include "volume/TextConversion.h"

#include <algorithm>

namespace nimbrel {

namespace {

struct PassphraseChange
{
    std::string root;
    std::string configPath;
    SecureBuffer old;
    SecureBuffer wanted;
};

// Whether the configuration on disk wraps the key that would be written in its place. A record that
// was only made holds a key of its own, and a folder may have been replaced since its last mount:
// writing either over it would lose every file.
std::optional<std::string> refusalToReplace(const PassphraseChange &change, const NBNimbrelFS &view)
{
    if (!Util::fileExists(qtText(change.configPath)))
        return std::nullopt; // there is nothing to lose
    const OpenedFolder stored = openFolder(change.root, change.configPath, change.old.text());
    if (stored.view &&
        std::ranges::equal(stored.view->cryptor().key().data(), view.cryptor().key().data()))
        return std::nullopt;
    return change.configPath +
           (stored.refusal ? ": " + stored.refusal->message
                           : " isn't the configuration that was mounted; unmount and mount the "
                             "folder, then change its password");
}

// Puts the view's key under the new password and writes it. The reason when that can't be.
std::optional<std::string> writeChange(const PassphraseChange &change, NBNimbrelFS &view)
{
    if (auto refusal = refusalToReplace(change, view))
        return refusal;
    if (!view.setPassphrase(change.wanted.text()))
        return change.configPath + ": the key can't be put under the password";
    if (const auto error = writeConfiguration(change.configPath, view.settings(),
                                              change.wanted.text(), configurationBackupFolder()))
        return error->message;
    return std::nullopt;
}

} // namespace

void NBNimbrelVolume::setPassphrase(SecureBuffer passphrase)
{
    _passphrase = std::move(passphrase);
    if (_nmFS && !_nmFS->setPassphrase(_passphrase.text()))
        systemLog(QStringLiteral("%1: the key can't be put under the password").arg(_label));
}

QString NBNimbrelVolume::keychainServiceName() const
{
    return QStringLiteral("Nimbrel: ") + _label;
}

void NBNimbrelVolume::doStorePassphrase()
{
    storeSecret(_services.secrets, keychainServiceName(), _path, _passphrase.text());
}

void NBNimbrelVolume::clearPassphrase()
{
    removeStoredPassphrase(_services.secrets, keychainServiceName(), _path);
    _storePassphrase = false;
    _passphrase = {};
}

bool NBNimbrelVolume::changePassphrase(std::string_view passphrase, std::string_view newPassphrase)
{
    if (passphrase != _passphrase.text()) {
        Util::showAlert(texts::tr("The current password is not correct."));
        return false;
    }
    SecureBuffer wanted = SecureBuffer::copyOf(newPassphrase);
    if (!changeOnDisk(wanted.text())) {
        Util::showAlert(texts::tr("Could not change the password."));
        return false;
    }
    _passphrase = std::move(wanted);
    if (_storePassphrase)
        doStorePassphrase();
    return true;
}

// Deriving the keys takes its time, so windows stay alive meanwhile. A mount or unmount may end
// while they do; the view that is shown then is left as it is.
bool NBNimbrelVolume::changeOnDisk(std::string_view newPassphrase)
{
    const std::shared_ptr<NBNimbrelFS> before = _nmFS;
    std::shared_ptr<NBNimbrelFS> changed = before ? before->copy() : nullptr;
    if (!changed)
        return false;
    const PassphraseChange change{.root = coreText(_path),
                                  .configPath = coreText(_configPath),
                                  .old = SecureBuffer::copyOf(_passphrase.text()),
                                  .wanted = SecureBuffer::copyOf(newPassphrase)};
    if (const auto refusal = waitFor([&] { return writeChange(change, *changed); })) {
        systemLog(qtText(*refusal));
        return false;
    }
    if (_nmFS == before)
        _nmFS = std::move(changed);
    return true;
}

} // namespace nimbrel
