#include "platform/RunningApplication.h"

#include "platform/GlibCall.h"
#include "platform/SessionBus.h"

#include <chrono>

namespace nimbrel::runningApplication {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 10s;

// How this start came about, for the window system to let the window come to the front.
void addPlatformData(GVariantBuilder &builder)
{
    g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
    for (const auto &[variable, key] : {std::pair{"XDG_ACTIVATION_TOKEN", "activation-token"},
                                        std::pair{"DESKTOP_STARTUP_ID", "desktop-startup-id"}})
        if (const QByteArray value = qgetenv(variable); !value.isEmpty())
            g_variant_builder_add(&builder, "{sv}", key, g_variant_new_string(value.constData()));
}

void addUrls(GVariantBuilder &builder, const QStringList &urls)
{
    g_variant_builder_init(&builder, G_VARIANT_TYPE_STRING_ARRAY);
    for (const QString &url : urls)
        g_variant_builder_add(&builder, "s", url.toUtf8().constData());
}

const char *methodOf(ApplicationRequest::Kind kind)
{
    switch (kind) {
    case ApplicationRequest::Kind::Activate:
        return "Activate";
    case ApplicationRequest::Kind::Open:
        return "Open";
    case ApplicationRequest::Kind::Reveal:
        break;
    }
    return "ActivateAction";
}

// Floating: the call takes it.
GVariant *argumentsOf(const ApplicationRequest &request)
{
    GVariantBuilder platformData;
    addPlatformData(platformData);
    if (request.kind == ApplicationRequest::Kind::Activate)
        return g_variant_new("(a{sv})", &platformData);
    GVariantBuilder urls;
    addUrls(urls, request.urls);
    if (request.kind == ApplicationRequest::Kind::Open)
        return g_variant_new("(asa{sv})", &urls, &platformData);
    GVariantBuilder parameters;
    g_variant_builder_init(&parameters, G_VARIANT_TYPE("av"));
    g_variant_builder_add(&parameters, "v", g_variant_builder_end(&urls));
    return g_variant_new("(sava{sv})", revealAction.toUtf8().constData(), &parameters,
                         &platformData);
}

bool meansNobody(const GError &error)
{
    return g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) != 0 ||
           g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) != 0;
}

} // namespace

HandOver handOver(const ApplicationRequest &request)
{
    GlibCall call(patience);
    GlibError error;
    const GlibObject<GDBusConnection> bus = connectToSessionBus(call, error);
    if (!bus)
        return HandOver::NobodyThere;
    const auto result = call.await([&](GAsyncReadyCallback callback, gpointer data) {
        g_dbus_connection_call(
            bus.get(), busName.toUtf8().constData(), objectPath.toUtf8().constData(),
            "org.freedesktop.Application", methodOf(request.kind), argumentsOf(request), nullptr,
            G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, call.cancellable(), callback, data);
    });
    if (!result)
        return HandOver::Failed;
    GError *failure = nullptr;
    const CHandle<GVariant, g_variant_unref> answer(
        g_dbus_connection_call_finish(bus.get(), result.get(), &failure));
    error.reset(failure);
    if (answer)
        return HandOver::Done;
    return error && meansNobody(*error) ? HandOver::NobodyThere : HandOver::Failed;
}

} // namespace nimbrel::runningApplication
