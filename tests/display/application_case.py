"""What scenarios with the application share: how one begins, and what is looked at behind it."""

import subprocess
import unittest
from pathlib import Path

from application_desk import ApplicationDesk
from earlier_runs import Volume, leave_volumes
from readers import stored_volumes


def children(process):
    """The children of a process by their ids, also of one that may not be looked into."""
    found = []
    for path in Path("/proc").glob("[0-9]*/stat"):
        try:
            facts = path.read_text(encoding="utf-8", errors="replace").rpartition(")")[2].split()
        except OSError:
            continue  # it has ended meanwhile
        if facts[1] == str(process):
            found.append(int(path.parent.name))
    return found


def is_alive(process):
    try:
        facts = Path(f"/proc/{process}/stat").read_text(encoding="utf-8", errors="replace")
    except OSError:
        return False
    return facts.rpartition(")")[2].split()[0] != "Z"


class ApplicationCase(unittest.TestCase):
    def sit_down(self, **options):
        desk = ApplicationDesk(**options)
        self.addCleanup(desk.close)
        return desk

    def sit_down_with(self, *labels, tray="sni", advanced=True, values=None, automount=True,
                      **options):
        """A desk where volumes with these labels are on the list; their passwords are stored."""
        desk = self.sit_down(tray=tray, **options)
        volumes = [Volume(desk, label, automount=automount) for label in labels]
        leave_volumes(desk, *volumes, advanced=str(advanced).lower(), **values or {})
        for volume in volumes:
            volume.store_password()
        return desk, *volumes

    def start(self, desk, *volumes):
        """Until the program shows these as mounted; the processes of the run."""
        application = desk.start_application()
        self.expect_mounted(desk, *volumes)
        process = application.process.pid
        return application, [process, *children(process)]

    @staticmethod
    def expect_mounted(desk, *volumes):
        for volume in volumes:
            desk.until(lambda one=volume: one.is_mounted, f"the disk {volume.label}")
        if desk.tray:
            desk.tray.expect_item()
            desk.until(lambda: {f"Unmount {volume.label}" for volume in volumes}
                       <= set(desk.tray.labels()), "the menu with the mounted disks")

    def assert_nothing_left(self, desk, processes, *volumes):
        """No disk, no folder for one, no process; and the list as it was."""
        for process in processes:
            desk.until(lambda one=process: not is_alive(one), f"the end of process {process}")
        self.assertEqual(desk.mounts(), [])
        self.assertEqual(list((desk.home / "Volumes").glob("*")), [])
        self.assertEqual(list((desk.home / "Desktop").iterdir()), [])
        self.assert_listed(desk, *volumes)

    def assert_listed(self, desk, *volumes):
        self.assertEqual([(record["label"], record["root"]) for record in stored_volumes(desk)],
                         [(volume.label, str(volume.folder)) for volume in volumes])

    def hold(self, desk, path):
        """Another program that has the file open."""
        with path.open(encoding="utf-8") as file:
            program = subprocess.Popen(["sleep", "600"], stdin=file)
        self.addCleanup(desk.end, program)
        return program

    def answer_password(self, desk, password):
        desk.expect("focus", "passphraseTextField")
        desk.type(password)
        desk.key("Return")
