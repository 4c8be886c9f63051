#include "platform/SessionBus.h"

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel {

namespace {

std::string variable(const char *name)
{
    const char *value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nobody changes it
    return value == nullptr ? "" : value;
}

bool isOwnSocket(const std::string &path)
{
    struct stat attributes = {};
    return ::stat(path.c_str(), &attributes) == 0 && S_ISSOCK(attributes.st_mode) &&
           attributes.st_uid == ::geteuid();
}

} // namespace

std::string sessionBusAddress()
{
    std::string address = variable("DBUS_SESSION_BUS_ADDRESS");
    // "autolaunch:" is the wish for a bus of one's own.
    if (!address.empty() && address.find("autolaunch:") == std::string::npos)
        return address;
    const std::string socket = variable("XDG_RUNTIME_DIR") + "/bus";
    if (!socket.starts_with('/') || !isOwnSocket(socket))
        return {};
    const CHandle<char, g_free> escaped(g_dbus_address_escape_value(socket.c_str()));
    return std::string("unix:path=") + escaped.get();
}

GlibObject<GDBusConnection> connectToSessionBus(GlibCall &call, GlibError &error)
{
    const std::string address = sessionBusAddress();
    if (address.empty())
        return nullptr;
    const auto result = call.await([&](GAsyncReadyCallback callback, gpointer data) {
        const int flags = G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION;
        g_dbus_connection_new_for_address(address.c_str(), static_cast<GDBusConnectionFlags>(flags),
                                          nullptr, call.cancellable(), callback, data);
    });
    GError *failure = nullptr;
    GlibObject<GDBusConnection> bus;
    if (result)
        bus.reset(g_dbus_connection_new_for_address_finish(result.get(), &failure));
    error.reset(failure);
    return bus;
}

} // namespace nimbrel
