"""One round of works on one disk."""
import json
import shutil
import statistics
import subprocess
import sys

import content
import files
import repository


class Bench:
    """Results by row, in milliseconds or the row's unit; what the disk loses goes to the notes."""

    def __init__(self, disk, samples, size, output):
        self.disk, self.samples, self.size, self.output = disk, samples, size, output
        self.rows, self.notes = {}, []
        self.folder = None
        self.big = None

    def note(self, text):
        if text not in self.notes:
            self.notes.append(text)

    def run(self, names):
        """Results are written after each group, so that a disk that fails later keeps them."""
        try:
            if "mounting" in names:
                mounting(self)
            self.disk.mount()
            self.make_folder()
            for name in names:
                self.run_group(name)
            if self.disk.mounts:
                self.rows["daemon's peak memory"] = self.disk.peak()
            shutil.rmtree(self.folder)
        finally:
            self.save()
        self.disk.stop()

    def make_folder(self):
        self.folder = self.disk.plain / "work"
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir()
        self.big = self.folder / "big"

    def run_group(self, name):
        """What a disk can't do costs it that group's rows only."""
        if name not in GROUPS:
            return
        try:
            GROUPS[name](self)
        except (OSError, RuntimeError, subprocess.TimeoutExpired) as error:
            print(f"{self.disk.name}, {name}: {error}", file=sys.stderr)
            self.note(f"can't do the works of '{name}'")
        self.save()

    def save(self):
        self.output.write_text(json.dumps({"rows": self.rows, "notes": self.notes}), encoding="utf-8")


def mounting(bench):
    """Without the derivation of the password's key, which is slow on purpose."""
    if not bench.disk.mounts:
        return
    seconds = []
    for _ in range(7):
        seconds.append(bench.disk.seconds_to_first_listing())
        bench.disk.stop()
    without = statistics.median(seconds) - bench.disk.seconds_of_derivation()
    bench.rows["mount until the first ls"] = max(0.0, without) * 1000
    if bench.disk.name == "cryfs":
        bench.note("the time of its mount holds its password's derivation")


GROUPS = {"sequential": content.sequential, "random": content.random_access,
          "appends": content.appends, "small": files.small_files, "tree": files.tree,
          "listing": files.listing, "git": repository.version_control}
NAMES = ("mounting", *GROUPS)
