"""A person at the keyboard goes through the assistants; afterwards the disk is looked at."""

import json
import os
import subprocess
import unittest
from pathlib import Path

from session_desk import SessionDesk

PASSWORD = "seven Otters balance 1 piano"


def nimbrelctl(*arguments, password=None, check=True):
    """nimbrelctl's standard output; the password goes in by standard input."""
    with_password = ["--password-file", "-"] if password is not None else []
    return subprocess.run([os.environ["NIMBRELCTL"], *map(str, arguments), *with_password],
                          input=None if password is None else password + "\n", text=True,
                          capture_output=True, check=check, timeout=60).stdout


class AssistantTest(unittest.TestCase):
    ADVANCED = False

    def setUp(self):
        self.desk = SessionDesk(advanced=self.ADVANCED)
        self.addCleanup(self.desk.close)
        self.documents = self.desk.home / "Documents"
        self.desk.start_session()

    def folders(self):
        return sorted(path.name for path in self.documents.iterdir())

    def make_folder(self, name="Old", **options):
        """An encrypted folder as another day left it."""
        folder = self.documents / f"{name}.nmc"
        nimbrelctl("create", folder, *options.get("options", []), password=PASSWORD)
        return folder

    def opens(self, folder, password=PASSWORD):
        """Whether the password opens the folder: it is mounted for that."""
        disk = self.desk.folder / "look"
        disk.mkdir(exist_ok=True)
        status = subprocess.run([os.environ["NIMBRELCTL"], "mount", folder, disk, "--password-file",
                                 "-"], input=password + "\n", text=True, capture_output=True,
                                timeout=60, check=False).returncode
        if status == 0:
            nimbrelctl("unmount", disk)
        return status == 0

    def go_next_from(self, step, *keys):
        """Waits for the page's first control, types, and takes Enter for Next."""
        self.desk.expect("focus", step)
        for key in keys:
            if key.startswith("key:"):
                self.desk.key(*key[4:].split())
            else:
                self.desk.type(key)
        self.desk.key("Return")

    def answer_password(self, password):
        self.desk.expect("focus", "passphraseTextField")
        self.desk.type(password)
        self.desk.key("Return")

    def type_new_password(self, password=PASSWORD):
        self.desk.expect("focus", "passphraseTextField")
        self.desk.type(password)
        self.desk.tab_to("confirmTextField")
        self.desk.type(password)
        self.desk.key("Return")

    def assert_works_as_a_disk(self, disk, folder):
        """A file goes in by the disk, and only in an enciphered form into the folder."""
        before = set(folder.rglob("*"))
        (disk / "plain text.txt").write_text("for my eyes only")
        self.assertEqual((disk / "plain text.txt").read_text(), "for my eyes only")
        for path in set(folder.rglob("*")) - before:
            self.assertNotIn(b"my eyes", path.read_bytes())

    def no_password_on_disk(self):
        """No file of the home folder holds it, but the keyring's own."""
        for path in self.desk.home.rglob("*"):
            if path.is_file() and "keyrings" not in path.parts and not path.is_symlink():
                self.assertNotIn(PASSWORD.encode(), path.read_bytes(), path)


class FirstStartTest(AssistantTest):
    def test_first_start_to_a_mounted_new_volume(self):
        desk = self.desk
        desk.say("welcome")
        desk.expect("window", "Nimbrel")
        desk.key("Return")  # a new folder
        self.go_next_from("folderNameTextField", "Diary")
        self.type_new_password()
        mount = Path(desk.expect("mounted"))
        folder = self.documents / "Diary.nmc"
        desk.expect("window", "Nimbrel")
        self.assertEqual(mount, desk.home / "Volumes/Nimbrel")
        self.assertIn(str(mount), desk.mounts())
        for manual in ("Getting Started.pdf", "Nimbrel for Mac Manual.pdf"):
            self.assertTrue((mount / manual).read_bytes().startswith(b"%PDF"), manual)
        facts = json.loads(nimbrelctl("info", "--json", folder))
        self.assertEqual((facts["keySize"], facts["blockSize"]), (256, 4096))
        self.assert_works_as_a_disk(mount, folder)
        desk.tab_to("openVolumeButton")
        desk.key("space")  # not in the file browser
        desk.key("Return")
        desk.end_session()
        self.assertEqual(desk.mounts(), [])
        self.assertTrue(self.opens(folder))
        self.no_password_on_disk()

    def test_an_existing_folder_is_opened(self):
        folder = self.make_folder()
        desk = self.desk
        desk.say("welcome")
        desk.expect("window", "Nimbrel")
        desk.key("Down")  # open an existing folder
        desk.tab_to("chooseButton")
        desk.key("space")
        desk.expect("window", "*")
        desk.expect("focus", "fileNameEdit")
        desk.type(str(folder))
        desk.key("Return")
        desk.expect("window", "Nimbrel")
        desk.key("Return")
        self.answer_password(PASSWORD)
        mount = desk.home / "Volumes/Nimbrel"
        desk.until(lambda: str(mount) in desk.mounts(), "the disk")
        self.assert_works_as_a_disk(mount, folder)
        desk.end_session()
        self.assertTrue(self.opens(folder))

    def test_a_folder_that_is_none_is_refused_and_nothing_happens(self):
        desk = self.desk
        desk.say("welcome")
        desk.expect("window", "Nimbrel")
        desk.key("Down")
        desk.key("Return")
        desk.expect("alert", "This is not a valid Nimbrel Folder.*")
        desk.key("Return")
        desk.expect("window", "Nimbrel")
        desk.key("Escape")
        desk.expect("done", "welcome")
        self.assertEqual(self.folders(), [])
        self.assertEqual(desk.mounts(), [])

    def test_cancel_at_each_step_makes_nothing(self):
        desk = self.desk
        for steps in range(3):
            desk.say("welcome")
            desk.expect("window", "Nimbrel")
            if steps > 0:
                desk.key("Return")
                desk.expect("focus", "folderNameTextField")
            if steps > 1:
                desk.type("Never")
                desk.key("Return")
                desk.expect("focus", "passphraseTextField")
            desk.key("Escape")
            desk.expect("done", "welcome")
            self.assertEqual(self.folders(), [])
        self.assertEqual(desk.mounts(), [])


class PasswordTest(AssistantTest):
    def mount(self):
        folder = self.make_folder()
        self.desk.say("add", folder)
        self.desk.say("mount")
        return folder

    def test_wrong_password_three_times_then_right(self):
        folder = self.mount()
        for _ in range(3):
            self.answer_password("wrong")
        self.answer_password(PASSWORD)
        mount = Path(self.desk.expect("mounted"))
        self.assert_works_as_a_disk(mount, folder)
        self.desk.say("unmount")
        self.desk.expect("unmounted", str(mount))
        self.assertEqual(self.desk.mounts(), [])

    def test_an_empty_password_is_told_and_asked_again(self):
        self.mount()
        self.desk.expect("focus", "passphraseTextField")
        self.desk.key("Return")
        self.desk.expect("alert", "You did not enter any password.")
        self.desk.key("Return")
        self.answer_password(PASSWORD)
        self.desk.expect("mounted")

    def test_cancel_leaves_the_folder_unmounted(self):
        self.mount()
        self.desk.expect("focus", "passphraseTextField")
        self.desk.key("Escape")
        self.desk.say("mount")  # it can be tried again, and asks again
        self.desk.expect("focus", "passphraseTextField")
        self.assertEqual(self.desk.mounts(), [])
        self.desk.type(PASSWORD)
        self.desk.key("Return")
        self.assertIn(self.desk.expect("mounted"), self.desk.mounts())

    def test_the_password_is_changed(self):
        folder = self.mount()
        self.answer_password(PASSWORD)
        self.desk.expect("mounted")
        self.desk.say("change")
        self.type_change("wrong", "another one")
        self.desk.expect("alert", "The current password is not correct.")
        self.desk.key("Return")
        self.assertTrue(self.opens(folder))
        self.desk.expect("focus", "*")
        self.desk.key("Escape")
        self.desk.expect("done", "change")
        self.desk.say("change")
        self.type_change(PASSWORD, "another one")
        self.desk.expect("alert", "You have successfully changed the password!")
        self.desk.key("Return")
        self.desk.expect("done", "change")
        self.desk.say("unmount")
        self.desk.expect("unmounted")
        self.assertFalse(self.opens(folder))
        self.assertTrue(self.opens(folder, "another one"))

    def type_change(self, old, new):
        self.desk.expect("focus", "oldPassphraseTextField")
        self.desk.type(old)
        for field in ("passphraseTextField", "confirmTextField"):
            self.desk.tab_to(field)
            self.desk.type(new)
        self.desk.key("Return")


class AdvancedTest(AssistantTest):
    ADVANCED = True

    def test_a_folder_with_aes_128_blocks_of_16384_and_plain_names(self):
        desk = self.desk
        desk.say("new")
        self.go_next_from("folderNameTextField", "Archive")
        self.type_new_password()
        desk.expect("focus", "labelTextField")
        desk.tab_to("algorithmButton")
        desk.type("AES-128")
        desk.tab_to("blockSizeTextField")
        desk.key("ctrl+a")
        desk.type("16384")
        desk.tab_to("filenameEncryptionButton")
        desk.key("space")
        desk.key("Return")
        mount = Path(desk.expect("mounted"))
        self.assertEqual(mount, desk.home / "Volumes/Archive")
        folder = self.documents / "Archive.nmc"
        facts = json.loads(nimbrelctl("info", "--json", folder))
        self.assertEqual((facts["keySize"], facts["blockSize"]), (128, 16384))
        (mount / "plain name.txt").write_text("hidden text")
        self.assertNotIn(b"hidden text", (folder / "plain name.txt").read_bytes())
        desk.tab_to("openVolumeButton")
        desk.key("space")
        desk.key("Return")
        desk.expect("done", "new")
        desk.end_session()
        self.assertTrue(self.opens(folder))

    def test_a_bad_block_size_is_told_and_nothing_is_made(self):
        desk = self.desk
        desk.say("new")
        self.go_next_from("folderNameTextField", "Never")
        self.type_new_password()
        desk.expect("focus", "labelTextField")
        desk.tab_to("blockSizeTextField")
        desk.key("ctrl+a")
        desk.type("4097")
        desk.key("Return")
        desk.expect("alert", "The block size has to be a multiple of 16.")
        desk.key("Return")
        desk.expect("focus", "blockSizeTextField")
        desk.key("Escape")
        desk.expect("done", "new")
        self.assertEqual(self.folders(), [])

    def test_cancel_at_each_step_makes_nothing(self):
        desk = self.desk
        for steps in range(3):
            desk.say("new")
            desk.expect("focus", "folderNameTextField")
            if steps > 0:
                desk.type("Never")
                desk.key("Return")
                desk.expect("focus", "passphraseTextField")
            if steps > 1:
                desk.type(PASSWORD)
                desk.tab_to("confirmTextField")
                desk.type(PASSWORD)
                desk.key("Return")
                desk.expect("focus", "labelTextField")
            desk.key("Escape")
            desk.expect("done", "new")
            self.assertEqual(self.folders(), [])
        self.assertEqual(desk.mounts(), [])


if __name__ == "__main__":
    unittest.main()
