"""What a package gives the desktop: entries, the bus's file, the metadata."""

import configparser
import pathlib
import shutil
import subprocess
import unittest
import xml.etree.ElementTree

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "packaging/desktop"
ID = "com.nimbrel.Nimbrel"


def entry(name):
    file = configparser.ConfigParser(interpolation=None, delimiters="=")
    file.optionxform = str
    file.read(FOLDER / name, encoding="utf-8")
    return file


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False, timeout=60)


class DesktopFilesTest(unittest.TestCase):
    @unittest.skipUnless(shutil.which("desktop-file-validate"), "desktop-file-utils is missing")
    def test_the_entry_is_valid(self):
        result = run("desktop-file-validate", "--no-hints", FOLDER / f"{ID}.desktop")
        self.assertEqual((result.returncode, result.stdout + result.stderr), (0, ""))

    @unittest.skipUnless(shutil.which("appstreamcli"), "appstream is missing")
    def test_the_metadata_is_valid(self):
        file = FOLDER / f"{ID}.metainfo.xml"
        result = run("appstreamcli", "validate", "--no-net", file)
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_the_metadata_names_the_entry(self):
        root = xml.etree.ElementTree.parse(FOLDER / f"{ID}.metainfo.xml").getroot()
        self.assertEqual(root.findtext("id"), ID)
        self.assertEqual(root.findtext("launchable"), f"{ID}.desktop")

    def test_the_bus_starts_what_the_entry_starts(self):
        main = entry(f"{ID}.desktop")["Desktop Entry"]
        self.assertEqual(main["DBusActivatable"], "true")
        self.assertEqual(main["Exec"].split(), ["nimbrel", "%U"])
        service = entry(f"{ID}.service.in")["D-BUS Service"]
        self.assertEqual(service["Name"], ID)
        self.assertEqual(service["Exec"], "@bindir@/nimbrel")

    def test_menu_entries_start_the_program_with_one_file(self):
        reveal = "nimbrel --reveal-encrypted %F"
        action = entry(f"nemo/{ID}.nemo_action")["Nemo Action"]
        self.assertEqual(action["Exec"], reveal)
        self.assertEqual(action["Selection"], "s")
        menu = entry(f"dolphin/{ID}.desktop")
        self.assertEqual(menu["Desktop Entry"]["X-KDE-RequiredNumberOfUrls"], "1")
        name = menu["Desktop Entry"]["Actions"].rstrip(";")
        self.assertEqual(menu[f"Desktop Action {name}"]["Exec"], reveal)
        self.assertEqual(menu[f"Desktop Action {name}"]["Name"], action["Name"])

    def test_every_text_is_there_in_german_too(self):
        for name in (f"{ID}.desktop", f"nemo/{ID}.nemo_action", f"dolphin/{ID}.desktop"):
            for group in entry(name).values():
                for key in ("GenericName", "Comment", "Keywords"):
                    self.assertEqual(key in group, f"{key}[de]" in group, f"{name}: {key}")
                if group.get("Name", "Nimbrel") != "Nimbrel":
                    self.assertIn("Name[de]", group, name)


if __name__ == "__main__":
    unittest.main()
