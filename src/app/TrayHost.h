#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>

namespace nimbrel {

// Whether something on this desktop shows status items: a host of the StatusNotifierItem interface
// on the session bus (https://www.freedesktop.org/wiki/Specifications/StatusNotifierItem/), or a
// system tray of the X11 screen. Main thread only.
//
// Qt decides for good which of the two it uses when it makes its first status item, so nobody may
// make one before a host is there.
class TrayHost final : public QObject
{
    Q_OBJECT

public:
    TrayHost();

    [[nodiscard]] bool isThere() const;
    // Items and menus go over the bus.
    [[nodiscard]] bool isOnBus() const;

    // Sends appeared() once, when a host comes; at once, in the event loop, when there is one.
    void await();

Q_SIGNALS:
    void appeared();

private Q_SLOTS:
    void look();

private:
    void listen(bool wanted);

    QDBusServiceWatcher _watcher;
    QTimer _screenHost; // X11 tells only those who may listen to the screen
};

} // namespace nimbrel
