"""A file manager on the session bus that shows nothing and tells what it was asked to show.

Lines: METHOD, then the items' URIs as JSON."""

import json

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

from talk import Commands, tell

INTERFACE = "org.freedesktop.FileManager1"


class FileManager(dbus.service.Object):
    @dbus.service.method(INTERFACE, in_signature="ass")
    def ShowFolders(self, uris, _startup):
        tell("ShowFolders", json.dumps(uris))

    @dbus.service.method(INTERFACE, in_signature="ass")
    def ShowItems(self, uris, _startup):
        tell("ShowItems", json.dumps(uris))

    @dbus.service.method(INTERFACE, in_signature="ass")
    def ShowItemProperties(self, uris, _startup):
        tell("ShowItemProperties", json.dumps(uris))


def main():
    DBusGMainLoop(set_as_default=True)
    loop = GLib.MainLoop()
    name = dbus.service.BusName(INTERFACE, dbus.SessionBus(), do_not_queue=True)
    manager = FileManager(name, "/org/freedesktop/FileManager1")
    commands = Commands(loop, {})
    tell("ready")
    loop.run()
    del manager, commands


if __name__ == "__main__":
    main()
