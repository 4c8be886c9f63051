#include "app/TrayHost.h"

#include "platform/SessionBusAddress.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QGuiApplication>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace nimbrel {

namespace {

using namespace std::chrono_literals;

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher"); // interface, too
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

struct FreeReply
{
    void operator()(void *reply) const noexcept { std::free(reply); } // as xcb wants it
};
template <class Reply>
using XcbReply = std::unique_ptr<Reply, FreeReply>;

bool hasSessionBus()
{
    return !sessionBusAddress().empty() && QDBusConnection::sessionBus().isConnected();
}

// What Qt asks: whether somebody shows the items, not only keeps their list. Blocks for the answer,
// at most a moment.
bool isHostOnBus()
{
    constexpr auto patience = 1s;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.interface()->isServiceRegistered(watcherService))
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(
        watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    call.setArguments({watcherService, QStringLiteral("IsStatusNotifierHostRegistered")});
    const QDBusReply<QDBusVariant> reply =
        bus.call(call, QDBus::Block, static_cast<int>(std::chrono::milliseconds(patience).count()));
    return reply.isValid() && reply.value().variant().toBool();
}

xcb_connection_t *screenConnection()
{
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

// The System Tray Protocol Specification: whoever owns this selection is the first screen's tray.
bool isOnScreen()
{
    xcb_connection_t *connection = screenConnection();
    if (connection == nullptr)
        return false;
    constexpr std::string_view name = "_NET_SYSTEM_TRAY_S0";
    const XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, name.size(), name.data()), nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

TrayHost::TrayHost()
{
    constexpr auto often = 2s;
    _screenHost.setInterval(often);
    connect(&_screenHost, &QTimer::timeout, this, &TrayHost::look);
    _watcher.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
}

bool TrayHost::isOnBus() const
{
    return hasSessionBus() && isHostOnBus();
}

bool TrayHost::isThere() const
{
    return isOnBus() || isOnScreen();
}

void TrayHost::await()
{
    if (hasSessionBus()) {
        listen(true);
        connect(&_watcher, &QDBusServiceWatcher::serviceRegistered, this, &TrayHost::look);
        _watcher.setConnection(QDBusConnection::sessionBus());
        _watcher.addWatchedService(watcherService);
    }
    if (screenConnection() != nullptr)
        _screenHost.start();
    QMetaObject::invokeMethod(this, &TrayHost::look, Qt::QueuedConnection);
}

// A host may come later than the list that it shows.
void TrayHost::listen(bool wanted)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QString signal = QStringLiteral("StatusNotifierHostRegistered");
    if (wanted)
        bus.connect(watcherService, watcherPath, watcherService, signal, this, SLOT(look()));
    else
        bus.disconnect(watcherService, watcherPath, watcherService, signal, this, SLOT(look()));
}

void TrayHost::look()
{
    if (!isThere())
        return;
    if (hasSessionBus())
        listen(false);
    _watcher.setWatchedServices({});
    _screenHost.stop();
    Q_EMIT appeared();
}

} // namespace nimbrel
