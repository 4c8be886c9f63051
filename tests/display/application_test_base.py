"""What the scenarios of the whole program share: what an earlier day left, and looks at the disk."""

import os
import subprocess
import unittest
from pathlib import Path

from application_desk import ApplicationDesk
from assistants_test import PASSWORD, nimbrelctl
from earlier_runs import leave_records, store_password
from readers import preferences, stored_password, stored_volumes

ITEMS = ("new", "add", "remove", "mount", "unmount", "change", "clear", "preferences", "mobile",
         "mode")
DESKTOP_ENTRY = ".config/autostart/com.nimbrel.Nimbrel.desktop"


class ApplicationTest(unittest.TestCase):
    """`desk` is there after sit_down."""

    def sit_down(self, **options):
        self.desk = ApplicationDesk(**options)
        self.addCleanup(self.desk.close)
        self.documents = self.desk.home / "Documents"
        return self.desk

    # What an earlier day left.

    def make_folder(self, name="Diary", where=None, password=PASSWORD):
        folder = (where or self.documents) / f"{name}.nmc"
        nimbrelctl("create", folder, password=password)
        return folder

    def remember(self, *volumes, **others):
        """The list of an earlier run: folder, and what differs from a new volume's values."""
        records = [{"version": 1, "root": str(folder), "label": "Nimbrel",
                    "configPath": f"{folder}/.encfs6.xml", "storePassword": True,
                    "automount": True, "checkKey": True, "spotlight": False, "local": False,
                    "allowsAll": False, **differences} for folder, differences in volumes]
        leave_records(self.desk, records, **others)

    def start_with_a_volume(self, **differences):
        """Simple mode's one volume, its password in the keyring; mounted. Its folder."""
        folder = self.make_folder()
        store_password(self.desk, folder)
        self.remember((folder, differences))
        self.desk.start_application()
        self.desk.tray.expect_item()
        if differences.get("automount", True):
            self.await_mounted()
            self.await_link()  # the program itself knows, too
        return folder

    # The window.

    def open_window(self):
        """By the left button on the tray's icon."""
        self.desk.tray.click()
        self.desk.expect("window", "Nimbrel")

    def close_window(self):
        """By the program's own key: the window manager's now and then gets lost under load."""
        self.desk.key("ctrl+w")

    def enabled_items(self):
        """The toolbar's items that can be clicked, in short: those that change."""
        states = {name: self.desk.tell(name) for name in ITEMS}
        return " ".join(name for name, state in states.items()
                        if state["visible"] and state["enabled"] and
                        name in ("remove", "mount", "unmount", "change", "clear"))

    def await_items(self, names):
        self.desk.until(lambda: self.enabled_items() == names, f"the items {names}", patience=10)

    def answer_alert(self, headline, button, buttons="OK (default OK)", detail=None):
        """Reads it whole, and clicks; without a button it is Escape."""
        self.desk.expect("alert", headline)
        if detail is not None:
            self.desk.expect("detail", detail)
        self.desk.expect("buttons", buttons)
        self.assertEqual(self.desk.cut_controls(), [])
        if button is None:
            self.desk.key("Escape")
        else:
            self.desk.click_on(button)

    def give_password(self, password=PASSWORD):
        self.desk.expect("focus", "passphraseTextField")
        self.desk.type(password)
        self.desk.key("Return")

    def change_password(self, old, new):
        """On the step that the toolbar or a menu has opened."""
        self.desk.expect("focus", "oldPassphraseTextField")
        self.desk.type(old)
        for field in ("passphraseTextField", "confirmTextField"):
            self.desk.tab_to(field)
            self.desk.type(new)
        self.desk.key("Return")
        self.answer_alert("You have successfully changed the password!", "OK")

    def quit(self):
        """By the tray's menu."""
        self.desk.tray.choose("Quit Nimbrel")
        self.assertEqual(self.desk.application.wait(), 0, self.desk.log("nimbrel"))

    # What is there.

    def disk(self, label="Nimbrel"):
        return self.desk.home / "Volumes" / label

    def mounted(self):
        """The labels of the disks in the mount table."""
        return sorted(Path(mount).name for mount in self.desk.mounts())

    def await_mounted(self, *labels):
        wanted = sorted(labels or ["Nimbrel"])
        self.desk.until(lambda: self.mounted() == wanted, f"the disks {wanted}", patience=20)

    def await_none_mounted(self):
        self.desk.until(lambda: not self.mounted(), "the disk's end", patience=20)

    def await_link(self, label="Nimbrel"):
        """The disk's link on the desktop."""
        link = self.desk.home / "Desktop" / label
        self.desk.until(link.is_symlink, "the link", patience=10)
        self.assertEqual(os.readlink(link), str(self.disk(label)))

    def stored(self, folder):
        """The password that the keyring has for the folder."""
        return stored_password(self.desk, account=str(folder))

    def listed(self):
        """The folders of the stored list, by their labels."""
        return {volume["label"]: volume["root"] for volume in stored_volumes(self.desk)}

    def preference(self, name):
        return preferences(self.desk).get(name)

    def opens(self, folder, password):
        """Whether the password opens the folder."""
        return subprocess.run([os.environ["NIMBRELCTL"], "encode", folder, "/a", "--password-file",
                               "-"], input=password + "\n", text=True, capture_output=True,
                              timeout=60, check=False).returncode == 0

    def assert_is_disk_of(self, folder, label="Nimbrel"):
        """A file goes in by the disk, and comes out of the folder in another form."""
        before = set(folder.rglob("*"))
        (self.disk(label) / "plain.txt").write_text("for my eyes", encoding="utf-8")
        added = set(folder.rglob("*")) - before
        self.assertTrue(added)
        for path in added:
            self.assertNotIn(b"for my eyes", path.read_bytes())
        (self.disk(label) / "plain.txt").unlink()

    def assert_nothing_left(self):
        """No disk, no mount point, no link, no process."""
        self.assertEqual(self.desk.mounts(), [])
        self.assertEqual(list((self.desk.home / "Volumes").iterdir()), [])
        self.assertEqual(list((self.desk.home / "Desktop").iterdir()), [])
        self.desk.until(lambda: not self.processes(), "the end of all processes", patience=10)

    def processes(self):
        """Those of the program that have this home folder."""
        home = f"HOME={self.desk.home}".encode()
        left = []
        for folder in Path("/proc").iterdir():
            try:
                if (os.readlink(folder / "exe") == os.environ["NIMBREL"] and
                        home in (folder / "environ").read_bytes().split(b"\0")):
                    left.append(int(folder.name))
            except OSError:
                continue  # no process, or gone
        return left
