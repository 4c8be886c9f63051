#pragma once

#include "platform/GlibCall.h"
#include "platform/SecretStore.h"
#include "platform/SessionBus.h"

#include <libsecret/secret.h>

#include <string>
#include <string_view>
#include <vector>

namespace nimbrel {

using SecretItemHandle = GlibObject<SecretItem>;
using SecretItems = std::vector<SecretItemHandle>;
using SecretValueHandle = CHandle<SecretValue, secret_value_unref>;

// One call of the secret store: a connection to the Secret Service from its start to its end, so
// that a service or a bus that came back since the last call is found. Each operation that fails
// says why in the system log, without the service, the account or the secret.
class SecretServiceCall final
{
public:
    SecretServiceCall(QString service, QString account, std::chrono::milliseconds limit);
    ~SecretServiceCall();
    SecretServiceCall(const SecretServiceCall &) = delete;
    SecretServiceCall &operator=(const SecretServiceCall &) = delete;

    // Done, or why nothing more can be done: NotFound where no secret service runs.
    [[nodiscard]] SecretStatus connect();

    // The item of that service and account. Null with Done when there is none. Of several, which
    // another tool can have made: an unlocked one before a locked one, then one of the default
    // collection, then the one changed last.
    [[nodiscard]] SecretItemHandle findItem(SecretStatus &status);

    // Asks the user for the item's collection; Failed when it stays locked.
    [[nodiscard]] SecretStatus unlock(SecretItem &item);
    // Null on failure. libsecret wipes it when it goes.
    [[nodiscard]] SecretValueHandle load(SecretItem &item);
    // A new item in the default collection, which is made and unlocked where it has to be.
    [[nodiscard]] SecretStatus create(std::string_view secret);
    [[nodiscard]] SecretStatus replace(SecretItem &item, std::string_view secret);
    [[nodiscard]] SecretStatus erase(SecretItem &item);

private:
    using Result = GlibObject<GAsyncResult>;

    [[nodiscard]] SecretStatus openService();
    [[nodiscard]] SecretItems search(SecretStatus &status);
    [[nodiscard]] std::string defaultCollection();
    [[nodiscard]] SecretStatus statusOf(bool isDone, GError *error) const;

    QString _serviceName;
    QString _account;
    GlibCall _call;
    GlibObject<GDBusConnection> _bus;
    GlibObject<SecretService> _service;
};

} // namespace nimbrel
