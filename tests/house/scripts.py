"""A copy of the project's scripts, beside commands that only say how they were called."""

import os
import shutil
import stat
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]


class ScriptTest(unittest.TestCase):
    """`self.project` holds the scripts; `fake` puts a command before the machine's own."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name).resolve()
        self.project = self.folder / "project"
        self.commands = self.folder / "bin"
        self.calls = self.folder / "calls.txt"
        self.commands.mkdir()
        self.environment = {
            "PATH": f"{self.commands}:/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
            "LC_ALL": "C",
        }
        for path in ("run", "test", ".ci/run", "tools/install-packages",
                     "packaging/debian-packages.txt"):
            (self.project / path).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(PROJECT / path, self.project / path)

    def write_program(self, path, text):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(f"#!/bin/bash\n{text}\n")
        path.chmod(stat.S_IRWXU)

    def fake(self, name, body="", path=None):
        """A command that notes its call in self.calls, then does `body`."""
        self.write_program(path or self.commands / name,
                           f'echo "{name} $*" >>"{self.calls}"\n{body}')

    def without(self, *names):
        """A PATH of links to the machine's commands but these."""
        links = self.folder / "links"
        links.mkdir()
        for folder in ("/usr/sbin", "/usr/bin", "/sbin", "/bin"):
            for command in os.listdir(folder):
                if command not in names and not (links / command).is_symlink():
                    (links / command).symlink_to(f"{folder}/{command}")
        self.environment["PATH"] = f"{self.commands}:{links}"

    def start(self, script, *arguments, **settings):
        settings.setdefault("stdin", subprocess.DEVNULL)
        settings.setdefault("env", self.environment)
        settings.setdefault("cwd", "/")
        settings.setdefault("start_new_session", True)  # no terminal, whoever runs this
        return subprocess.run([str(self.project / script), *arguments], capture_output=True,
                              text=True, timeout=240, check=False, **settings)

    def called(self):
        return self.calls.read_text().splitlines() if self.calls.exists() else []
