"""What earlier runs of the program left behind: folders, the list of volumes, stored passwords."""

import json
import plistlib
import subprocess

from assistants_test import PASSWORD, nimbrelctl
from readers import set_preferences


class Volume:
    """One on the list: its folder lies in Documents, its disk comes to Volumes/LABEL."""

    def __init__(self, desk, label, automount=True, stored=True, options=(), inside="Documents"):
        self.desk, self.label = desk, label
        self.automount, self.stored = automount, stored
        self.folder = desk.home / inside / f"{label}.nmc"
        self.disk = desk.home / "Volumes" / label
        nimbrelctl("create", self.folder, *options, password=PASSWORD)

    @property
    def is_mounted(self):
        return str(self.disk) in self.desk.mounts()

    def record(self):
        return {"version": 1, "root": str(self.folder), "label": self.label,
                "configPath": str(next(self.folder.glob(".*.xml"))),
                "storePassword": self.stored, "automount": self.automount, "checkKey": True,
                "spotlight": False, "local": False, "allowsAll": False}

    def store_password(self):
        store_password(self.desk, self.folder, self.label)


def store_password(desk, folder, label="Nimbrel", password=PASSWORD):
    """Into the keyring, as a mount does it."""
    subprocess.run(["secret-tool", "store", f"--label=Nimbrel: {label} ({folder.name})", "service",
                    f"Nimbrel: {label}", "account", str(folder)], input=password, text=True,
                   check=True, env=desk.environment, timeout=30)


def leave_volumes(desk, *volumes, **values):
    """The list with these volumes, and other preferences. Not a first start any more."""
    leave_records(desk, [volume.record() for volume in volumes], **values)


def leave_records(desk, records, **values):
    """The same for records as the archive has them."""
    coded = "".join("@" if byte == ord("@") else f"\\x{byte:02x}" for byte in _archive(records))
    info = json.dumps({str(desk.home / "Volumes" / record["label"]): record["root"]
                       for record in records})
    set_preferences(desk, **{"firstRunDate": "2026-01-01T00:00:00Z", **values,
                             "volumes": f'"@ByteArray({coded})"',
                             "NBVolumesInfo": '"' + info.replace('"', '\\"') + '"'})


def _archive(records):
    """A keyed archive, as the program writes it."""
    objects = ["$null"]

    def place(thing):
        objects.append(thing)
        return plistlib.UID(len(objects) - 1)

    def described(*names):
        return place({"$classname": names[0], "$classes": list(names)})
    record_class = described("NBNimbrelVolume", "NSObject")
    elements = [place({"$class": record_class,
                       **{name: place(value) if isinstance(value, str) else value
                          for name, value in record.items()}}) for record in records]
    root = place({"NS.objects": elements,
                  "$class": described("NSMutableArray", "NSArray", "NSObject")})
    return plistlib.dumps({"$version": 100000, "$archiver": "NSKeyedArchiver",
                           "$top": {"root": root}, "$objects": objects},
                          fmt=plistlib.FMT_BINARY)
