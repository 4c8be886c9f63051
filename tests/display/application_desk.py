"""A desk at which a person works with the real program: by mouse, keyboard and tray."""

import os
import subprocess
import time
import unittest

from desk import Desk, Service
from file_manager import FileManager
from mouse import Mouse
from observed import Application
from tray import Trayer
from tray_host import TrayHost

# Its own device folder, with all that programs need but FUSE. Other tests' disks would live on in its
# copy of the mount table.
WITHOUT_FUSE = """
devices=$1; shift
while read -r _ point type _; do
    case $type in fuse*) umount -l "$point";; esac
done < /proc/mounts
mount -t tmpfs -o mode=755 none "$devices" || exit 125
for name in null zero full random urandom tty shm pts; do
    if [ -d /dev/$name ]; then mkdir "$devices/$name"; else : > "$devices/$name"; fi
    mount --rbind /dev/$name "$devices/$name" || exit 125
done
ln -s /proc/self/fd "$devices/fd"
mount --rbind "$devices" /dev || exit 125
exec "$@"
"""


class ApplicationDesk(Desk):
    """tray: None, "trayer" (X11's) or "sni" (StatusNotifier). language: as a user sets it, "de" or
    "de:en". Without file_manager nobody on the bus shows folders."""

    def __init__(self, language="en", scale=1, dark=False, screen="1280x900x24", tray=None,
                 bus=True, keyring=True, fuse=True, file_manager=True):
        self.language = language
        self.application = None
        super().__init__(scale, screen, bus, keyring)
        try:
            self.mouse = Mouse(self)
            self.wrapper = [] if fuse else self._hide_fuse()
            self.portal = Service(self, "portal", 1 if dark else 2) if bus else None
            self.file_manager = FileManager(self) if bus and file_manager else None
            self.tray = {None: lambda _: None, "trayer": Trayer, "sni": TrayHost}[tray](self)
        except BaseException:
            self.close()
            raise

    def _hide_fuse(self):
        """What stands before a program so that it finds no FUSE: a mount namespace of its own."""
        devices = self.folder / "devices"
        devices.mkdir()
        user, group = os.getuid(), os.getgid()
        itself = [] if user == 0 else ["unshare", "--user", f"--map-user={user}",
                                       f"--map-group={group}"]
        wrapper = ["unshare", "--mount", "--propagation", "slave",
                   *([] if user == 0 else ["--map-root-user"]), "sh", "-c", WITHOUT_FUSE, "sh",
                   str(devices), *itself]
        trial = subprocess.run([*wrapper, "test", "!", "-e", "/dev/fuse"], capture_output=True,
                               text=True, check=False)
        if trial.returncode != 0:
            raise unittest.SkipTest(f"FUSE can't be hidden here: {trial.stderr}")
        return wrapper

    def start_application(self, *arguments, program=None, observed=True,
                          stdin=subprocess.DEVNULL):
        """Starts it as a person does. The other operations mean the observed one."""
        application = Application(self, program or os.environ["NIMBREL"], arguments, observed,
                                  stdin)
        if observed:
            self.application, self.lines = application, application.lines
        return application

    # What is to be seen.

    def where(self, name):
        """The control's middle on the display, or None: see observer/Places.h."""
        return self.application.ask("where", name)

    def tell(self, name):
        """What can be read off a control, or None: see observer/Facts.h."""
        return self.application.ask("tell", name)

    def table(self, name):
        """Its rows: texts, accessible, selected."""
        return self.application.ask("tell-table", name)

    def windows(self):
        """The visible windows' titles, the one in front first."""
        return [window["title"] for window in self.application.ask("windows")
                if window["class"] != "QSystemTrayIconSys"]

    def cut_controls(self):
        """The controls of the active window that have too little room for their texts."""
        return self.application.ask("check-layout")

    # What the person does with the mouse.

    def place(self, *question):
        """Where that is once it stands still; fails where it doesn't come."""
        places = []

        def stands_still():
            places.append(self.application.ask(*question))
            return places[-1] is not None and places[-2:-1] == places[-1:]
        self.quiet()
        self.until(stands_still, f"a place for the mouse: {question}")
        return places[-1]

    def click_on(self, name):
        """The middle of a control, a toolbar's entry, a button by its text."""
        self.mouse.click(*self.place("where", name))

    def double_click_on(self, name):
        self.mouse.double_click(*self.place("where", name))

    def right_click_on(self, name):
        self.mouse.right_click(*self.place("where", name))

    def click_row(self, table, row):
        """`row` is a number, or the text of one of its cells."""
        self.mouse.click(*self.place("where-row", table, row))

    def double_click_row(self, table, row):
        self.mouse.double_click(*self.place("where-row", table, row))

    def right_click_row(self, table, row):
        self.mouse.right_click(*self.place("where-row", table, row))

    def click_menu(self, *entries):
        """An entry of the open menu or list; further ones are those of the submenus."""
        for entry in entries:
            self.mouse.click(*self.place("where", entry))

    def choose_in(self, button, entry):
        """Opens a pop-up button's list and takes an entry."""
        self.click_on(button)
        time.sleep(0.2)  # the list's animation
        self.click_menu(entry)

    def drag(self, start, target):
        """From one named control to another."""
        self.mouse.drag(self.place("where", start), self.place("where", target))
