"""The application on desktops where something is missing, or comes late."""

import os
import subprocess
import time
import unittest

from application_case import ApplicationCase
from assistants_test import PASSWORD
from earlier_runs import Volume, leave_volumes
from readers import preferences, stored_password, stored_passwords, stored_volumes
from tray import Trayer
from tray_host import TrayHost

SECRETS = "/org/freedesktop/secrets"


class TrayMissingTest(ApplicationCase):
    def start_without_tray(self):
        desk, work = self.sit_down_with("Work", tray=None)
        application = desk.start_application()
        desk.expect("window", "Nimbrel")
        self.expect_mounted(desk, work)
        return desk, work, application

    @staticmethod
    def has_keyboard(desk):
        return desk.tool("xdotool", "getactivewindow", "getwindowname", check=False) == "Nimbrel\n"

    @staticmethod
    def is_closed(desk):
        """The window manager passes a key over that comes while it puts a window up."""
        desk.key("alt+F4")
        time.sleep(0.5)
        return desk.windows() == []

    @staticmethod
    def is_minimised(desk):
        return "window state: Iconic" in desk.tool("xprop", "-name", "Nimbrel", "WM_STATE")

    def test_the_window_opens_and_its_menu_bar_quits(self):
        desk, work, application = self.start_without_tray()
        desk.key("alt+n")
        desk.expect("menu", "Open Work|Unmount Work|-|Preferences…|About Nimbrel|-|Quit Nimbrel")
        desk.click_menu("Quit Nimbrel")
        self.assertEqual(application.wait(), 0)
        self.assert_nothing_left(desk, [], work)

    def test_quit_has_a_key(self):
        desk, work, application = self.start_without_tray()
        desk.key("ctrl+q")
        self.assertEqual(application.wait(), 0)
        self.assert_nothing_left(desk, [], work)

    def test_a_closed_window_is_minimised_and_a_second_start_brings_it_back(self):
        desk, work, application = self.start_without_tray()
        desk.key("alt+F4")
        desk.until(lambda: self.is_minimised(desk), "the minimised window")
        self.assertTrue(application.running)
        self.assertTrue(work.is_mounted)
        self.assertEqual(desk.start_application(observed=False).wait(), 0)
        desk.until(lambda: not self.is_minimised(desk), "the window")
        desk.key("ctrl+q")
        self.assertEqual(application.wait(), 0)

    def test_an_x11_tray_that_comes_late_gets_the_icon(self):
        desk, work, application = self.start_without_tray()
        desk.tray = Trayer(desk)
        self.assert_icon_works(desk, work, application)

    def test_a_status_notifier_tray_that_comes_late_gets_the_icon(self):
        desk, work, application = self.start_without_tray()
        desk.tray = TrayHost(desk)
        self.assert_icon_works(desk, work, application)

    def test_a_watcher_first_and_its_host_later(self):
        desk, work, application = self.start_without_tray()
        desk.tray = TrayHost(desk, watcher_alone=True)
        time.sleep(1.5)
        self.assertEqual(desk.tray.items(), [])
        self.assertEqual(desk.windows(), ["Nimbrel"])
        desk.tray.register_host()
        self.assert_icon_works(desk, work, application)

    def test_a_restarted_x11_tray_gets_the_icon_again(self):
        self.restart_tray("trayer")

    def test_a_restarted_status_notifier_tray_gets_the_icon_again(self):
        self.restart_tray("sni")

    def restart_tray(self, kind):
        desk, work = self.sit_down_with("Work", tray=kind)
        application, _ = self.start(desk, work)
        desk.tray.stop()
        time.sleep(1)
        self.assertTrue(application.running)
        desk.tray.start()
        self.assert_icon_works(desk, work, application)

    def assert_icon_works(self, desk, work, application):
        """With it the window needs no menu bar, and is hidden where it is closed."""
        desk.tray.expect_item()
        mounted = desk.tray.icon()
        desk.tray.choose("Unmount Work")
        desk.until(lambda: not work.is_mounted, "the disk's end")
        desk.until(lambda: desk.tray.icon() != mounted, "the other picture")
        self.assertEqual(desk.tray.labels(), ["Mount Work", "-", "Preferences…", "About Nimbrel",
                                              "-", "Quit Nimbrel"])
        if "Nimbrel" not in desk.windows():
            desk.tray.click()
        desk.until(lambda: self.has_keyboard(desk), "the window")
        desk.until(lambda: self.is_closed(desk), "the window's end")
        desk.tray.click()
        desk.until(lambda: desk.windows() == ["Nimbrel"], "the window")
        desk.tray.choose("Quit Nimbrel")
        self.assertEqual(application.wait(), 0)
        self.assert_nothing_left(desk, [], work)


class KeyringMissingTest(ApplicationCase):
    def assert_asked_and_mounted(self, desk, work):
        """At the start; and the program isn't kept waiting for whoever doesn't answer."""
        began = time.monotonic()
        application = desk.start_application()
        self.answer_password(desk, PASSWORD)
        self.expect_mounted(desk, work)
        self.assertLess(time.monotonic() - began, 20)
        (work.disk / "note.txt").write_text("kept")
        self.assertEqual((work.disk / "note.txt").read_text(), "kept")
        self.assertEqual(application.terminate(), 0)
        self.assert_nothing_left(desk, [application.process.pid], work)

    def listed(self, desk, stored=True):
        work = Volume(desk, "Work", stored=stored)
        leave_volumes(desk, work, advanced="true")
        return work

    def test_without_a_keyring_the_password_is_asked_each_time(self):
        desk = self.sit_down(tray="sni", keyring=False)
        work = self.listed(desk)
        for _ in range(2):
            self.assert_asked_and_mounted(desk, work)
        self.assert_password_nowhere(desk)

    def test_a_keyring_that_comes_later_takes_the_password(self):
        desk = self.sit_down(tray="sni", keyring=False)
        work = self.listed(desk)
        self.assert_asked_and_mounted(desk, work)
        desk.start_keyring()
        self.assert_asked_and_mounted(desk, work)
        self.assertEqual(stored_password(desk, account=str(work.folder)), PASSWORD)
        application, _ = self.start(desk, work)
        self.assertEqual(application.terminate(), 0)

    def test_a_locked_keyring_that_nobody_unlocks(self):
        desk = self.sit_down(tray="sni")
        work = self.listed(desk)
        work.store_password()
        desk.tool("gdbus", "call", "--session", "--dest", "org.freedesktop.secrets",
                  "--object-path", SECRETS, "--method", "org.freedesktop.Secret.Service.Lock",
                  f"['{SECRETS}/collection/login']")
        self.assertEqual([item["secret"] for item in stored_passwords(desk)], [None])
        self.assert_asked_and_mounted(desk, work)
        self.assert_password_nowhere(desk)

    def test_without_a_session_bus_it_runs_and_mounts(self):
        desk = self.sit_down(bus=False, tray="trayer")
        work = self.listed(desk)
        self.assert_asked_and_mounted(desk, work)
        self.assert_password_nowhere(desk)

    def assert_password_nowhere(self, desk):
        for path in desk.home.rglob("*"):
            if path.is_file() and "keyrings" not in path.parts and not path.is_symlink():
                self.assertNotIn(PASSWORD.encode(), path.read_bytes(), path)


class FuseMissingTest(ApplicationCase):
    def test_a_mount_tells_what_to_do_and_all_else_works(self):
        desk, work = self.sit_down_with("Work", fuse=False)
        application = desk.start_application()
        desk.expect("alert", '"Work" could not be mounted.')
        self.assertEqual(desk.expect("detail"),
                         "This system has no FUSE: /dev/fuse is missing. Run `sudo modprobe fuse`; "
                         "a container needs that device from outside.")
        desk.key("Return")
        desk.tray.expect_item()
        desk.until(lambda: "Mount Work" in desk.tray.labels(), "the menu")
        time.sleep(1.5)  # what was just told isn't told again at once
        desk.tray.choose("Mount Work")
        desk.expect("alert", '"Work" could not be mounted.')
        desk.key("Return")
        desk.tray.click()
        desk.expect("window", "Nimbrel")
        desk.tray.choose("Quit Nimbrel")
        self.assertEqual(application.wait(), 0)
        self.assert_nothing_left(desk, [], work)


class DisplayMissingTest(ApplicationCase):
    def test_without_a_display_a_word_at_the_terminal(self):
        desk, work = self.sit_down_with("Work", tray=None)
        environment = {name: value for name, value in desk.environment.items()
                       if name not in ("DISPLAY", "QT_QPA_PLATFORM")}
        self.assert_refuses(desk, environment)
        self.assert_listed(desk, work)

    def test_a_display_that_does_not_answer_is_told_too(self):
        desk = self.sit_down()
        environment = {**desk.environment, "DISPLAY": ":9999"}
        del environment["QT_QPA_PLATFORM"]
        self.assert_refuses(desk, environment)

    def assert_refuses(self, desk, environment):
        outcome = subprocess.run([os.environ["NIMBREL"]], env=environment, capture_output=True,
                                 text=True, timeout=30, check=False)
        self.assertEqual(outcome.returncode, 1, outcome.stderr)
        self.assertIn("nimbrel: There is no display. At a terminal, nimbrelctl does the same "
                      "work.", outcome.stderr)
        self.assertEqual(desk.mounts(), [])


class ReadOnlyTest(ApplicationCase):
    """Settings that can't be written: a full disk, a broken home folder."""

    def make_read_only(self, folder):
        """For root, too, who may write everywhere else."""
        if os.getuid() != 0:
            folder.chmod(0o500)
            self.addCleanup(folder.chmod, 0o700)
            return
        subprocess.run(["mount", "--bind", folder, folder], check=True)
        self.addCleanup(subprocess.run, ["umount", folder], check=True)
        subprocess.run(["mount", "-o", "remount,bind,ro", folder], check=True)

    def test_preferences_that_cannot_be_written_are_told(self):
        desk, work = self.sit_down_with("Work")
        before = preferences(desk)
        self.make_read_only(desk.home / ".config")
        application, _ = self.start(desk, work)
        self.assertEqual(desk.windows(), [])
        desk.tray.click()
        desk.expect("window", "Nimbrel")
        desk.click_on("preferences")
        desk.expect("window", "Preferences")
        desk.click_on("addVolumePrefixButton")
        desk.click_on("closeButton")
        desk.expect("alert", "The preferences couldn't be saved.")
        self.assertIn(str(desk.home / ".config/Nimbrel"), desk.expect("detail"))
        desk.key("Return")
        desk.until(lambda: desk.windows() == ["Nimbrel"], "the sheet's end")
        desk.tray.choose("Quit Nimbrel")
        desk.expect("alert", "The list of volumes could not be saved.")
        desk.key("Return")
        self.assertEqual(application.wait(), 0)
        self.assertFalse(work.is_mounted)
        self.assertEqual(preferences(desk), before)

    def test_a_home_folder_that_cannot_be_written_is_told_at_a_mount(self):
        desk, work = self.sit_down_with("Work")
        self.make_read_only(desk.home)
        application = desk.start_application()
        desk.expect("alert", '"Work" could not be mounted.')
        self.assertIn(str(desk.home / "Volumes"), desk.expect("detail"))
        desk.key("Return")
        desk.until(lambda: desk.windows() == [], "the alert's end")
        self.assertEqual(application.terminate(), 0)
        self.assertFalse(work.is_mounted)
        self.assert_listed(desk, work)

    def test_a_first_start_without_anything_at_all(self):
        """No tray, no bus, no keyring, no FUSE, and settings that can't be written."""
        desk = self.sit_down(bus=False, fuse=False)
        (desk.home / ".config/Nimbrel").mkdir()
        self.make_read_only(desk.home / ".config")
        application = desk.start_application()
        desk.expect("window", "Nimbrel")
        desk.key("Escape")  # the welcome
        desk.expect("window", "Nimbrel")
        self.assertTrue(desk.tell("new")["enabled"])
        desk.key("ctrl+q")
        desk.expect("alert", "The list of volumes could not be saved.")
        desk.key("Return")
        self.assertEqual(application.wait(), 0)
        self.assertEqual(stored_volumes(desk), [])


if __name__ == "__main__":
    unittest.main()
