"""A person uses the program in simple mode, which serves one encrypted folder."""

import filecmp
import getpass
import json
import os
import re
import shutil
import sqlite3
import subprocess
import unittest
from pathlib import Path

from application_test_base import DESKTOP_ENTRY, PASSWORD, ApplicationTest
from earlier_runs import store_password
from mouse import DragSource
from readers import stored_passwords

OTHER_PASSWORD = "eight Herons on 2 roofs"
REPLACES = ("Another Nimbrel Folder is already opened in Nimbrel. It will be ejected before this "
            "Nimbrel Folder will be opened.")
NOT_MOUNTED = "The Nimbrel Volume has not been mounted."


def differences(comparison):
    """What differs in two trees."""
    return [comparison.left_only, comparison.right_only, comparison.diff_files] + [
        found for below in comparison.subdirs.values() for found in differences(below)]


class FirstVolumeTest(ApplicationTest):
    def test_a_new_volume_is_there_again_at_the_next_start(self):
        desk = self.sit_down(tray="sni")
        desk.start_application()
        desk.tray.expect_item()
        picture = desk.tray.icon()
        self.assertEqual(desk.tray.properties()["ToolTip"], "Nimbrel: no disk is mounted")
        folder = self.make_volume_by_keyboard("Diary")
        self.await_mounted()
        desk.until(lambda: desk.tray.properties()["ToolTip"] == "Nimbrel: mounted: Nimbrel",
                   "the other tooltip", patience=10)
        self.assertNotEqual(desk.tray.icon(), picture)
        self.assert_settled_in(folder)
        self.end_success_page()
        self.work_on_disk()
        self.quit()
        self.assert_nothing_left()
        self.assertEqual(self.listed(), {"Nimbrel": str(folder)})
        self.assert_hides_work(folder)
        first_run = self.preference("firstRunDate")

        desk.start_application()
        self.await_mounted()
        desk.expect_none("window")
        self.assert_work_is_there()
        desk.until(lambda: desk.tray.icon() != picture, "the other picture", patience=10)
        self.assertEqual(self.preference("firstRunDate"), first_run)
        self.quit()
        self.assert_nothing_left()

    def make_volume_by_keyboard(self, name):
        desk = self.desk
        desk.expect("window", "Nimbrel")
        desk.key("Return")  # a new folder
        self.describe_volume(name)
        return self.documents / f"{name}.nmc"

    def describe_volume(self, name):
        """On the pages for a new folder's name and password."""
        desk = self.desk
        desk.expect("focus", "folderNameTextField")
        desk.type(name)
        desk.key("Return")
        desk.expect("focus", "passphraseTextField")
        desk.type(PASSWORD)
        desk.tab_to("confirmTextField")
        desk.type(PASSWORD)
        desk.key("Return")

    def end_success_page(self):
        self.desk.expect("window", "Nimbrel")
        self.assertTrue(self.desk.tell("openVolumeButton")["checked"])
        self.desk.key("Return")
        self.desk.file_manager.expect_shown(self.disk() / "Getting Started.pdf", "ShowItems")

    def assert_settled_in(self, folder):
        """The password is in the keyring alone; the program starts with the session."""
        self.desk.until(lambda: self.stored(folder) == PASSWORD, "the stored password")
        self.assertRegex(self.preference("firstRunDate"), r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        entry = (self.desk.home / DESKTOP_ENTRY).read_text(encoding="utf-8")
        self.assertIn(os.environ["NIMBREL"], entry)
        self.assertEqual(self.listed(), {"Nimbrel": str(folder)})
        self.await_link()

    def git(self, *arguments):
        return subprocess.run(["git", "-C", self.disk() / "project", *arguments], check=True,
                              env={**self.desk.environment, "GIT_CONFIG_COUNT": "0"}, text=True,
                              capture_output=True, timeout=60).stdout

    def work_on_disk(self):
        """As programs do: a repository, a database, a copied tree."""
        project = self.disk() / "project"
        shutil.copytree(Path(__file__).parent, project / "tree")
        self.git("init", "-q")
        self.git("add", ".")
        self.git("-c", "user.name=Me", "-c", "user.email=me@example.org", "commit", "-q", "-m",
                 "First")
        with sqlite3.connect(self.disk() / "notes.db") as database:
            database.execute("create table notes (number integer primary key, text text)")
            database.executemany("insert into notes (text) values (?)",
                                 [(f"Note {number} of my diary",) for number in range(2000)])
        database.close()
        self.assert_work_is_there()

    def assert_work_is_there(self):
        self.assertEqual(self.git("status", "--porcelain"), "")
        self.git("fsck", "--strict")
        tree = filecmp.dircmp(Path(__file__).parent, self.disk() / "project/tree", ignore=[])
        self.assertFalse(any(differences(tree)))
        database = sqlite3.connect(self.disk() / "notes.db")
        self.assertEqual(database.execute("pragma integrity_check").fetchall(), [("ok",)])
        self.assertEqual(database.execute("select count(*), max(text) from notes").fetchall(),
                         [(2000, "Note 999 of my diary")])
        database.close()

    def assert_hides_work(self, folder):
        """In the encrypted folder neither names nor texts of it are seen."""
        for path in folder.rglob("*"):
            self.assertNotIn(path.name, ("project", "tree", "notes.db", "desk.py"))
            if path.is_file():
                self.assertNotIn(b"of my diary", path.read_bytes())

    def test_cancelling_the_welcome_leaves_the_icon_and_brings_it_back_next_time(self):
        desk = self.sit_down(tray="trayer")
        desk.start_application()
        desk.expect("window", "Nimbrel")
        desk.key("Escape")
        desk.until(lambda: not desk.windows(), "no window")
        self.assertEqual(desk.tray.labels(), ["New Volume…", "-", "Preferences…", "About Nimbrel",
                                              "-", "Quit Nimbrel"])
        self.quit()
        first_run = self.preference("firstRunDate")
        self.assertEqual(self.listed(), {})
        desk.start_application()
        desk.expect("window", "Nimbrel")
        desk.click_on("Open an existing Nimbrel Folder")
        self.assertTrue(desk.tell("chooseButton")["visible"])
        desk.application.terminate()
        self.assertIsNotNone(first_run)
        self.assertEqual(self.preference("firstRunDate"), first_run)
        self.assertEqual(list(self.documents.iterdir()), [])


    def test_without_a_folder_the_window_asks_before_it_closes(self):
        desk = self.sit_down(tray="trayer")
        desk.start_application()
        desk.expect("window", "Nimbrel")
        desk.key("Escape")
        desk.until(lambda: not desk.windows(), "no window")
        self.open_window()
        self.assertEqual(self.enabled_items(), "")
        self.assertFalse(desk.tell("showInFinderButton")["enabled"])
        self.assertEqual(desk.cut_controls(), [])
        for button in ("No", None, "Yes"):
            self.close_window()
            self.answer_alert("You did not choose any encrypted folder.", button,
                              "No|Yes (default No)", "Nimbrel will not create the Nimbrel volume "
                              "*")
            if button != "Yes":
                desk.expect("window", "Nimbrel")
        desk.until(lambda: not desk.windows(), "the window's end")
        self.assertTrue(desk.application.running)

    def test_the_tray_menu_makes_a_first_volume(self):
        desk = self.sit_down(tray="trayer")
        desk.start_application()
        desk.expect("window", "Nimbrel")
        desk.key("Escape")
        desk.until(lambda: not desk.windows(), "no window")
        desk.tray.choose("New Volume…")
        self.describe_volume("Later")
        self.await_mounted()
        folder = self.documents / "Later.nmc"
        self.assert_is_disk_of(folder)
        desk.expect("window", "Nimbrel Assistant")
        desk.click_on("openVolumeButton")
        desk.key("Return")
        desk.until(lambda: not desk.windows(), "the end of the success page")
        self.assertEqual(self.listed(), {"Nimbrel": str(folder)})
        self.assertEqual(self.stored(folder), PASSWORD)
        self.assertEqual(desk.file_manager.shown(), [])
        self.assertEqual(desk.tray.labels()[:3], ["Open Nimbrel", "Unmount Nimbrel", "-"])
        self.quit()
        self.assert_nothing_left()


class SimpleWindowTest(ApplicationTest):
    def test_the_toolbar_mounts_and_unmounts(self):
        desk = self.sit_down(tray="trayer")
        folder = self.start_with_a_volume()
        picture = desk.tray.icon()
        self.open_window()
        self.assertEqual(desk.cut_controls(), [])
        self.await_items("unmount change clear")
        self.assertFalse(desk.tell("remove")["visible"])
        self.assertEqual([desk.tell(name)["text"] for name in ("add", "mode")],
                         ["Open", "Advanced"])
        self.assertEqual(desk.tell("stateTextField")["text"], "The folder is mounted.")
        desk.click_on("unmount")
        self.await_none_mounted()
        self.await_items("mount")
        self.assertEqual(desk.tell("stateTextField")["text"], "The folder is not mounted.")
        desk.until(lambda: desk.tray.icon() != picture, "the encrypted picture", patience=10)
        self.assertEqual(desk.tray.labels()[:2], ["Mount Nimbrel", "-"])
        desk.click_on("mount")
        self.await_mounted()
        self.await_items("unmount change clear")
        self.assert_is_disk_of(folder)
        desk.until(lambda: desk.tray.icon() == picture, "the decrypted picture", patience=10)
        desk.click_on("showInFinderButton")
        desk.file_manager.expect_shown(folder, "ShowItems")
        self.assertFalse(desk.lines.ended)

    def test_the_tray_menu_opens_mounts_and_unmounts(self):
        desk = self.sit_down(tray="trayer")
        self.start_with_a_volume()
        self.assertEqual(desk.tray.labels(), ["Open Nimbrel", "Unmount Nimbrel", "-",
                                              "Preferences…", "About Nimbrel", "-",
                                              "Quit Nimbrel"])
        desk.tray.choose("Open Nimbrel")
        desk.file_manager.expect_shown(self.disk(), "ShowFolders")
        desk.tray.choose("Unmount Nimbrel")
        self.await_none_mounted()
        desk.tray.choose("Mount Nimbrel")
        self.await_mounted()
        desk.tray.choose("About Nimbrel")
        self.answer_alert("Nimbrel *", "Close", "Close (default Close)")
        desk.until(lambda: not desk.windows(), "the end of the about window")
        self.quit()
        self.assert_nothing_left()

    def test_the_password_is_changed_and_the_keyring_follows(self):
        desk = self.sit_down(tray="trayer")
        folder = self.start_with_a_volume()
        self.open_window()
        desk.click_on("change")
        self.change_password(PASSWORD, OTHER_PASSWORD)
        desk.until(lambda: self.stored(folder) == OTHER_PASSWORD, "the new password")
        self.await_mounted()
        self.quit()
        self.assertTrue(self.opens(folder, OTHER_PASSWORD))
        self.assertFalse(self.opens(folder, PASSWORD))
        desk.start_application()
        self.await_mounted()
        desk.expect_none("window")

    def test_a_forgotten_password_is_asked_for_again(self):
        desk = self.sit_down(tray="trayer")
        folder = self.start_with_a_volume()
        self.open_window()
        question = {
            "headline": "Are you sure that you want to clear the password currently stored on "
                        "this computer?",
            "detail": "You will have to re-enter it the next time you want to open this encrypted "
                      "folder.",
            "buttons": "Yes|No (default Yes)"}
        desk.click_on("clear")
        self.answer_alert(button="No", **question)
        desk.expect("window", "Nimbrel")
        self.assertEqual(self.stored(folder), PASSWORD)
        desk.click_on("clear")
        self.answer_alert(button="Yes", **question)
        self.answer_alert("The stored password was successfully cleared.", "OK")
        desk.until(lambda: not stored_passwords(desk), "an empty keyring")
        self.await_items("unmount change")
        desk.click_on("unmount")
        self.await_none_mounted()
        desk.expect("window", "Nimbrel")
        desk.click_on("mount")
        self.give_password("a wrong one")
        self.give_password()
        self.await_mounted()
        self.await_items("unmount change")
        self.assertEqual(stored_passwords(desk), [])

    def test_closing_the_window_asks_for_a_mount(self):
        desk = self.sit_down(tray="trayer")
        folder = self.start_with_a_volume(automount=False)
        self.open_window()
        self.await_items("mount")
        self.close_window()
        self.answer_alert(NOT_MOUNTED, "OK", detail="You can mount the volume always using the "
                          "Nimbrel icon in the menu bar.")
        desk.until(lambda: not desk.windows(), "the window's end")
        self.await_mounted()
        self.assert_is_disk_of(folder)
        self.open_window()
        self.await_items("unmount change clear")
        self.close_window()  # nothing to be said
        desk.until(lambda: not desk.windows(), "the window's end")
        desk.expect_none("alert")
        self.assertEqual(self.mounted(), ["Nimbrel"])

    def test_the_window_stays_when_the_folder_is_gone(self):
        desk = self.sit_down(tray="trayer")
        folder = self.start_with_a_volume(automount=False)
        folder.rename(folder.with_suffix(".away"))
        self.open_window()
        self.close_window()
        self.answer_alert("The encrypted folder does not exist.", "OK")
        desk.expect("window", "Nimbrel")
        self.assertEqual(desk.windows(), ["Nimbrel"])
        folder.with_suffix(".away").rename(folder)
        (folder / ".encfs6.xml").rename(folder / "elsewhere.xml")
        self.close_window()
        self.answer_alert("The configuration file does not exist.", "OK")
        desk.expect("window", "Nimbrel")
        self.assertEqual(desk.windows(), ["Nimbrel"])
        self.assertEqual(self.mounted(), [])

    def test_preferences_take_effect_when_the_sheet_closes(self):
        desk = self.sit_down(tray="trayer")
        self.start_with_a_volume()
        link = desk.home / "Desktop/Nimbrel"
        self.await_link()
        entry = desk.home / DESKTOP_ENTRY
        self.open_window()
        desk.click_on("preferences")
        desk.expect("window", "Preferences")
        self.assertEqual(desk.cut_controls(), [])
        boxes = ("autostartButton", "createAliasesButton", "addVolumePrefixButton")
        self.assertEqual([desk.tell(box)["checked"] for box in boxes], [False, True, False])
        for box in boxes:
            desk.click_on(box)
        self.assertEqual([desk.tell(box)["checked"] for box in boxes], [True, False, True])
        self.assertFalse(entry.exists())
        self.assertIsNone(self.preference("volumePrefix"))
        desk.key("Escape")
        desk.until(entry.exists, "the autostart entry")
        self.assertIn("\nHidden=false\n", entry.read_text(encoding="utf-8"))
        desk.expect("window", "Nimbrel")
        self.assertEqual([self.preference("createAliases"), self.preference("volumePrefix")],
                         ["false", "true"])
        self.assertEqual(self.mounted(), ["Nimbrel"])  # as it was
        desk.click_on("unmount")
        self.await_none_mounted()
        self.assertFalse(link.is_symlink())
        desk.click_on("mount")
        self.await_mounted(f"{getpass.getuser()}-Nimbrel")
        self.assertEqual(list((desk.home / "Desktop").iterdir()), [])
        self.take_preferences_back(boxes)
        self.assertIn("\nHidden=true\n", entry.read_text(encoding="utf-8"))

    def take_preferences_back(self, boxes):
        desk = self.desk
        desk.click_on("preferences")
        desk.expect("window", "Preferences")
        self.assertEqual([desk.tell(box)["checked"] for box in boxes], [True, False, True])
        for box in boxes:
            desk.click_on(box)
        desk.key("Return")  # the button that closes it
        desk.expect("window", "Nimbrel")
        self.assertEqual([self.preference("createAliases"), self.preference("volumePrefix")],
                         ["true", "false"])

    def test_the_mobile_window_says_why_it_offers_nothing(self):
        desk = self.sit_down(tray="trayer")
        self.start_with_a_volume(automount=False)
        self.open_window()
        desk.click_on("mobile")
        desk.expect("window", "Nimbrel for Mobile Devices")
        self.assertEqual(desk.cut_controls(), [])
        for button in ("downloadFromAppStoreButton", "downloadFromGooglePlayButton"):
            self.assertFalse(desk.tell(button)["enabled"])
        self.assertTrue(desk.tell("reasonTextField")["visible"])
        self.assertIn("no addresses", desk.tell("reasonTextField")["text"])
        desk.key("Escape")
        desk.expect("window", "Nimbrel")
        desk.click_on("mount")
        self.await_mounted()


class OtherFolderTest(ApplicationTest):
    """Simple mode's one volume makes way for another."""

    def sit_down_with_clients(self):
        """Dropbox and Nextcloud, with an encrypted folder each; a mounted one in Documents."""
        desk = self.sit_down(tray="trayer")
        dropbox, nextcloud = desk.home / "Dropbox", desk.home / "Nextcloud"
        for folder in (dropbox / "deep/er", nextcloud, desk.home / ".dropbox",
                       desk.home / ".config/Nextcloud"):
            folder.mkdir(parents=True)
        (desk.home / ".dropbox/info.json").write_text(
            json.dumps({"personal": {"path": str(dropbox), "host": 1}}), encoding="utf-8")
        (desk.home / ".config/Nextcloud/nextcloud.cfg").write_text(
            f"[Accounts]\nversion=2\n0\\Folders\\1\\localPath={nextcloud}/\n", encoding="utf-8")
        self.photos = self.make_folder("Photos", nextcloud, OTHER_PASSWORD)
        self.letters = self.make_folder("Letters", dropbox / "deep/er")
        self.diary = self.start_with_a_volume()

    def assert_replaced(self, folder, password):
        """The new one is mounted and remembered, the old one's password forgotten."""
        desk = self.desk
        desk.file_manager.expect_shown(self.disk(), "ShowFolders")
        self.assert_is_disk_of(folder)
        desk.until(lambda: self.listed() == {"Nimbrel": str(folder)}, "the list", patience=10)
        self.assertIsNone(self.stored(self.diary))
        desk.until(lambda: self.stored(folder) == password, "the new password", patience=10)
        self.assertTrue(self.opens(self.diary, PASSWORD))

    def test_one_that_the_scan_finds_at_a_client(self):
        self.sit_down_with_clients()
        desk = self.desk
        self.open_window()
        desk.click_on("add")
        desk.expect("focus", "foldersPopUpButton")
        self.assertEqual([entry for entry in desk.tell("foldersPopUpButton")["entries"] if entry],
                         ["Documents", "Dropbox", "Nextcloud", "Other…"])
        self.assertEqual(desk.cut_controls(), [])
        self.assertEqual([row["texts"] for row in desk.table("foldersTableView")],
                         [["Diary", str(self.diary)]])
        desk.choose_in("foldersPopUpButton", "Dropbox")
        self.assertEqual([row["texts"] for row in desk.table("foldersTableView")],
                         [["Letters", str(self.letters)]])
        desk.choose_in("foldersPopUpButton", "Nextcloud")
        self.assertEqual([row["texts"] for row in desk.table("foldersTableView")],
                         [["Photos", str(self.photos)]])
        desk.click_on("addVolumeButton")
        self.answer_alert("Please select a Nimbrel Folder from the list or browse for a custom "
                          "one.", "OK")
        desk.click_row("foldersTableView", "Photos")
        desk.click_on("addVolumeButton")
        self.give_password(OTHER_PASSWORD)
        self.assert_replaced(self.photos, OTHER_PASSWORD)
        self.assertEqual(self.mounted(), ["Nimbrel"])
        self.await_items("unmount change clear")
        self.quit()
        self.assert_nothing_left()

    def test_one_that_another_start_brings(self):
        self.sit_down_with_clients()
        desk = self.desk
        for button in ("No", None, "Yes"):
            self.assertEqual(desk.start_application(self.letters, observed=False).wait(), 0)
            self.answer_alert(REPLACES, button, "No|Yes (default No)",
                              "Continue to open this encrypted folder?")
            if button != "Yes":
                desk.expect_none("window")
                self.assert_is_disk_of(self.diary)
                self.assertEqual(self.listed(), {"Nimbrel": str(self.diary)})
                self.assertEqual(self.stored(self.diary), PASSWORD)
        self.give_password()
        self.assert_replaced(self.letters, PASSWORD)
        self.assertEqual(desk.start_application(self.letters, observed=False).wait(), 0)
        desk.file_manager.expect_shown(self.disk(), "ShowFolders")  # it is open already
        desk.expect_none("alert")

    def test_one_that_is_dropped_on_the_window(self):
        self.sit_down_with_clients()
        desk = self.desk
        self.open_window()
        source = DragSource(desk, self.photos)
        self.assertTrue(source.drop_on("stateTextField"))
        self.answer_alert(REPLACES, "Yes", "No|Yes (default No)")
        self.give_password(OTHER_PASSWORD)
        self.assert_replaced(self.photos, OTHER_PASSWORD)
        self.assertTrue(self.photos.is_dir())
        source.stop()
        plain = desk.home / "Nextcloud/plain"
        plain.mkdir()
        source = DragSource(desk, plain)
        self.assertTrue(source.drop_on("stateTextField"))
        self.answer_alert(REPLACES, "Yes", "No|Yes (default No)")
        self.answer_alert("This is not a valid Nimbrel Folder.", "OK")
        self.assert_is_disk_of(self.photos)
        self.assertEqual(self.listed(), {"Nimbrel": str(self.photos)})

    def test_an_old_disk_in_use_is_told_and_leaves_later(self):
        self.sit_down_with_clients()
        desk = self.desk
        with (self.disk() / "open.txt").open("w", encoding="utf-8") as file:
            self.assertEqual(desk.start_application(self.letters, observed=False).wait(), 0)
            self.answer_alert(REPLACES, "Yes", "No|Yes (default No)")
            self.assertEqual(desk.expect("alert", patience=20),
                             '"Nimbrel" could not be unmounted.')
            desk.click_on("OK")
            file.write("still there")
        self.assertEqual((self.disk() / "open.txt").read_text(encoding="utf-8"), "still there")
        desk.until(lambda: self.listed() == {"Nimbrel": str(self.letters)}, "the list", patience=10)
        desk.tray.choose("Mount Nimbrel")
        self.give_password()
        desk.until(lambda: self.mounted() == ["Nimbrel"] and not
                   (self.disk() / "open.txt").exists(), "the other disk", patience=20)
        self.assert_is_disk_of(self.letters)

    def test_one_that_comes_while_the_old_disk_is_on_its_way(self):
        """The old folder's key takes long: its configuration asks for very many iterations."""
        desk = self.sit_down(tray="trayer")
        diary, letters = self.make_folder(), self.make_folder("Letters", desk.home)
        configuration = diary / ".encfs6.xml"
        configuration.write_text(re.sub("(<kdfIterations>)\\d+", r"\g<1>10000000",
                                        configuration.read_text(encoding="utf-8")),
                                 encoding="utf-8")
        store_password(self.desk, diary)
        self.remember((diary, {}))
        desk.start_application()
        self.assertEqual(desk.start_application(letters, observed=False).wait(), 0)
        self.assertEqual(desk.expect("alert", patience=20), '"Nimbrel" is busy.')
        desk.click_on("OK")
        self.assertEqual(self.stored(diary), PASSWORD)
        self.assertEqual(self.listed(), {"Nimbrel": str(diary)})


if __name__ == "__main__":
    unittest.main()
