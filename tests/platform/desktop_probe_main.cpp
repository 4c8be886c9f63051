// Asks for the mounted disks on the desktop and prints the answer. With an argument, then takes
// GLib's shared connection to the bus, as the settings' own parts do, and stays until a while after
// the bus has gone.
#include "platform/DesktopWorkspace.h"
#include "support/Process.h"

#include <gio/gio.h>

#include <QCoreApplication>

#include <chrono>
#include <cstdio>

namespace {

void say(const char *text)
{
    std::puts(text);
    std::fflush(stdout);
}

// The test has killed the bus when it takes no more connections.
bool isBusThere()
{
    return nimbrel::test::run({"dbus-send", "--session", "--print-reply",
                               "--dest=org.freedesktop.DBus", "/", "org.freedesktop.DBus.GetId"})
               .status == 0;
}

bool turnLoop(bool isDone)
{
    QCoreApplication::processEvents();
    return isDone;
}

void stay()
{
    using nimbrel::test::eventually;
    if (g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr) == nullptr)
        return say("no bus");
    say("on the bus");
    (void)eventually([] { return turnLoop(!isBusThere()); });
    (void)eventually([] { return turnLoop(false); }, std::chrono::milliseconds(500));
    say("bus gone");
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const nimbrel::DesktopWorkspace workspace;
    say(workspace.showsMountedDisksOnDesktop() ? "shown" : "not shown");
    if (argc > 1)
        stay();
    return 0;
}
