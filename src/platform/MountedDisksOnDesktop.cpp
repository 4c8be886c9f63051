#include "platform/MountedDisksOnDesktop.h"

#include "platform/SessionBus.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <string>

namespace nimbrel {

namespace {

using Schema = CHandle<GSettingsSchema, g_settings_schema_unref>;
using SchemaKey = CHandle<GSettingsSchemaKey, g_settings_schema_key_unref>;

struct Desktop
{
    std::string name; // in XDG_CURRENT_DESKTOP
    const char *schema;
};

constexpr const char *visibleKey = "volumes-visible";
constexpr std::chrono::seconds busLimit{2};

std::string currentDesktops()
{
    const char *value = std::getenv("XDG_CURRENT_DESKTOP"); // NOLINT(concurrency-mt-unsafe)
    return std::string(":") + (value == nullptr ? "" : value) + ":";
}

// The settings' program is told of changes over GLib's shared connection to the bus, and GLib ends
// a program whose shared connection breaks: not this one, which has disks mounted. Kept for ever,
// so that the next user of the shared one gets no other.
bool holdSharedConnection()
{
    static GDBusConnection *held = nullptr;
    if (held != nullptr || sessionBusAddress().empty())
        return held != nullptr;
    GlibCall call(busLimit);
    const auto result = call.await([&](GAsyncReadyCallback callback, gpointer data) {
        g_bus_get(G_BUS_TYPE_SESSION, call.cancellable(), callback, data);
    });
    if (result)
        held = g_bus_get_finish(result.get(), nullptr);
    if (held != nullptr)
        g_dbus_connection_set_exit_on_close(held, FALSE);
    return held != nullptr;
}

// GIO ends the program over a schema or a key that isn't installed.
bool isInstalled(GSettingsSchema *schema)
{
    if (schema == nullptr || g_settings_schema_has_key(schema, visibleKey) == FALSE)
        return false;
    const SchemaKey key(g_settings_schema_get_key(schema, visibleKey));
    return g_variant_type_equal(g_settings_schema_key_get_value_type(key.get()),
                                G_VARIANT_TYPE_BOOLEAN) != FALSE;
}

bool isSwitchedOn(const char *schemaName)
{
    GSettingsSchemaSource *source = g_settings_schema_source_get_default();
    if (source == nullptr)
        return false;
    const Schema schema(g_settings_schema_source_lookup(source, schemaName, TRUE));
    if (!isInstalled(schema.get()) || !holdSharedConnection())
        return false;
    const GlibObject<GSettings> settings(g_settings_new_full(schema.get(), nullptr, nullptr));
    return g_settings_get_boolean(settings.get(), visibleKey) != FALSE;
}

} // namespace

bool mountedDisksAreOnDesktop()
{
    const std::array<Desktop, 2> desktops{
        {{"X-Cinnamon", "org.nemo.desktop"}, {"MATE", "org.mate.caja.desktop"}}};
    const std::string current = currentDesktops();
    for (const Desktop &desktop : desktops)
        if (current.find(":" + desktop.name + ":") != std::string::npos)
            return isSwitchedOn(desktop.schema);
    return false;
}

} // namespace nimbrel
