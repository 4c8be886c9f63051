// A volume's password in the secret store.
#pragma once

#include "crypto/SecureBuffer.h"

#include <QString>

#include <string_view>

class QThreadPool;

namespace nimbrel {

class SecretStore;

// Adds the item, or gives the existing one the new secret. Failures are silent: a password that
// couldn't be stored is asked for again.
void storeSecret(SecretStore &secrets, const QString &service, const QString &account,
                 std::string_view secret);

// The stored password of the folder at `path`, filed under its own path or under that of its older
// extension; empty when there is none, or when what is stored isn't UTF-8.
[[nodiscard]] SecureBuffer storedPassphrase(SecretStore &secrets, const QString &service,
                                            const QString &path);

// Removes it, wherever it is filed. There being none is no failure.
void removeStoredPassphrase(SecretStore &secrets, const QString &service, const QString &path);

// Where the store is asked without the main thread waiting: one call at a time.
[[nodiscard]] QThreadPool &secretQueue();

} // namespace nimbrel
