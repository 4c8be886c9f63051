#pragma once

#include "crypto/SecureBuffer.h"

#include <QString>

#include <optional>
#include <string_view>

namespace nimbrel {

enum class SecretStatus
{
    Done,
    Duplicate, // add: there is an item of that service and account already
    NotFound,  // also where no secret service runs
    Failed     // refused, dismissed or out of time; nothing was changed
};

// Generic passwords of the user's desktop, addressed by service and account. Called on the main
// thread; a call may wait for the desktop's own unlocking dialog, but never without an end.
class SecretStore
{
public:
    SecretStore() = default;
    virtual ~SecretStore() = default;
    SecretStore(const SecretStore &) = delete;
    SecretStore &operator=(const SecretStore &) = delete;

    // SecKeychainAddGenericPassword
    [[nodiscard]] virtual SecretStatus add(const QString &service, const QString &account,
                                           std::string_view secret) = 0;
    // SecKeychainFindGenericPassword
    // The secret's bytes as they are stored; nothing when there is none to be had.
    [[nodiscard]] virtual std::optional<SecureBuffer> find(const QString &service,
                                                           const QString &account) = 0;
    // SecKeychainItemModifyContent
    [[nodiscard]] virtual SecretStatus modify(const QString &service, const QString &account,
                                              std::string_view secret) = 0;
    // SecKeychainItemDelete
    [[nodiscard]] virtual SecretStatus remove(const QString &service, const QString &account) = 0;
};

} // namespace nimbrel
