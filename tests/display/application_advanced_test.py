"""A person uses the program in advanced mode, which serves a list of encrypted folders."""

import unittest

from application_test_base import PASSWORD, ApplicationTest
from earlier_runs import store_password
from mouse import DragSource
from readers import stored_passwords

OTHER_PASSWORD = "eight Herons on 2 roofs"
TO_ADVANCED = {
    "headline": "Do you really want to enable Advanced Mode?",
    "detail": "Only enable Advanced Mode if you need to modify advanced options and if you know "
              "what you do.",
    "buttons": "No|Yes (default No)"}
TO_SIMPLE = {
    "headline": "Are you sure that you want to switch to simple mode?",
    "detail": "Warning: Only the first volume will remain. All additional volumes will be "
              "unmounted and removed. They will NOT be deleted from your disk.",
    "buttons": "No|Yes (default No)"}
CLEAR = {
    "headline": "Are you sure that you want to clear the password currently stored on this "
                "computer?",
    "buttons": "Yes|No (default Yes)"}


class AdvancedModeTest(ApplicationTest):
    def sit_down_with(self, *labels, **differences):
        """Volumes with these labels, their passwords in the keyring, none mounted."""
        desk = self.sit_down(tray="trayer")
        self.folders = {label: self.make_folder(label) for label in labels}
        for label, folder in self.folders.items():
            store_password(self.desk, folder, label)
        self.remember(*((folder, {"label": label, "automount": False, **differences.get(label, {})})
                        for label, folder in self.folders.items()), advanced="true")
        desk.start_application()
        desk.tray.expect_item()
        self.open_window()
        return desk

    def mount_all(self):
        """One after the other, by the toolbar."""
        for label in self.folders:
            self.desk.click_row("tableView", label)
            self.desk.click_on("mount")
            self.desk.until(lambda wanted=label: wanted in self.mounted(), label, patience=20)
        self.await_rows(*(f"{label}, mounted" for label in self.folders))

    def rows(self):
        """What a screen reader says of each."""
        return [row["accessible"][0] for row in self.desk.table("tableView")]

    def selected(self):
        return [row["texts"][0] for row in self.desk.table("tableView") if row["selected"]]

    def await_rows(self, *rows):
        self.desk.until(lambda: self.rows() == list(rows), f"the rows {rows}", patience=10)

    def give_options(self, label, default):
        """The step of the advanced options, with another label than it offers."""
        self.desk.expect("focus", "labelTextField")
        self.assertEqual(self.desk.tell("labelTextField")["text"], default)
        self.assertFalse(self.desk.tell("algorithmButton")["visible"])
        self.assertEqual(self.desk.cut_controls(), [])
        self.desk.key("ctrl+a")
        self.desk.type(label)
        self.desk.key("Return")


class ListTest(AdvancedModeTest):
    def test_three_volumes_come_together(self):
        """The one of simple mode, one by the sheet, one by another start."""
        desk = self.sit_down(tray="trayer")
        work, letters = self.make_folder("Work"), self.make_folder("Letters", desk.home)
        diary = self.start_with_a_volume()
        self.open_window()
        self.switch_to_advanced()
        self.await_rows("Nimbrel, mounted")
        self.assertEqual(self.enabled_items(), "")
        self.add_by_sheet(work)
        self.add_by_start(letters)
        self.assertEqual(self.listed(), {"Nimbrel": str(diary), "Office": str(work),
                                         "Post": str(letters)})
        self.assertEqual(self.mounted(), ["Nimbrel", "Office", "Post"])
        for label, folder in (("Nimbrel", diary), ("Office", work), ("Post", letters)):
            self.assert_is_disk_of(folder, label)
        self.assertEqual(desk.start_application(work, observed=False).wait(), 0)
        desk.file_manager.expect_shown(self.disk("Office"), "ShowFolders")  # it is there already
        self.assertEqual(len(self.rows()), 3)
        self.quit()
        self.assert_nothing_left()

    def switch_to_advanced(self):
        desk = self.desk
        for button in ("No", None, "Yes"):
            desk.click_on("mode")
            self.answer_alert(button=button, **TO_ADVANCED)
            desk.expect("window", "Nimbrel")
        desk.until(lambda: self.preference("advanced") == "true", "the preference")
        self.assertEqual([desk.tell(name)["text"] for name in ("add", "mode")], ["Add", "Simple"])
        self.assertEqual([desk.tell(name)["visible"] for name in ("remove", "tableView",
                                                                  "customPathControl")],
                         [True, True, False])
        self.assertEqual(desk.cut_controls(), [])

    def add_by_sheet(self, folder):
        desk = self.desk
        desk.click_on("add")
        desk.expect("focus", "foldersPopUpButton")
        desk.click_row("foldersTableView", "Diary")
        desk.click_on("addVolumeButton")
        self.answer_alert("A volume with this Nimbrel Folder already exists.", "OK")
        desk.click_row("foldersTableView", "Work")
        desk.click_on("addVolumeButton")
        self.give_options("Office", "Work")
        self.give_password()
        desk.file_manager.expect_shown(self.disk("Office"), "ShowFolders")
        self.await_rows("Nimbrel, mounted", "Office, mounted")
        desk.until(lambda: self.stored(folder) == PASSWORD, "the stored password")

    def add_by_start(self, folder):
        desk = self.desk
        self.assertEqual(desk.start_application(folder, observed=False).wait(), 0)
        self.give_options("Post", "Letters")
        desk.expect("focus", "passphraseTextField")
        desk.click_on("rememberButton")
        desk.click_on("passphraseTextField")
        desk.type(PASSWORD)
        desk.key("Return")
        desk.file_manager.expect_shown(self.disk("Post"), "ShowFolders")
        self.await_rows("Nimbrel, mounted", "Office, mounted", "Post, mounted")
        self.assertIsNone(self.stored(folder))

    def test_a_dropped_folder_joins_the_list(self):
        desk = self.sit_down_with("One")
        folder = self.make_folder("Two")
        source = DragSource(desk, folder)
        self.assertTrue(source.drop_at(desk.place("where-row", "tableView", "One")))
        self.give_options("Deux", "Two")
        self.give_password()
        self.await_rows("One, not mounted", "Deux, mounted")
        desk.file_manager.expect_shown(self.disk("Deux"), "ShowFolders")
        self.assert_is_disk_of(folder, "Deux")
        self.assertEqual(list(self.listed()), ["One", "Deux"])

    def test_cancelled_options_add_nothing(self):
        desk = self.sit_down_with("One")
        folder = self.make_folder("Two")
        self.assertEqual(desk.start_application(folder, observed=False).wait(), 0)
        desk.expect("focus", "labelTextField")
        desk.key("Escape")
        desk.expect("window", "Nimbrel")
        self.await_rows("One, not mounted")
        self.quit()
        self.assertEqual(list(self.listed()), ["One"])

    def test_the_toolbar_acts_on_the_selected_row(self):
        desk = self.sit_down_with("One", "Two", "Three")
        self.await_rows("One, not mounted", "Two, not mounted", "Three, not mounted")
        self.assertEqual(self.enabled_items(), "")
        self.mount_all()
        for label, folder in self.folders.items():
            self.assert_is_disk_of(folder, label)
        desk.click_row("tableView", "Two")
        self.await_items("remove unmount change clear")
        desk.click_on("unmount")
        self.await_rows("One, mounted", "Two, not mounted", "Three, mounted")
        self.assertEqual(self.mounted(), ["One", "Three"])
        self.await_items("remove mount")
        self.assertEqual(self.selected(), ["Two"])

    def test_the_context_menu_acts_on_the_row_under_the_mouse(self):
        desk = self.sit_down_with("One", "Two", "Three")
        self.mount_all()
        desk.click_row("tableView", "Three")
        desk.click_on("unmount")
        self.await_rows("One, mounted", "Two, mounted", "Three, not mounted")
        desk.right_click_row("tableView", "Two")
        desk.expect("menu", "Open|Unmount|-|Change Password…|Clear Password|-|Edit…|"
                            "Show in File Manager")
        desk.click_menu("Open")
        desk.file_manager.expect_shown(self.disk("Two"), "ShowFolders")
        desk.right_click_row("tableView", "Two")
        desk.expect("menu", "Open|*")
        desk.key("Down", "Down", "Return")  # the toolbar's item has the same name
        self.await_rows("One, mounted", "Two, not mounted", "Three, not mounted")
        self.assertEqual(self.mounted(), ["One"])
        desk.right_click_row("tableView", "Three")
        desk.expect("menu", "Mount|Unmount (off)|-|Change Password… (off)|Clear Password (off)|-|"
                            "Edit…|Show in File Manager")
        desk.click_menu("Show in File Manager")
        desk.file_manager.expect_shown(self.folders["Three"], "ShowItems")

    def test_a_right_click_leaves_the_selection_alone(self):
        desk = self.sit_down_with("One", "Two", Two={"automount": True})
        self.await_rows("One, not mounted", "Two, mounted")
        desk.click_row("tableView", "One")
        self.await_items("remove mount")
        desk.right_click_row("tableView", "Two")
        desk.expect("menu", "Open|Unmount|*")
        desk.key("Escape")
        desk.quiet()
        self.assertEqual(self.selected(), ["One"])
        self.assertEqual(self.enabled_items(), "remove mount")

    def test_keys_and_a_double_click_open(self):
        desk = self.sit_down_with("One", "Two")
        desk.double_click_row("tableView", "Two")
        desk.file_manager.expect_shown(self.disk("Two"), "ShowFolders")
        self.await_rows("One, not mounted", "Two, mounted")
        self.assert_is_disk_of(self.folders["Two"], "Two")
        desk.double_click_row("tableView", "Two")
        desk.file_manager.expect_shown(self.disk("Two"), "ShowFolders")
        desk.key("Up", "Return")
        desk.file_manager.expect_shown(self.disk("One"), "ShowFolders")
        self.await_rows("One, mounted", "Two, mounted")
        desk.key("Menu")
        desk.expect("menu", "Open|Unmount|*")
        desk.key("Down", "Down", "Return")
        self.await_rows("One, not mounted", "Two, mounted")
        desk.key("shift+F10")
        desk.expect("menu", "Mount|Unmount (off)|*")
        desk.key("Down", "Return")
        self.await_rows("One, mounted", "Two, mounted")
        self.assertEqual(self.mounted(), ["One", "Two"])

    def test_an_edited_label_gives_another_mount_point(self):
        desk = self.sit_down_with("One", "Two")
        self.mount_all()
        desk.right_click_row("tableView", "Two")
        desk.expect("menu", "Open|*")
        desk.click_menu("Edit…")
        desk.expect("window", "Edit Nimbrel Volume")
        self.give_options("Deux", "Two")
        self.await_mounted("Deux", "One")
        self.await_rows("One, mounted", "Deux, mounted")
        self.assert_is_disk_of(self.folders["Two"], "Deux")
        self.assertFalse(self.disk("Two").exists())
        self.assertEqual(self.listed(), {"One": str(self.folders["One"]),
                                         "Deux": str(self.folders["Two"])})
        self.assertEqual(self.stored(self.folders["Two"]), PASSWORD)
        desk.click_row("tableView", "One")
        desk.click_on("unmount")
        self.await_rows("One, not mounted", "Deux, mounted")
        desk.click_row("tableView", "One")
        desk.key("F2")
        desk.expect("window", "Edit Nimbrel Volume")
        self.give_options("Un", "One")
        self.await_rows("Un, not mounted", "Deux, mounted")
        self.assertEqual(list(self.listed()), ["Un", "Deux"])
        self.quit()
        self.assert_nothing_left()
        desk.start_application()
        desk.tray.expect_item()
        self.open_window()
        desk.click_row("tableView", "Deux")
        desk.click_on("mount")
        self.await_mounted("Deux")  # its password has moved with it
        desk.expect_none("window")


class LeavingTest(AdvancedModeTest):
    def test_a_removed_volume_leaves_but_its_folder_stays(self):
        desk = self.sit_down_with("One", "Two")
        self.mount_all()
        desk.click_row("tableView", "One")
        desk.click_on("remove")
        self.await_rows("Two, mounted")
        self.assertEqual(self.mounted(), ["Two"])
        self.assertFalse(self.disk("One").exists())
        self.assertTrue(self.opens(self.folders["One"], PASSWORD))
        self.assertIsNone(self.stored(self.folders["One"]))
        self.assertEqual(self.stored(self.folders["Two"]), PASSWORD)
        self.assertEqual(list(self.listed()), ["Two"])
        desk.click_row("tableView", "Two")
        desk.click_on("unmount")
        self.await_rows("Two, not mounted")
        desk.click_row("tableView", "Two")
        desk.key("Delete")
        self.await_rows()
        self.assertEqual(stored_passwords(desk), [])
        self.assertEqual(self.listed(), {})
        self.assertEqual(self.enabled_items(), "")

    def test_a_disk_in_use_stays_listed(self):
        desk = self.sit_down_with("One", "Two")
        self.mount_all()
        with (self.disk("One") / "open.txt").open("w", encoding="utf-8") as file:
            desk.click_row("tableView", "One")
            desk.click_on("remove")
            desk.expect("alert", "*")
            self.assertEqual(desk.cut_controls(), [])
            desk.key("Escape")
            file.write("still there")
        self.await_rows("One, mounted", "Two, mounted")
        self.assertEqual((self.disk("One") / "open.txt").read_text(), "still there")
        self.assertEqual(self.stored(self.folders["One"]), PASSWORD)
        self.assertEqual(self.mounted(), ["One", "Two"])

    def test_passwords_are_changed_and_cleared_row_by_row(self):
        desk = self.sit_down_with("One", "Two")
        self.mount_all()
        desk.click_row("tableView", "Two")
        desk.click_on("change")
        self.change_password(PASSWORD, OTHER_PASSWORD)
        desk.until(lambda: self.stored(self.folders["Two"]) == OTHER_PASSWORD, "the new password")
        self.assertEqual(self.stored(self.folders["One"]), PASSWORD)
        desk.expect("window", "Nimbrel")
        desk.click_row("tableView", "One")
        desk.click_on("clear")
        self.answer_alert(button="Yes", **CLEAR)
        self.answer_alert("The stored password was successfully cleared.", "OK")
        desk.until(lambda: self.stored(self.folders["One"]) is None, "the keyring without it")
        self.await_items("remove unmount change")
        self.assertEqual(self.stored(self.folders["Two"]), OTHER_PASSWORD)
        self.quit()
        self.assertTrue(self.opens(self.folders["One"], PASSWORD))
        self.assertTrue(self.opens(self.folders["Two"], OTHER_PASSWORD))
        self.assertFalse(self.opens(self.folders["Two"], PASSWORD))

    def test_back_in_simple_mode_the_first_volume_remains(self):
        desk = self.sit_down_with("One", "Two", "Three")
        self.mount_all()
        desk.click_row("tableView", "Two")
        desk.click_on("unmount")
        self.await_rows("One, mounted", "Two, not mounted", "Three, mounted")
        for button in ("No", None):
            desk.click_on("mode")
            self.answer_alert(button=button, **TO_SIMPLE)
            desk.expect("window", "Nimbrel")
        self.assertEqual(self.mounted(), ["One", "Three"])
        self.assertEqual(len(self.rows()), 3)
        desk.click_on("mode")
        self.answer_alert(button="Yes", **TO_SIMPLE)
        self.await_mounted("One")
        desk.expect("window", "Nimbrel")
        self.assertEqual(self.listed(), {"One": str(self.folders["One"])})
        self.assertEqual([self.stored(self.folders[label]) for label in ("One", "Two", "Three")],
                         [PASSWORD, None, None])
        self.assertEqual(self.preference("advanced"), "false")
        self.await_items("unmount change clear")
        self.assertFalse(desk.tell("tableView")["visible"])
        self.assertEqual(desk.cut_controls(), [])
        for label in ("Two", "Three"):
            self.assertTrue(self.opens(self.folders[label], PASSWORD))
        self.assert_is_disk_of(self.folders["One"], "One")
        desk.click_on("mode")
        self.answer_alert(button="Yes", **TO_ADVANCED)
        self.await_rows("One, mounted")
        self.assertEqual(self.selected(), [])
        desk.click_on("mode")  # with one volume there is nothing to ask
        desk.until(lambda: self.preference("advanced") == "false", "simple mode")
        desk.expect_none("alert")


class NextStartTest(AdvancedModeTest):
    def test_the_volumes_are_mounted_again_as_they_want(self):
        """Two from the keyring, one whose password is asked for, one that stays as it is."""
        desk = self.sit_down(tray="trayer")
        names = ("One", "Two", "Three", "Four")
        self.folders = {label: self.make_folder(label) for label in names}
        for label in ("One", "Three", "Four"):
            store_password(self.desk, self.folders[label], label)
        self.remember(*((self.folders[label], {"label": label, "automount": label != "Four",
                                               "storePassword": label != "Two"})
                        for label in names), advanced="true")
        desk.start_application()
        desk.expect("focus", "passphraseTextField")
        desk.until(lambda: desk.tell("customPathControl")["visible"], "the folder's path")
        desk.key("Escape")
        self.await_mounted("One", "Three")
        self.open_window()
        self.await_rows("One, mounted", "Two, not mounted", "Three, mounted", "Four, not mounted")
        self.assertEqual(list(self.listed()), list(names))
        for label in ("One", "Three"):
            self.assert_is_disk_of(self.folders[label], label)
        desk.click_row("tableView", "Two")
        desk.click_on("mount")
        self.give_password()
        self.await_mounted("One", "Three", "Two")
        self.assertEqual(desk.tray.labels()[:6], ["Open One", "Unmount One", "-", "Open Two",
                                                  "Unmount Two", "-"])
        self.quit()
        self.assert_nothing_left()
        self.assertEqual(list(self.listed()), list(names))


if __name__ == "__main__":
    unittest.main()
