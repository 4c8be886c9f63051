"""The desktop portal's settings, with the one that tells which colours the user prefers.

portal_main.py NUMBER; 1 is dark, 2 is light. The command "prefer NUMBER" changes it."""

import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

from talk import Commands, tell

INTERFACE = "org.freedesktop.portal.Settings"
SETTING = ("org.freedesktop.appearance", "color-scheme")


class NotFound(dbus.DBusException):
    _dbus_error_name = "org.freedesktop.portal.Error.NotFound"


class Portal(dbus.service.Object):
    scheme = dbus.UInt32(0)

    @dbus.service.method(INTERFACE, in_signature="ss", out_signature="v")
    def Read(self, namespace, key):
        if (namespace, key) != SETTING:
            raise NotFound(f"no setting {namespace} {key}")
        return dbus.UInt32(self.scheme, variant_level=2)  # wrapped twice, as the portal does

    @dbus.service.signal(INTERFACE, signature="ssv")
    def SettingChanged(self, namespace, key, value):
        pass

    def prefer(self, number):
        self.scheme = dbus.UInt32(int(number))
        self.SettingChanged(*SETTING, self.scheme)


def main():
    DBusGMainLoop(set_as_default=True)
    loop = GLib.MainLoop()
    name = dbus.service.BusName("org.freedesktop.portal.Desktop", dbus.SessionBus(),
                                do_not_queue=True)
    portal = Portal(name, "/org/freedesktop/portal/desktop")
    portal.prefer(sys.argv[1])
    commands = Commands(loop, {"prefer": portal.prefer})
    tell("ready")
    loop.run()
    del commands


if __name__ == "__main__":
    main()
