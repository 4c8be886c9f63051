"""What the application does beside its disks: updates, file managers' menus, the log."""

import json
import os
import re
import subprocess
import time
import unittest
from datetime import date, datetime, timezone

from application_case import ApplicationCase
from earlier_runs import Volume, leave_volumes
from local_feed import LocalFeed
from readers import preferences, set_preferences

VERSION = re.compile(r"^nimbrel (\S+) \(")
NOTES = "<h2>Faster</h2><ul><li>Disks are there at once.</li></ul>"
NAMES = ["platform_id", "version", "hwid", "firstRun", "volumeCount", "filenameEncryption",
         "providers"]
FIRST_CHECK = 8  # seconds behind the start
ACTIONS = {
    "Nautilus": ".local/share/nautilus/scripts/Show Encrypted File",
    "Nemo": ".local/share/nemo/actions/com.nimbrel.Nimbrel.nemo_action",
    "Dolphin": ".local/share/kio/servicemenus/com.nimbrel.Nimbrel.desktop",
    "Thunar": ".config/Thunar/uca.xml"}


def running_version(desk):
    return VERSION.match(desk.tool(os.environ["NIMBREL"], "--version"))[1]


class UpdateTest(ApplicationCase):
    def setUp(self):
        self.feed = LocalFeed()
        self.addCleanup(self.feed.stop)

    def sit_down_with_feed(self, *labels, **values):
        return self.sit_down_with(*labels, values={"SUFeedURL": self.feed.address, **values})

    def expect_request(self, desk):
        desk.until(lambda: self.feed.requests, "the request")
        return self.feed.requests.pop()

    def open_preferences(self, desk):
        desk.tray.click()
        desk.expect("window", "Nimbrel")
        desk.click_on("preferences")
        desk.expect("window", "Preferences")

    def text(self, desk, name):
        return desk.tell(name)["text"]

    def expect_last_check_today(self, desk):
        today = date.today()
        line = f"Last check was on {today:%A}, {today.day} {today:%B} {today.year}"
        desk.until(lambda: self.text(desk, "lastUpdateCheckTextField") == line, line)

    @staticmethod
    def stored_check(desk):
        return preferences(desk).get("SULastCheckTime")

    def test_a_first_start_tells_that_it_is_one(self):
        desk = self.sit_down()
        set_preferences(desk, SUFeedURL=self.feed.address)
        application = desk.start_application()
        desk.expect("window", "Nimbrel")  # the welcome
        parameters = self.expect_request(desk)
        self.assertEqual([name for name, _ in parameters], NAMES)
        facts = dict(parameters)
        self.assertRegex(facts.pop("hwid"), r"^[0-9a-fA-F]{32,}$")
        self.assertEqual(facts, {"platform_id": "2", "version": running_version(desk),
                                 "firstRun": "1", "volumeCount": "0", "filenameEncryption": "0",
                                 "providers": ""})
        self.assertEqual(self.feed.paths, ["/feed.xml"])
        self.assertEqual(self.feed.agents, [f"Nimbrel/{running_version(desk)}"])
        self.assertEqual(application.terminate(), 0)

    def test_volumes_and_their_cloud_services_are_counted(self):
        desk = self.sit_down(tray="sni")
        (desk.home / "Dropbox").mkdir()
        (desk.home / ".dropbox").mkdir()
        (desk.home / ".dropbox/info.json").write_text(
            json.dumps({"personal": {"path": str(desk.home / "Dropbox")}}), encoding="utf-8")
        volumes = [Volume(desk, "Work", inside="Dropbox"), Volume(desk, "Diary")]
        leave_volumes(desk, *volumes, advanced="true", SUFeedURL=self.feed.address,
                      NBUpdateToBeta="true")
        for volume in volumes:
            volume.store_password()
        self.start(desk, *volumes)
        facts = dict(self.expect_request(desk))
        self.assertEqual({name: facts[name] for name in NAMES[3:]},
                         {"firstRun": "0", "volumeCount": "2", "filenameEncryption": "1",
                          "providers": "1,0"})
        self.assertEqual(facts["platform_id"], "21")

    def test_a_newer_version_is_told_once_and_its_page_opened(self):
        self.feed.offer("99.2.1", NOTES)
        desk, work = self.sit_down_with_feed("Work")
        opened = self.make_browser(desk)
        self.start(desk, work)
        desk.expect("window", "Nimbrel Update")
        self.assertEqual(self.text(desk, "titleTextField"), "Nimbrel 99.2.1")
        self.assertEqual(self.text(desk, "versionTextField"),
                         "Version 99.2.1 of Friday, 20 November 2026 can be downloaded. "
                         f"You have version {running_version(desk)}.")
        self.assertTrue(desk.tell("notesView")["visible"])
        self.assertEqual(desk.cut_controls(), [])
        desk.click_on("downloadButton")
        desk.until(opened.exists, "the browser")
        self.assertEqual(opened.read_text(), f"{LocalFeed.PAGE}\n")
        desk.until(lambda: desk.windows() == [], "the window's end")

    @staticmethod
    def make_browser(desk):
        """What the desktop opens addresses with: it writes them into the returned file."""
        folder, opened = desk.folder / "bin", desk.folder / "opened"
        folder.mkdir()
        browser = folder / "xdg-open"
        browser.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$1\" >> '{opened}'\n", encoding="utf-8")
        browser.chmod(0o755)
        desk.environment["PATH"] = f"{folder}:{desk.environment['PATH']}"
        return opened

    def test_check_now_tells_that_there_is_nothing_newer(self):
        desk, work = self.sit_down_with_feed("Work")
        self.start(desk, work)
        self.open_preferences(desk)
        self.assertEqual(self.text(desk, "lastUpdateCheckTextField"),
                         "Never checked for updates yet!")
        self.assertIn("127.0.0.1", self.text(desk, "updateHintTextField"))
        desk.click_on("checkNowButton")
        desk.expect("alert", "Nimbrel is up to date.")
        self.assertIn(running_version(desk), desk.expect("detail"))
        desk.key("Return")
        self.expect_last_check_today(desk)
        self.assertTrue(desk.tell("checkNowButton")["enabled"])
        stored = datetime.fromisoformat(self.stored_check(desk).replace("Z", "+00:00"))
        self.assertLess(abs((datetime.now(timezone.utc) - stored).total_seconds()), 60)
        self.feed.offer("99.0", NOTES)
        desk.click_on("checkNowButton")
        desk.expect("window", "Nimbrel Update")
        desk.key("Escape")
        desk.until(lambda: "Nimbrel Update" not in desk.windows(), "the window's end")
        self.assertIn("Preferences", desk.windows())
        self.assertEqual(len(self.feed.requests), 2)

    def test_a_server_that_is_down_is_told_to_who_asks_and_to_nobody_else(self):
        self.feed.stop()
        desk, work = self.sit_down_with_feed("Work")
        self.start(desk, work)
        failure = "No check for updates with 127.0.0.1: offline"
        desk.until(lambda: failure in desk.log("nimbrel"), "the automatic check")
        desk.expect_none("alert")
        self.open_preferences(desk)
        desk.click_on("checkNowButton")
        desk.expect("alert", "Nimbrel could not look for updates.")
        self.assertEqual(desk.expect("detail"), "127.0.0.1 can't be reached. Check that this "
                         "computer is online, then try again.")
        desk.key("Return")
        self.assertEqual(self.text(desk, "lastUpdateCheckTextField"),
                         "Never checked for updates yet!")
        self.assertIsNone(self.stored_check(desk))

    def test_an_answer_that_is_no_feed_is_told(self):
        self.feed.text = "<html><body>Sign in to this network</body></html>"
        desk, work = self.sit_down_with_feed("Work")
        self.start(desk, work)
        self.open_preferences(desk)
        desk.click_on("checkNowButton")
        desk.expect("alert", "Nimbrel could not look for updates.")
        self.assertTrue(desk.expect("detail").startswith("127.0.0.1 didn't send a list of "))
        desk.key("Return")
        self.assertIsNone(self.stored_check(desk))

    def test_a_second_start_within_the_day_asks_nothing(self):
        desk, work = self.sit_down_with_feed("Work")
        application, _ = self.start(desk, work)
        self.expect_request(desk)
        desk.until(lambda: self.stored_check(desk), "the stored time")
        self.assertEqual(application.terminate(), 0)
        application, _ = self.start(desk, work)
        time.sleep(FIRST_CHECK + 3)
        self.assertEqual(self.feed.requests, [])
        self.assertEqual(application.terminate(), 0)

    def test_a_start_on_a_later_day_asks_again(self):
        desk, work = self.sit_down_with_feed("Work", SULastCheckTime="2026-01-01T00:00:00Z")
        self.start(desk, work)
        self.expect_request(desk)

    def test_without_an_address_nothing_leaves_this_machine(self):
        desk, work = self.sit_down_with("Work")
        application, _ = self.start(desk, work)
        seen = []
        for _ in range((FIRST_CHECK + 2) * 4):
            seen += self.connections(desk, application)
            time.sleep(0.25)
        self.open_preferences(desk)
        self.assertFalse(desk.tell("checkNowButton")["enabled"])
        self.assertEqual(self.text(desk, "updateHintTextField"), "This build of Nimbrel has no "
                         "address for updates, so it never asks for them.")
        self.assertEqual(self.text(desk, "lastUpdateCheckTextField"),
                         "Never checked for updates yet!")
        self.assertEqual(seen + self.connections(desk, application), [])

    @staticmethod
    def connections(desk, application):
        """Of the internet's kinds, listening ones, too."""
        lines = desk.tool("ss", "--tcp", "--udp", "--all", "--numeric", "--processes").splitlines()
        return [line for line in lines if f"pid={application.process.pid}," in line]

    def test_an_address_that_is_not_safe_is_not_used(self):
        desk, work = self.sit_down_with("Work", values={"SUFeedURL": "http://example.org/feed"})
        application, _ = self.start(desk, work)
        self.assertIn("isn't a secure one (https) and isn't used", desk.log("nimbrel"))
        self.open_preferences(desk)
        self.assertFalse(desk.tell("checkNowButton")["enabled"])
        self.assertEqual(self.connections(desk, application), [])


class RevealTest(ApplicationCase):
    def start_with_file(self, *labels):
        desk, *volumes = self.sit_down_with(*labels)
        self.start(desk, *volumes)
        folder = volumes[-1].disk / "Letters & more"
        folder.mkdir()
        (folder / "to ann ä.txt").write_text("dear Ann")
        return desk, volumes[-1], folder / "to ann ä.txt"

    def reveal(self, desk, *paths):
        start = desk.start_application("--reveal-encrypted", *paths, observed=False)
        self.assertEqual(start.wait(patience=20), 0)

    def expect_counterpart(self, desk, volume):
        """What is shown is the enciphered file: its own size, and unreadable."""
        _, path = desk.file_manager.expect_shown(method="ShowItems")
        self.assertTrue(path.startswith(f"{volume.folder}/"), path)
        self.assertNotIn("ann", path[len(str(volume.folder)):])
        with open(path, "rb") as file:
            self.assertNotIn(b"Ann", file.read())
        return path

    def test_a_files_counterpart_is_shown(self):
        desk, work, path = self.start_with_file("Diary", "Work")
        self.reveal(desk, path)
        counterpart = self.expect_counterpart(desk, work)
        (path.parent / "second.txt").write_text("Ann, too")
        self.reveal(desk, path, path.parent / "second.txt")
        both = {self.expect_counterpart(desk, work) for _ in range(2)}  # in any order
        self.assertEqual(len(both), 2)
        self.assertIn(counterpart, both)
        desk.expect_none("alert", 0.3)

    def test_a_file_outside_of_all_disks_is_told(self):
        desk, work, path = self.start_with_file("Work")
        self.reveal(desk, desk.home / "Documents")
        self.expect_not_found(desk)
        self.reveal(desk, work.disk / "no such file")
        self.expect_not_found(desk)
        desk.tray.choose("Unmount Work")
        desk.until(lambda: "Mount Work" in desk.tray.labels(), "the disk's end")
        self.reveal(desk, path)
        self.expect_not_found(desk)
        self.assertEqual(desk.file_manager.shown(), [])

    def expect_not_found(self, desk):
        desk.expect("alert", "File not found!")
        self.assertEqual(desk.expect("detail"),
                         "This file could not be located in any of the mounted Nimbrel disks.")
        desk.key("Return")
        desk.until(lambda: desk.windows() == [], "the alert's end")

    def test_without_a_running_program_it_is_told(self):
        desk, work = self.sit_down_with("Work")
        start = desk.start_application("--reveal-encrypted", desk.home / "Documents")
        self.expect_alert_and_end(desk, start)
        self.assert_listed(desk, work)

    def expect_alert_and_end(self, desk, start):
        desk.expect("alert", "File not found!")
        desk.key("Return")
        self.assertEqual(start.wait(), 1)
        self.assertEqual(desk.mounts(), [])

    def toggle_actions(self, desk):
        if "Nimbrel" not in desk.windows():
            desk.tray.click()
            desk.expect("window", "Nimbrel")
        desk.click_on("preferences")
        desk.expect("window", "Preferences")
        desk.click_on("fileManagerActionsButton")
        ticked = desk.tell("fileManagerActionsButton")["checked"]
        desk.click_on("closeButton")
        desk.until(lambda: desk.windows() == ["Nimbrel"], "the sheet's end")
        return ticked

    def test_file_managers_menus_are_filled_and_emptied_again(self):
        desk, work, path = self.start_with_file("Work")
        own = desk.home / ".local/share/nautilus/scripts/My own"
        own.parent.mkdir(parents=True)
        own.write_text("#!/bin/sh\n")
        self.assertIs(self.toggle_actions(desk), True)
        files = {manager: desk.home / place for manager, place in ACTIONS.items()}
        for manager, file in files.items():
            text = file.read_text(encoding="utf-8")
            self.assertIn("--reveal-encrypted", text, manager)
            self.assertIn(os.path.realpath(os.environ["NIMBREL"]), text, manager)
        self.run_script(desk, files["Nautilus"], path)
        self.expect_counterpart(desk, work)
        self.assertIs(self.toggle_actions(desk), False)
        for manager in ("Nautilus", "Nemo", "Dolphin"):
            self.assertFalse(files[manager].exists(), manager)
        self.assertNotIn("--reveal-encrypted", files["Thunar"].read_text(encoding="utf-8"))
        self.assertTrue(own.exists())
        desk.expect_none("alert", 0.3)

    @staticmethod
    def run_script(desk, script, path):
        """As Nautilus does: in the folder, with the paths one a line."""
        subprocess.run([script], cwd=desk.home, check=True, timeout=30, env={
            **desk.environment, "NAUTILUS_SCRIPT_SELECTED_FILE_PATHS": f"{path}\n"})


class AboutTest(ApplicationCase):
    def test_the_about_box_tells_the_version(self):
        desk, work = self.sit_down_with("Work")
        self.start(desk, work)
        desk.tray.choose("About Nimbrel")
        version = running_version(desk)
        desk.expect("alert", f"Nimbrel {version} ({version})")
        detail = desk.expect("detail")
        self.assertRegex(detail, r"Runs with Qt 6\.\d+\.\d+ and FUSE 3\.\d+\.\d+\.")
        desk.expect("buttons", "Close (default Close)")
        self.assertEqual(desk.windows(), ["About Nimbrel"])
        self.assertEqual(desk.cut_controls(), [])
        desk.tray.choose("Unmount Work")  # it holds nobody up
        desk.until(lambda: "Mount Work" in desk.tray.labels(), "the disk's end")
        desk.key("Escape")
        desk.until(lambda: desk.windows() == [], "the box's end")

    def log_file(self, desk):
        return desk.home / ".local/state/Nimbrel/Nimbrel.log"

    def test_the_log_file_begins_with_a_banner(self):
        desk, work = self.sit_down_with("Work", values={"NBGiveMeTheRedPill": "true"})
        application, _ = self.start(desk, work)
        version = re.escape(running_version(desk))
        banner = re.compile(rf"\n\nNimbrel {version} \({version}\) running on OS X "
                            r"\d+\.\d+\.\d+ with FUSE 3\.\d+\.\d+\. \n\n")
        desk.until(lambda: self.log_file(desk).exists() and
                   banner.search(self.log_file(desk).read_text()), "the banner")
        self.assertEqual(application.terminate(), 0)

    def test_without_being_asked_for_there_is_no_log_file(self):
        desk, work = self.sit_down_with("Work")
        application, _ = self.start(desk, work)
        self.assertEqual(application.terminate(), 0)
        self.assertFalse(self.log_file(desk).exists())


if __name__ == "__main__":
    unittest.main()
