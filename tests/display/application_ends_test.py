"""The application's ends: asked for or not, with disks mounted; and that there is one a user."""

import os
import signal
import subprocess
import time
import unittest

from application_case import ApplicationCase, children
from assistants_test import PASSWORD
from earlier_runs import Volume, leave_volumes
from readers import preferences, set_preferences, stored_password

APPLICATION = "org.freedesktop.Application"
IN_USE = '"Work" could not be unmounted.'
QUESTION = "Do you really want to quit Nimbrel?"


class SignalTest(ApplicationCase):
    """An end from outside is an orderly one, without a question to anybody."""

    def test_each_of_the_three_signals_unmounts_and_ends_with_0(self):
        desk, work, diary = self.sit_down_with("Work", "Diary")
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            application, processes = self.start(desk, work, diary)
            (work.disk / "note.txt").write_text("kept")
            application.process.send_signal(number)
            self.assertEqual(application.wait(), 0, desk.log("nimbrel"))
            self.assert_nothing_left(desk, processes, work, diary)
        self.assertEqual(stored_password(desk, account=str(work.folder)), PASSWORD)

    def test_a_signal_with_a_disk_in_use_ends_it_all_the_same(self):
        desk, work = self.sit_down_with("Work")
        application, processes = self.start(desk, work)
        (work.disk / "note.txt").write_text("kept")
        self.hold(desk, work.disk / "note.txt")
        application.process.send_signal(signal.SIGTERM)
        self.assertEqual(application.wait(), 0, desk.log("nimbrel"))
        desk.until(lambda: desk.mounts() == [], "the disk's end")
        desk.until(lambda: not any(os.path.exists(f"/proc/{one}") for one in processes), "ends")
        self.start(desk, work)
        self.assertEqual((work.disk / "note.txt").read_text(), "kept")

    def test_the_welcome_is_ended(self):
        desk = self.sit_down()
        application = desk.start_application()
        desk.expect("window", "Nimbrel")
        processes = [application.process.pid, *children(application.process.pid)]
        self.assertEqual(application.terminate(), 0)
        self.assert_nothing_left(desk, processes)
        self.assertIn("firstRunDate", preferences(desk))

    def test_an_alert_at_the_start_is_ended(self):
        desk = self.sit_down()
        set_preferences(desk, volumes='"never closed')
        application = desk.start_application()
        desk.expect("alert", "The list of volumes could not be read.")
        self.assertEqual(application.terminate(), 0)
        settings = desk.home / ".config/Nimbrel"
        kept = [path.read_text() for path in settings.glob("Nimbrel.conf.damaged-*")]
        self.assertEqual(set(kept), {'[General]\nvolumes="never closed\n'})

    def test_a_question_for_a_password_is_ended(self):
        desk, work = self.sit_down_with("Work", automount=False)
        diary = Volume(desk, "Diary", automount=True, stored=False)
        leave_volumes(desk, work, diary, advanced="true")
        application = desk.start_application()
        desk.expect("focus", "passphraseTextField")
        desk.type("half a pass")
        processes = [application.process.pid, *children(application.process.pid)]
        self.assertEqual(application.terminate(), 0)
        self.assert_nothing_left(desk, processes, work, diary)
        self.assertIsNone(stored_password(desk, account=str(diary.folder)))

    def test_a_mount_that_is_going_on_is_ended(self):
        """At moments from the first request up to the finished disk."""
        desk, *volumes = self.sit_down_with("Work", "Diary", "Photos", automount=False)
        for moment in range(8):
            application = desk.start_application()
            desk.tray.expect_item()
            desk.until(lambda: "Mount Work" in desk.tray.labels(), "the menu")
            processes = [application.process.pid, *children(application.process.pid)]
            for volume in volumes:
                desk.tray.choose(f"Mount {volume.label}")
            time.sleep(moment * 0.02)
            self.assertEqual(application.terminate(), 0, desk.log("nimbrel"))
            self.assert_nothing_left(desk, processes, *volumes)

    def test_a_killed_program_leaves_no_dead_disk_and_starts_again(self):
        desk, work = self.sit_down_with("Work")
        application, processes = self.start(desk, work)
        (work.disk / "note.txt").write_text("kept")
        holder = self.hold(desk, work.disk / "note.txt")
        self.assertEqual(application.kill(), -9)
        desk.until(lambda: desk.mounts() == [], "the keeper")
        desk.until(lambda: not any(os.path.exists(f"/proc/{one}") for one in processes), "ends")
        self.assertIsNone(holder.poll())
        self.assert_listed(desk, work)
        application, processes = self.start(desk, work)
        self.assertEqual((work.disk / "note.txt").read_text(), "kept")
        self.assertEqual(application.terminate(), 0)
        self.assert_nothing_left(desk, processes, work)

    def test_the_window_systems_end_leaves_nothing_mounted(self):
        desk, work, diary = self.sit_down_with("Work", "Diary")
        application, processes = self.start(desk, work, diary)
        (work.disk / "note.txt").write_text("kept")
        desk.programs[0].kill()  # the display
        application.wait(patience=20)
        desk.until(lambda: desk.mounts() == [], "the disks' end")
        desk.until(lambda: not any(os.path.exists(f"/proc/{one}") for one in processes), "ends")
        self.assert_listed(desk, work, diary)
        self.assertNotIn("Segmentation", desk.log("nimbrel"))
        self.assertGreaterEqual(application.wait(), 0, desk.log("nimbrel"))


class QuitTest(ApplicationCase):
    """A person's own wish."""

    def test_quitting_unmounts_and_ends_with_0(self):
        desk, work = self.sit_down_with("Work")
        application, processes = self.start(desk, work)
        desk.tray.choose("Quit Nimbrel")
        self.assertEqual(application.wait(), 0)
        self.assertEqual([line for line in desk.lines.all() if line.startswith("alert")], [])
        self.assert_nothing_left(desk, processes, work)

    def quit_in_use(self):
        """Up to the question, behind the alert that tells who uses the disk."""
        desk, work = self.sit_down_with("Work")
        application, processes = self.start(desk, work)
        (work.disk / "note.txt").write_text("kept")
        holder = self.hold(desk, work.disk / "note.txt")
        self.wish_to_quit(desk, work, holder)
        return desk, work, application, processes, holder

    def wish_to_quit(self, desk, work, holder):
        desk.tray.choose("Quit Nimbrel")
        desk.expect("alert", IN_USE)
        self.assertEqual(desk.expect("detail"),
                         f"sleep ({holder.pid}) has {work.disk}/note.txt open. "
                         "Close that first, then try again.")
        desk.expect("buttons", "OK (default OK)")
        desk.key("Return")
        desk.expect("alert", QUESTION)
        self.assertIn("Still in use: Work.", desk.expect("detail"))
        desk.expect("buttons", "Cancel|Quit (default Cancel)")

    def assert_works_on(self, desk, work, application):
        desk.until(lambda: desk.windows() == [], "the question's end")
        self.assertTrue(application.running)
        self.assertTrue(work.is_mounted)
        (work.disk / "note.txt").write_text("changed")
        self.assertEqual((work.disk / "note.txt").read_text(), "changed")
        self.assertIn("Unmount Work", desk.tray.labels())

    def test_cancel_keeps_all_and_one_can_quit_later(self):
        desk, work, application, processes, holder = self.quit_in_use()
        with (work.disk / "note.txt").open("a", encoding="utf-8") as file:
            desk.click_on("Cancel")
            desk.until(lambda: desk.windows() == [], "the question's end")
            file.write(" safely")
        self.assertEqual((work.disk / "note.txt").read_text(), "kept safely")
        self.assert_works_on(desk, work, application)
        self.wish_to_quit(desk, work, holder)
        desk.key("Return")
        self.assert_works_on(desk, work, application)
        desk.end(holder)
        desk.tray.choose("Quit Nimbrel")
        self.assertEqual(application.wait(), 0)
        self.assert_nothing_left(desk, processes, work)

    def test_escape_at_the_question_keeps_all(self):
        desk, work, application, _, _ = self.quit_in_use()
        desk.key("Escape")
        self.assert_works_on(desk, work, application)

    def test_closing_the_question_keeps_all(self):
        desk, work, application, _, _ = self.quit_in_use()
        desk.key("alt+F4")
        self.assert_works_on(desk, work, application)

    def test_who_insists_quits_and_the_next_start_mounts_again(self):
        desk, work, application, processes, holder = self.quit_in_use()
        desk.click_on("Quit")
        self.assertEqual(application.wait(), 0)
        desk.until(lambda: desk.mounts() == [], "the disk's end")
        desk.until(lambda: not any(os.path.exists(f"/proc/{one}") for one in processes), "ends")
        self.assertIsNone(holder.poll())
        self.assert_listed(desk, work)
        application, processes = self.start(desk, work)
        self.assertEqual((work.disk / "note.txt").read_text(), "kept")
        self.assertEqual(application.terminate(), 0)
        self.assert_nothing_left(desk, processes, work)

    def test_quitting_over_an_open_assistant_asks_no_more(self):
        desk, work = self.sit_down_with("Work")
        application, processes = self.start(desk, work)
        desk.tray.click()
        desk.expect("window", "Nimbrel")
        desk.click_on("new")
        desk.expect("focus", "folderNameTextField")
        desk.tray.choose("Quit Nimbrel")
        self.assertEqual(application.wait(), 0)
        self.assert_nothing_left(desk, processes, work)


class OneProcessTest(ApplicationCase):
    def start_another(self, desk, *arguments):
        other = desk.start_application(*arguments, observed=False)
        return other.wait(patience=20)

    def test_a_second_start_shows_the_window_and_ends_with_0(self):
        desk, work = self.sit_down_with("Work")
        application, _ = self.start(desk, work)
        self.assertEqual(desk.windows(), [])
        self.assertEqual(self.start_another(desk), 0)
        desk.expect("window", "Nimbrel")
        self.assertTrue(application.running)
        desk.key("alt+F4")
        desk.until(lambda: desk.windows() == [], "the window's end")
        self.assertEqual(self.start_another(desk), 0)
        desk.expect("window", "Nimbrel")

    def test_questions_at_a_terminal_start_nothing(self):
        desk = self.sit_down()
        answers = {option: subprocess.run([os.environ["NIMBREL"], option], capture_output=True,
                                          text=True, env=desk.environment, timeout=30, check=False)
                   for option in ("--version", "--help", "--no-such-thing")}
        self.assertEqual([answer.returncode for answer in answers.values()], [0, 0, 2])
        self.assertRegex(answers["--version"].stdout, r"^nimbrel \d+\.\d+\.\d+ \(.*\)\n$")
        self.assertTrue(answers["--help"].stdout.startswith("Usage: nimbrel [FOLDER...]\n"))
        self.assertEqual(answers["--no-such-thing"].stdout, "")
        self.assertIn("nimbrel: Unknown option 'no-such-thing'.", answers["--no-such-thing"].stderr)
        self.assertIn("See nimbrel --help.", answers["--no-such-thing"].stderr)
        self.assertEqual(preferences(desk), {})

    def test_starts_at_the_same_moment_give_one_process(self):
        desk, work = self.sit_down_with("Work")
        for _ in range(4):
            starts = [desk.start_application(observed=False) for _ in range(3)]
            desk.until(lambda one=starts: sum(start.running for start in one) == 1, "one process")
            self.expect_mounted(desk, work)
            left = [start for start in starts if start.running]
            self.assertEqual(len(left), 1, desk.log("nimbrel"))
            ended = [start.wait() for start in starts if not start.running]
            self.assertEqual(ended, [0, 0], desk.log("nimbrel"))
            self.assertEqual(left[0].terminate(), 0)
            desk.until(lambda: not desk.tray.items(), "the icon's end")

    def test_without_a_bus_the_second_one_is_told_who_runs(self):
        desk, work = self.sit_down_without_bus()
        first = desk.start_application()
        desk.expect("window", "Nimbrel")
        second = desk.start_application()
        desk.expect("alert", f"Nimbrel is running in another session already (process "
                             f"{first.process.pid}). Quit it there first.")
        desk.key("Return")
        self.assertEqual(second.wait(), 1)
        self.assertTrue(first.running)
        self.assertEqual(first.terminate(), 0)
        self.assert_listed(desk, work)
        third = desk.start_application()
        desk.expect("window", "Nimbrel")
        self.assertEqual(third.terminate(), 0)

    def sit_down_without_bus(self):
        desk = self.sit_down(bus=False)
        work = Volume(desk, "Work", automount=False, stored=False)
        leave_volumes(desk, work, advanced="true")
        return desk, work

    def call(self, desk, method, *arguments):
        desk.tool("gdbus", "call", "--session", "--dest", "com.nimbrel.Nimbrel", "--object-path",
                  "/com/nimbrel/Nimbrel", "--method", f"{APPLICATION}.{method}", *arguments)

    def test_other_programs_reach_it_over_the_bus(self):
        desk, work = self.sit_down_with("Work")
        self.start(desk, work)
        (work.disk / "note.txt").write_text("kept")
        self.call(desk, "Activate", "{}")
        desk.expect("window", "Nimbrel")
        self.call(desk, "ActivateAction", "reveal-encrypted",
                  f"[<['{(work.disk / 'note.txt').as_uri()}']>]", "{}")
        method, path = desk.file_manager.expect_shown()
        self.assertEqual((method, os.path.dirname(path)), ("ShowItems", str(work.folder)))
        self.assertIn(os.path.basename(path), os.listdir(work.folder))
        other = Volume(desk, "Diary")
        self.call(desk, "Open", f"['{other.folder.as_uri()}']", "{}")
        desk.expect("window")
        self.assertTrue(desk.windows())
        self.call(desk, "ActivateAction", "no-such-action", "[]", "{}")
        desk.until(lambda: 'Nobody knows the action "no-such-action".' in desk.log("nimbrel"),
                   "a line in the log")

    def test_a_folder_that_is_none_is_told(self):
        desk, work = self.sit_down_with("Work")
        self.start(desk, work)
        self.assertEqual(self.start_another(desk, "/no/such/folder"), 0)
        desk.expect("alert", "This is not a valid Nimbrel Folder.")
        self.assertEqual(desk.expect("detail"), '"/no/such/folder" is no folder on this computer.')
        desk.key("Return")
        self.assert_listed(desk, work)


if __name__ == "__main__":
    unittest.main()
