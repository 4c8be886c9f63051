// The password: in the record, in the secret store, in the configuration.
#include "volume/NBNimbrelVolume.h"

#include "app/SystemLog.h"
#include "app/Util.h"
#include "fs/NBNimbrelFS.h"
#include "volume/OpenedFolder.h"
#include "volume/StoredPassphrase.h"
#include "volume/TextConversion.h"
#include "app/Texts.h"

#include <algorithm>

namespace nimbrel {

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
    SecureBuffer old = SecureBuffer::copyOf(passphrase);
    if (isConfigurationOurs()) {
        setPassphrase(SecureBuffer::copyOf(newPassphrase));
        if (writePreferencesToDisk()) {
            if (_storePassphrase)
                doStorePassphrase();
            return true;
        }
        setPassphrase(std::move(old));
    }
    Util::showAlert(texts::tr("Could not change the password."));
    return false;
}

// Whether the configuration on disk wraps the key that would be written in its place. A record that
// was only made holds a key of its own, and a folder may have been replaced since its last mount:
// writing either over it would lose every file.
bool NBNimbrelVolume::isConfigurationOurs() const
{
    if (!_nmFS)
        return false;
    if (!Util::fileExists(_configPath))
        return true; // there is nothing to lose
    const OpenedFolder stored =
        openFolder(coreText(_path), coreText(_configPath), _passphrase.text());
    if (stored.refusal)
        systemLog(QStringLiteral("%1: %2").arg(_configPath, qtText(stored.refusal->message)));
    if (stored.view &&
        std::ranges::equal(stored.view->cryptor().key().data(), _nmFS->cryptor().key().data()))
        return true;
    systemLog(QStringLiteral("%1 isn't the configuration that was mounted; unmount and mount the "
                             "folder, then change its password")
                  .arg(_configPath));
    return false;
}

} // namespace nimbrel
