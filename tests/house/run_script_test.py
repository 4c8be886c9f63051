"""What a person gets from ./run: a real encrypted folder and a real disk. The environment's
NIMBRELCTL is the program that a build would give; building itself is left out."""

import os
import subprocess
import unittest
from pathlib import Path

from scripts import ScriptTest


def why_no_disk():
    if "NIMBRELCTL" not in os.environ:
        return "NIMBRELCTL isn't set"
    if not os.path.exists("/dev/fuse"):
        return "there is no /dev/fuse"
    if os.geteuid() == 0 and not os.access("/dev/fuse", os.R_OK | os.W_OK):
        return "/dev/fuse may not be opened"
    return None


class RunScriptTest(ScriptTest):
    def setUp(self):
        super().setUp()
        self.home = self.folder / "ann's home"
        self.home.mkdir()
        self.environment["HOME"] = str(self.home)
        self.folder_path = self.home / "Nimbrel Demo.nmc"
        self.disk = self.home / "Volumes/Nimbrel Demo"
        self.program = self.project / "build/run/src/cli/nimbrelctl"
        self.fake("install-packages", path=self.project / "tools/install-packages")
        self.fake("cmake")
        self.fake("nimbrelctl", path=self.program)

    def use_real_program(self):
        why = why_no_disk()
        if why:
            self.skipTest(why)
        self.program.unlink()
        self.program.symlink_to(os.environ["NIMBRELCTL"])
        self.addCleanup(self.take_disk_away)

    def take_disk_away(self):
        if os.path.ismount(self.disk):
            subprocess.run(["fusermount3", "-u", "-z", "--", str(self.disk)], check=False)

    def run_demo(self):
        result = self.start("run", "--demo")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return result.stdout

    def test_the_demo_makes_a_folder_and_shows_it(self):
        self.use_real_program()
        output = self.run_demo()
        note = self.disk / "Read me first.txt"
        self.assertIn("plain file on your Nimbrel disk", note.read_text())
        self.assertTrue((self.folder_path / ".encfs6.xml").exists())
        for stored in self.folder_path.iterdir():
            self.assertNotIn("Read me", stored.name)
        for text in (f"The plain disk, for you: {self.disk}", str(self.folder_path),
                     "Read me first.txt", "The demo's password is: ", "./run -- unmount "):
            self.assertIn(text, output)

    def test_again_while_mounted_it_says_so(self):
        self.use_real_program()
        self.run_demo()
        self.assertIn("Already mounted.", self.run_demo())

    def test_again_after_an_unmount_the_files_are_there(self):
        self.use_real_program()
        self.run_demo()
        (self.disk / "mine.txt").write_text("kept")
        result = self.start("run", "--", "unmount", str(self.disk))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertFalse(os.path.ismount(self.disk))
        self.assertNotIn("The demo's password is: ", self.run_demo())
        self.assertEqual((self.disk / "mine.txt").read_text(), "kept")

    def test_a_program_that_fails_ends_it_with_its_status(self):
        self.fake("nimbrelctl", "echo no disk >&2; exit 12", path=self.program)
        result = self.start("run", "--demo")
        self.assertEqual((result.returncode, result.stderr), (12, "no disk\n"))

    def test_the_password_is_no_argument(self):
        self.fake("nimbrelctl", f'read -r word; echo "read: $word" >>"{self.calls}"; exit 1',
                  path=self.program)
        self.start("run", "--demo")
        calls = self.called()
        self.assertIn("read: a password that everyone knows", calls)
        self.assertIn(f"nimbrelctl create --password-file - {self.folder_path}", calls)
        self.assertEqual(sum("everyone" in call for call in calls), 1, calls)

    def test_without_a_terminal_nobody_is_asked(self):
        result = self.start("run")
        self.assertEqual(result.returncode, 1)
        self.assertIn("No terminal to ask for a password at. Try ./run --demo", result.stderr)

    def test_only_the_program_is_built_and_only_for_its_use(self):
        self.start("run", "--", "info")
        self.assertEqual(
            self.called(),
            ["install-packages build running",
             "cmake --preset release -B build/run -DNIMBREL_TESTS=OFF -DNIMBREL_BENCH=OFF "
             "-DNIMBREL_MANUALS=OFF",
             "cmake --build build/run --target nimbrelctl", "nimbrelctl info"])

    def test_on_a_display_the_application_is_built_with_its_manuals_and_started(self):
        self.environment["DISPLAY"] = ":77"
        self.fake("nimbrel", path=self.project / "build/run/bin/nimbrel")
        self.assertEqual(self.start("run").returncode, 0)
        self.assertEqual(
            self.called(),
            ["install-packages build running manuals",
             "cmake --preset release -B build/run -DNIMBREL_TESTS=OFF -DNIMBREL_BENCH=OFF "
             "-DNIMBREL_MANUALS=ON",
             "cmake --build build/run --target nimbrel nimbrel_manuals", "nimbrel "])

    def test_the_terminal_can_be_wanted_on_a_display(self):
        self.environment["DISPLAY"] = ":77"
        self.start("run", "--terminal")
        self.assertIn("cmake --build build/run --target nimbrelctl", self.called())

    def test_arguments_reach_the_program_in_the_callers_folder(self):
        self.fake("nimbrelctl", 'echo "in $PWD: $1|$2"', path=self.program)
        result = self.start("run", "--", "info", "two words", cwd=str(self.home))
        self.assertEqual(result.stdout, f"in {self.home}: info|two words\n")

    def test_a_build_that_fails_is_shown(self):
        self.fake("cmake", "echo no compiler; exit 1")
        result = self.start("run", "--demo")
        self.assertEqual(result.returncode, 1)
        self.assertIn("no compiler\n", result.stderr)
        self.assertIn("run: The build failed", result.stderr)

    def test_a_home_that_is_not_there_is_told(self):
        self.environment["HOME"] = str(self.folder / "nowhere")
        result = self.start("run", "--demo")
        self.assertEqual(result.returncode, 1)
        self.assertIn("Set HOME to a folder of yours", result.stderr)

    def test_nonsense_shows_the_usage(self):
        result = self.start("run", "--nonsense")
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertIn("./run --demo", result.stderr)
        self.assertIn("./run --demo", self.start("run", "--help").stdout)


if __name__ == "__main__":
    unittest.main()
