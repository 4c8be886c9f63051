#include "volume/StoredPassphrase.h"

#include "crypto/Utf8.h"
#include "platform/SecretStore.h"
#include "volume/PathExtension.h"

#include <QThreadPool>

namespace nimbrel {

namespace {

// Items of earlier versions are filed under this account.
QString oldAccount(const QString &path)
{
    return withPathExtension(path, oldFolderExtension);
}

} // namespace

void storeSecret(SecretStore &secrets, const QString &service, const QString &account,
                 std::string_view secret)
{
    if (secrets.add(service, account, secret) == SecretStatus::Duplicate)
        (void)secrets.modify(service, account, secret);
}

SecureBuffer storedPassphrase(SecretStore &secrets, const QString &service, const QString &path)
{
    std::optional<SecureBuffer> found = secrets.find(service, path);
    if (!found)
        found = secrets.find(service, oldAccount(path));
    if (!found || !isUtf8(found->text()))
        return {};
    return std::move(*found);
}

void removeStoredPassphrase(SecretStore &secrets, const QString &service, const QString &path)
{
    if (secrets.remove(service, path) != SecretStatus::Done)
        (void)secrets.remove(service, oldAccount(path));
}

QThreadPool &secretQueue()
{
    static QThreadPool queue;
    queue.setMaxThreadCount(1);
    return queue;
}

} // namespace nimbrel
