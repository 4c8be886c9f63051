#include "platform/SecretServiceStore.h"

#include "platform/SecretServiceCall.h"

namespace nimbrel {

namespace {

// Finds the item, unlocked, and does `work` with it; NotFound where there is none.
template <class Work>
SecretStatus withItem(SecretServiceCall &call, Work work)
{
    SecretStatus status = call.connect();
    if (status != SecretStatus::Done)
        return status;
    const SecretItemHandle item = call.findItem(status);
    if (!item)
        return status == SecretStatus::Done ? SecretStatus::NotFound : status;
    status = call.unlock(*item);
    return status == SecretStatus::Done ? work(*item) : status;
}

} // namespace

SecretServiceStore::SecretServiceStore(std::chrono::seconds limit) : _limit(limit) {}

SecretStatus SecretServiceStore::add(const QString &service, const QString &account,
                                     std::string_view secret)
{
    SecretServiceCall call(service, account, _limit);
    SecretStatus status = call.connect();
    if (status != SecretStatus::Done)
        return status;
    if (call.findItem(status))
        return SecretStatus::Duplicate;
    // A search that failed may have missed one; storing would overwrite it.
    return status == SecretStatus::Done ? call.create(secret) : status;
}

std::optional<SecureBuffer> SecretServiceStore::find(const QString &service, const QString &account)
{
    SecretServiceCall call(service, account, _limit);
    SecretStatus status = call.connect();
    if (status != SecretStatus::Done)
        return std::nullopt;
    const SecretItemHandle item = call.findItem(status);
    if (!item || call.unlock(*item) != SecretStatus::Done)
        return std::nullopt;
    const SecretValueHandle value = call.load(*item);
    if (!value)
        return std::nullopt;
    gsize size = 0;
    const char *bytes = secret_value_get(value.get(), &size);
    return SecureBuffer::copyOf(std::string_view(bytes, size));
}

SecretStatus SecretServiceStore::modify(const QString &service, const QString &account,
                                        std::string_view secret)
{
    SecretServiceCall call(service, account, _limit);
    return withItem(call, [&](SecretItem &item) { return call.replace(item, secret); });
}

SecretStatus SecretServiceStore::remove(const QString &service, const QString &account)
{
    SecretServiceCall call(service, account, _limit);
    return withItem(call, [&](SecretItem &item) { return call.erase(item); });
}

} // namespace nimbrel
