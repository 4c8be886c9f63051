#include "platform/SecretServiceCall.h"

#include "platform/SecretServiceType.h"

#include <QDebug>
#include <QFileInfo>

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

namespace nimbrel {

namespace {

const SecretSchema *schema()
{
    static const SecretSchema itemSchema = {"com.nimbrel.Nimbrel",
                                            SECRET_SCHEMA_DONT_MATCH_NAME,
                                            {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                             {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                             {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                                            0,
                                            nullptr,
                                            nullptr,
                                            nullptr,
                                            nullptr,
                                            nullptr,
                                            nullptr,
                                            nullptr};
    return &itemSchema;
}

using Attributes = CHandle<GHashTable, g_hash_table_unref>;

Attributes attributesOf(const QString &service, const QString &account)
{
    return Attributes(secret_attributes_build(schema(), "service", service.toUtf8().constData(),
                                              "account", account.toUtf8().constData(),
                                              nullptr)); // NOLINT: variadic, as libsecret has it
}

SecretValueHandle valueOf(std::string_view secret)
{
    // A length of its own: the text needn't end with a zero byte.
    return SecretValueHandle(secret_value_new(secret.empty() ? "" : secret.data(),
                                              static_cast<gssize>(secret.size()), "text/plain"));
}

// What may prompt isn't cancelled at the limit but left behind: libsecret never tells the end of a
// prompt that was cancelled.
constexpr GCancellable *leftBehind = nullptr;

// A person reads it in the desktop's password list.
QByteArray labelOf(const QString &service, const QString &account)
{
    const QString folder = QFileInfo(account).fileName();
    const QString label =
        folder.isEmpty() ? service : QStringLiteral("%1 (%2)").arg(service, folder);
    return label.toUtf8();
}

// Errors that say that nobody serves secrets here.
bool isAbsence(const GError *error)
{
    return g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) != FALSE ||
           g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) != FALSE ||
           g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND) != FALSE;
}

std::string pathOf(SecretItem &item)
{
    return g_dbus_proxy_get_object_path(G_DBUS_PROXY(&item));
}

bool isLocked(const SecretItemHandle &item)
{
    return secret_item_get_locked(item.get()) != FALSE;
}

// Sorts the item to act on to the front; the path settles what else is equal.
auto rankOf(const SecretItemHandle &item, const std::string &collection)
{
    const std::string path = pathOf(*item);
    return std::tuple(isLocked(item), !path.starts_with(collection + "/"),
                      ~secret_item_get_modified(item.get()), path);
}

void noteEnd(GDBusConnection * /*bus*/, gboolean /*vanished*/, GError * /*error*/, gpointer ended)
{
    *static_cast<bool *>(ended) = true;
}

SecretItems itemsOf(GList *list)
{
    SecretItems items;
    for (const GList *entry = list; entry != nullptr; entry = entry->next)
        items.emplace_back(static_cast<SecretItem *>(entry->data));
    g_list_free(list);
    return items;
}

} // namespace

SecretServiceCall::SecretServiceCall(QString service, QString account,
                                     std::chrono::milliseconds limit)
    : _serviceName(std::move(service)), _account(std::move(account)), _call(limit)
{
}

// The service dismisses a prompt whose asker has gone. The bus tells of its end a moment after the
// close is done.
SecretServiceCall::~SecretServiceCall()
{
    _service.reset();
    if (!_bus)
        return;
    bool hasEnded = g_dbus_connection_is_closed(_bus.get()) != FALSE;
    g_signal_connect(_bus.get(), "closed", G_CALLBACK(noteEnd), &hasEnded);
    _call.awaitEnd(
        [this](GAsyncReadyCallback callback, gpointer data) {
            g_dbus_connection_close(_bus.get(), nullptr, callback, data);
        },
        hasEnded);
    g_signal_handlers_disconnect_by_data(_bus.get(), &hasEnded);
}

SecretStatus SecretServiceCall::connect()
{
    GlibError noBus;
    _bus = connectToSessionBus(_call, noBus);
    if (_bus)
        return openService();
    qWarning() << "No session bus, so no secret service:"
               << (noBus ? noBus->message : "no address");
    return g_cancellable_is_cancelled(_call.cancellable()) != FALSE ? SecretStatus::Failed
                                                                    : SecretStatus::NotFound;
}

SecretStatus SecretServiceCall::openService()
{
    const Result result = _call.await([this](GAsyncReadyCallback callback, gpointer data) {
        g_async_initable_new_async( // NOLINT: variadic, as GIO has it
            secretServiceType(), G_PRIORITY_DEFAULT, _call.cancellable(), callback, data, "flags",
            SECRET_SERVICE_OPEN_SESSION, "g-connection", _bus.get(), "g-name",
            "org.freedesktop.secrets", "g-object-path", "/org/freedesktop/secrets",
            "g-interface-name", "org.freedesktop.Secret.Service", nullptr);
    });
    GError *error = nullptr;
    if (result)
        _service.reset(secret_service_open_finish(result.get(), &error));
    return statusOf(_service != nullptr, error);
}

SecretItemHandle SecretServiceCall::findItem(SecretStatus &status)
{
    SecretItems items = search(status);
    if (items.empty())
        return nullptr;
    const std::string collection = items.size() > 1 ? defaultCollection() : std::string();
    auto first = std::min_element(items.begin(), items.end(), [&](const auto &a, const auto &b) {
        return rankOf(a, collection) < rankOf(b, collection);
    });
    return std::move(*first);
}

SecretItems SecretServiceCall::search(SecretStatus &status)
{
    const Attributes attributes = attributesOf(_serviceName, _account);
    const Result result = _call.await([&](GAsyncReadyCallback callback, gpointer data) {
        secret_service_search(_service.get(), schema(), attributes.get(), SECRET_SEARCH_ALL,
                              _call.cancellable(), callback, data);
    });
    GError *error = nullptr;
    SecretItems items;
    if (result)
        items = itemsOf(secret_service_search_finish(_service.get(), result.get(), &error));
    status = statusOf(result != nullptr && error == nullptr, error);
    return items;
}

// Its path; empty when there is none.
std::string SecretServiceCall::defaultCollection()
{
    const Result result = _call.await([this](GAsyncReadyCallback callback, gpointer data) {
        secret_collection_for_alias(_service.get(), SECRET_COLLECTION_DEFAULT,
                                    SECRET_COLLECTION_NONE, _call.cancellable(), callback, data);
    });
    GError *error = nullptr;
    GlibObject<SecretCollection> collection;
    if (result)
        collection.reset(secret_collection_for_alias_finish(result.get(), &error));
    (void)statusOf(result != nullptr && error == nullptr, error);
    return collection ? g_dbus_proxy_get_object_path(G_DBUS_PROXY(collection.get()))
                      : std::string();
}

SecretStatus SecretServiceCall::unlock(SecretItem &item)
{
    if (secret_item_get_locked(&item) == FALSE)
        return SecretStatus::Done;
    GList objects = {&item, nullptr, nullptr};
    const Result result = _call.await([&](GAsyncReadyCallback callback, gpointer data) {
        secret_service_unlock(_service.get(), &objects, leftBehind, callback, data);
    });
    GError *error = nullptr;
    const bool isOpen =
        result && secret_service_unlock_finish(_service.get(), result.get(), nullptr, &error) > 0;
    return statusOf(isOpen, error);
}

SecretValueHandle SecretServiceCall::load(SecretItem &item)
{
    const Result result = _call.await([&](GAsyncReadyCallback callback, gpointer data) {
        secret_item_load_secret(&item, _call.cancellable(), callback, data);
    });
    GError *error = nullptr;
    const bool isLoaded =
        result && secret_item_load_secret_finish(&item, result.get(), &error) != FALSE;
    if (statusOf(isLoaded, error) != SecretStatus::Done)
        return nullptr;
    return SecretValueHandle(secret_item_get_secret(&item));
}

SecretStatus SecretServiceCall::create(std::string_view secret)
{
    const Attributes attributes = attributesOf(_serviceName, _account);
    const SecretValueHandle value = valueOf(secret);
    const Result result = _call.await([&](GAsyncReadyCallback callback, gpointer data) {
        secret_service_store(_service.get(), schema(), attributes.get(), SECRET_COLLECTION_DEFAULT,
                             labelOf(_serviceName, _account).constData(), value.get(), leftBehind,
                             callback, data);
    });
    GError *error = nullptr;
    const bool isStored =
        result && secret_service_store_finish(_service.get(), result.get(), &error) != FALSE;
    return statusOf(isStored, error);
}

SecretStatus SecretServiceCall::replace(SecretItem &item, std::string_view secret)
{
    const SecretValueHandle value = valueOf(secret);
    const Result result = _call.await([&](GAsyncReadyCallback callback, gpointer data) {
        secret_item_set_secret(&item, value.get(), _call.cancellable(), callback, data);
    });
    GError *error = nullptr;
    const bool isSet =
        result && secret_item_set_secret_finish(&item, result.get(), &error) != FALSE;
    return statusOf(isSet, error);
}

SecretStatus SecretServiceCall::erase(SecretItem &item)
{
    const Result result = _call.await([&](GAsyncReadyCallback callback, gpointer data) {
        secret_item_delete(&item, leftBehind, callback, data);
    });
    GError *error = nullptr;
    const bool isGone = result && secret_item_delete_finish(&item, result.get(), &error) != FALSE;
    return statusOf(isGone, error);
}

// Takes the error; a failure without one is a prompt dismissed or a call left behind.
SecretStatus SecretServiceCall::statusOf(bool isDone, GError *error) const
{
    const GlibError owned(error);
    if (isDone)
        return SecretStatus::Done;
    qWarning() << "The secret service gave nothing:" << (owned ? owned->message : "no answer");
    return isAbsence(error) ? SecretStatus::NotFound : SecretStatus::Failed;
}

} // namespace nimbrel
