"""A panel with a tray, as a desktop has it: watcher and host of StatusNotifier items.

tray_host_main.py [watcher]; a watcher alone has no host until the command register-host, as on a
desktop whose panel is still to come.

Lines: item NAME has come; gone NAME; changed SIGNAL of an item or of its menu. Commands, for the
item that came last:
  items               the names of all
  properties          what the panel shows of it; pictures as [width, height, SHA-1]
  activate, context, secondary   the mouse's buttons on it, with the place on the screen
  menu                its entries, made up to date
  choose ID           a click on one
"""

import hashlib
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

from talk import Commands, tell

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
PROPERTIES = "org.freedesktop.DBus.Properties"
INTROSPECTION = "org.freedesktop.DBus.Introspectable"
# Qt looks for the properties here before it reads them.
WATCHER_PROPERTIES = f"""<interface name="{WATCHER}">
    <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
"""
PATIENCE = 30  # seconds


class Watcher(dbus.service.Object):
    def __init__(self, bus):
        self.bus = bus
        self.items = {}  # name on the bus, path
        self.has_host = False
        super().__init__(dbus.service.BusName(WATCHER, bus, do_not_queue=True),
                         "/StatusNotifierWatcher")
        bus.add_signal_receiver(self._owner_changed, "NameOwnerChanged", "org.freedesktop.DBus")

    @dbus.service.method(WATCHER, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender=None):
        name, path = (sender, service) if service.startswith("/") else (service,
                                                                        "/StatusNotifierItem")
        self.items.pop(name, None)
        self.items[name] = path
        self.StatusNotifierItemRegistered(name + path)
        tell("item", name)

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierHost(self, _service):
        self.has_host = True
        self.StatusNotifierHostRegistered()

    @dbus.service.signal(WATCHER, signature="s")
    def StatusNotifierItemRegistered(self, service):
        pass

    @dbus.service.signal(WATCHER, signature="s")
    def StatusNotifierItemUnregistered(self, service):
        pass

    @dbus.service.signal(WATCHER)
    def StatusNotifierHostRegistered(self):
        pass

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return self.GetAll(interface)[name]

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _interface):
        items = [name + path for name, path in self.items.items()]
        return {"RegisteredStatusNotifierItems": dbus.Array(items, signature="s"),
                "IsStatusNotifierHostRegistered": self.has_host, "ProtocolVersion": dbus.Int32(0)}

    @dbus.service.method(INTROSPECTION, out_signature="s", path_keyword="path",
                         connection_keyword="connection")
    def Introspect(self, path, connection):
        text = super().Introspect(path, connection)
        return text.replace(f'<interface name="{WATCHER}">', WATCHER_PROPERTIES)

    def _owner_changed(self, name, _old, new):
        if name in self.items and not new:
            path = self.items.pop(name)
            self.StatusNotifierItemUnregistered(name + path)
            tell("gone", name)


def picture(pixmap):
    width, height, pixels = pixmap
    return [int(width), int(height), hashlib.sha1(bytes(pixels)).hexdigest()]


def entry(node):
    number, properties, children = node
    return {"id": int(number),
            "label": str(properties.get("label", "")).replace("__", "\0").replace("_", "")
            .replace("\0", "_"),
            "separator": properties.get("type") == "separator",
            "enabled": bool(properties.get("enabled", True)),
            "visible": bool(properties.get("visible", True)),
            "checked": properties.get("toggle-state") == 1 if properties.get("toggle-type")
            else None,
            "entries": [entry(child) for child in children]}


class Host:
    def __init__(self, bus):
        self.bus = bus
        self.watcher = Watcher(bus)
        for interface in (ITEM, MENU):
            bus.add_signal_receiver(self._changed, dbus_interface=interface,
                                    member_keyword="member")

    def register(self):
        self.watcher.RegisterStatusNotifierHost(self.bus.get_unique_name())

    @staticmethod
    def _changed(*_arguments, member=None):
        tell("changed", member)

    def _item(self):
        name, path = list(self.watcher.items.items())[-1]
        return self.bus.get_object(name, path, introspect=False)

    def _menu(self):
        item = self._item()
        path = item.Get(ITEM, "Menu", dbus_interface=PROPERTIES, timeout=PATIENCE)
        return dbus.Interface(self.bus.get_object(item.bus_name, path, introspect=False), MENU)

    def items(self):
        return list(self.watcher.items)

    def properties(self):
        found = self._item().GetAll(ITEM, dbus_interface=PROPERTIES, timeout=PATIENCE)
        facts = {name: str(found[name]) for name in
                 ("Id", "Title", "Status", "Category", "IconName", "Menu") if name in found}
        facts["IconPixmap"] = [picture(pixmap) for pixmap in found.get("IconPixmap", [])]
        _, _, facts["ToolTip"], facts["ToolTipText"] = found["ToolTip"]
        return facts

    def click(self, method, x, y):
        self._item().get_dbus_method(method, ITEM)(dbus.Int32(int(x)), dbus.Int32(int(y)),
                                                   timeout=PATIENCE)

    def menu(self):
        menu = self._menu()
        menu.AboutToShow(dbus.Int32(0), timeout=PATIENCE)
        _revision, root = menu.GetLayout(dbus.Int32(0), dbus.Int32(-1),
                                         dbus.Array([], signature="s"), timeout=PATIENCE)
        return entry(root)["entries"]

    def choose(self, number):
        self._menu().Event(dbus.Int32(int(number)), "clicked", dbus.Int32(0, variant_level=1),
                           dbus.UInt32(0), timeout=PATIENCE)


def main():
    DBusGMainLoop(set_as_default=True)
    loop = GLib.MainLoop()
    host = Host(dbus.SessionBus())
    if "watcher" not in sys.argv:
        host.register()
    commands = Commands(loop, {
        "register-host": host.register, "items": host.items, "properties": host.properties,
        "menu": host.menu, "choose": host.choose,
        "activate": lambda x, y: host.click("Activate", x, y),
        "context": lambda x, y: host.click("ContextMenu", x, y),
        "secondary": lambda x, y: host.click("SecondaryActivate", x, y)})
    tell("ready")
    loop.run()
    del commands


if __name__ == "__main__":
    main()
