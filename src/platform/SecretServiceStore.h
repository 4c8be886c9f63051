#pragma once

#include "platform/SecretStore.h"

#include <chrono>

namespace nimbrel {

// The freedesktop Secret Service, through libsecret: GNOME Keyring, KWallet and KeePassXC serve it.
// Items carry the attributes `service` and `account` in the schema com.nimbrel.Nimbrel, which
// doesn't match by name, so that an item made by another tool is found too. A locked collection is
// unlocked through its own prompt.
class SecretServiceStore final : public SecretStore
{
public:
    // `limit` bounds each call, prompts included.
    explicit SecretServiceStore(std::chrono::seconds limit = std::chrono::minutes(2));

    [[nodiscard]] SecretStatus add(const QString &service, const QString &account,
                                   std::string_view secret) override;
    [[nodiscard]] std::optional<SecureBuffer> find(const QString &service,
                                                   const QString &account) override;
    [[nodiscard]] SecretStatus modify(const QString &service, const QString &account,
                                      std::string_view secret) override;
    [[nodiscard]] SecretStatus remove(const QString &service, const QString &account) override;

private:
    std::chrono::seconds _limit;
};

} // namespace nimbrel
