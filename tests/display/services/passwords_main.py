"""Tells all that the keyring holds, as JSON: one object an item with label, attributes, secret."""

import json

import dbus

SECRETS = "org.freedesktop.secrets"
PATH = "/org/freedesktop/secrets"
INTERFACE = "org.freedesktop.Secret"


def main():
    bus = dbus.SessionBus()
    service = dbus.Interface(bus.get_object(SECRETS, PATH), f"{INTERFACE}.Service")
    _, session = service.OpenSession("plain", dbus.String("", variant_level=1))
    unlocked, locked = service.SearchItems(dbus.Dictionary({}, signature="ss"))
    found = []
    for path in [*unlocked, *locked]:
        item = bus.get_object(SECRETS, path)
        facts = item.GetAll(f"{INTERFACE}.Item", dbus_interface="org.freedesktop.DBus.Properties")
        secret = None
        if not facts["Locked"]:
            _, _, value, _ = item.GetSecret(session, dbus_interface=f"{INTERFACE}.Item")
            secret = bytes(value).decode()
        found.append({"label": facts["Label"], "attributes": dict(facts["Attributes"]),
                      "secret": secret})
    print(json.dumps(found))


if __name__ == "__main__":
    main()
