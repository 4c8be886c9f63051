"""What all scenarios with the real program stand on: the person's eyes and hands, the desktop."""

import os
import subprocess
import unittest

from application_desk import ApplicationDesk
from mouse import DragSource
from readers import preferences, set_preferences, stored_password, stored_passwords
from tray import Trayer

WATCHER = "org.kde.StatusNotifierWatcher"
SAMPLE = os.environ.get("NIMBREL_SAMPLE")


class InfrastructureTest(unittest.TestCase):
    def sit_down(self, **options):
        desk = ApplicationDesk(**options)
        self.addCleanup(desk.close)
        return desk

    def start_sample(self, **options):
        desk = self.sit_down(**options)
        desk.start_application(program=SAMPLE)
        desk.expect("window", "Sample")
        return desk

    def assert_outcome(self, desk, text):
        desk.until(lambda: desk.tell("outcome")["text"] == text, text, patience=10)


class ObserverTest(InfrastructureTest):
    def test_what_the_mouse_does_is_seen(self):
        """At twice the size, where the program counts in other pixels than the display."""
        desk = self.start_sample(scale=2)
        self.assertEqual(desk.windows(), ["Sample"])
        self.assertEqual(desk.tell("warn"), {
            "accessibleName": "Warn", "checked": None, "class": "QAction", "enabled": True,
            "text": "Warn", "toolTip": "Shows an alert", "visible": True})
        self.assertIsNone(desk.tell("no such control"))
        self.assertIsNone(desk.where("no such control"))
        desk.click_on("box")
        self.assertIs(desk.tell("box")["checked"], True)
        desk.choose_in("list", "three")
        self.assertEqual(desk.tell("list")["text"], "three")
        self.assertEqual(desk.tell("list")["entries"], ["one", "two", "three"])
        desk.click_row("table", 1)
        desk.click_row("table", "2-1")
        self.assertEqual([row["selected"] for row in desk.table("table")], [False, False, True])
        self.assertEqual(desk.table("table")[1]["texts"], ["1-0", "1-1"])

    def test_a_menu_and_an_alert_are_read_and_answered(self):
        desk = self.start_sample()
        desk.right_click_row("table", 0)
        desk.expect("menu", "Open|-|Never (off)|More")
        desk.click_menu("More", "Deep")
        self.assert_outcome(desk, "deep")
        desk.click_on("warn")
        desk.expect("alert", "A headline")
        desk.expect("detail", "A detail in two lines")
        desk.expect("buttons", "Go on|Stop (default Stop)")
        desk.click_on("Go on")
        self.assert_outcome(desk, "Go on")

    def test_a_folder_is_dragged_into_the_window(self):
        desk = self.start_sample()
        source = DragSource(desk, desk.home / "Documents")
        self.assertTrue(source.drop_on("outcome"))
        self.assert_outcome(desk, str(desk.home / "Documents"))
        self.assertFalse(source.drop_on("table"))

    def test_the_assistants_are_observed_in_any_program(self):
        """By a program that has an observer of its own, and knows nothing of this one."""
        desk = self.sit_down(language="de")
        desk.environment["NIMBREL_RESOURCES"] = os.environ["NIMBREL_RESOURCES"]
        session = desk.start_application("--language", "de", stdin=subprocess.PIPE,
                                         program=os.environ["NIMBREL_SESSION"])
        session.process.stdin.write("welcome\n")
        session.process.stdin.flush()
        desk.expect("window", "Nimbrel")
        desk.click_on("Vorhandenen Nimbrel-Ordner öffnen")
        self.assertTrue(desk.tell("Vorhandenen Nimbrel-Ordner öffnen")["checked"])
        self.assertEqual(desk.cut_controls(), [])
        desk.click_on("Weiter")
        desk.expect("alert")
        desk.expect("buttons", "OK (default OK)")
        desk.click_on("OK")
        desk.expect("window", "Nimbrel")
        desk.key("Escape")
        session.process.stdin.close()
        self.assertEqual(session.wait(), 0)

    def test_ends_of_programs_are_told(self):
        desk = self.start_sample()
        self.assertTrue(desk.application.running)
        self.assertEqual(desk.application.terminate(), -15)
        with self.assertRaisesRegex(AssertionError, "ended"):
            desk.expect("window")
        with self.assertRaisesRegex(AssertionError, "can't be seen"):
            desk.tell("outcome")
        unobserved = desk.start_application(program=SAMPLE, observed=False)
        self.assertEqual(unobserved.kill(), -9)
        with self.assertRaisesRegex(AssertionError, "status 3"):
            desk.start_application("-c", "exit 3", program="/bin/sh")


class TrayTest(InfrastructureTest):
    def test_the_x11_tray(self):
        self.use_tray("trayer", "nimbrel_sample")

    def test_the_status_notifier_tray(self):
        self.use_tray("sni", None)

    def use_tray(self, kind, name):
        desk = self.start_sample(tray=kind)
        desk.tray.expect_item()
        if name:
            self.assertEqual(list(desk.tray.items()), [name])
        desk.tray.click()
        self.assert_outcome(desk, "icon clicked")
        self.assertEqual(desk.tray.labels(), ["Blue", "-", "Never (off)", "Quit"])
        before = desk.tray.icon()
        desk.tray.choose("Blue")
        desk.until(lambda: desk.tray.icon() != before, "another icon")
        if kind == "sni":
            self.assertEqual(desk.tray.properties()["ToolTip"], "A sample's icon")
        desk.tray.choose("Quit")
        self.assertEqual(desk.application.wait(), 0)
        desk.until(lambda: not desk.tray.items(), "the icon's end")

    def test_an_x11_tray_that_comes_late_and_goes(self):
        desk = self.start_sample()
        desk.tray = Trayer(desk)
        desk.tray.expect_item()
        desk.tray.stop()
        desk.tray.start()
        desk.tray.click()
        self.assert_outcome(desk, "icon clicked")

    def test_a_status_notifier_tray_that_goes_and_comes_back(self):
        desk = self.start_sample(tray="sni")
        desk.tray.expect_item()
        desk.tray.stop()
        desk.tray.start(watcher_alone=True)
        self.assertIn("boolean false", self.host_property(desk))
        desk.tray.register_host()
        self.assertIn("boolean true", self.host_property(desk))
        desk.tray.expect_item()
        desk.tray.click()
        self.assert_outcome(desk, "icon clicked")

    @staticmethod
    def host_property(desk):
        return desk.tool("dbus-send", "--session", "--print-reply", f"--dest={WATCHER}",
                         "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties.Get",
                         f"string:{WATCHER}", "string:IsStatusNotifierHostRegistered")


class SurroundingsTest(InfrastructureTest):
    def test_without_fuse_a_program_finds_none(self):
        desk = self.sit_down(fuse=False)
        look = "test ! -e /dev/fuse && echo x > /dev/null && test -c /dev/urandom && id -u"
        program = desk.start_application("-c", look, program="/bin/sh", observed=False)
        self.assertEqual(program.wait(), 0, desk.log("sh"))
        self.assertEqual(desk.output("sh"), f"{os.getuid()}\n")

    def test_the_file_manager_tells_what_it_was_asked(self):
        desk = self.sit_down()
        for method, uris in (("ShowFolders", "file:///a%20b"),
                             ("ShowItems", "file:///c,file:///d")):
            self.call(desk, "FileManager1", "/org/freedesktop/FileManager1",
                      f"FileManager1.{method}", f"array:string:{uris}", "string:")
        self.assertEqual(desk.file_manager.expect_shown("/a b"), ("ShowFolders", "/a b"))
        self.assertEqual(desk.file_manager.shown(), [("ShowItems", "/c"), ("ShowItems", "/d")])

    @staticmethod
    def call(desk, name, path, method, *arguments):
        return desk.tool("dbus-send", "--session", "--print-reply",
                         f"--dest=org.freedesktop.{name}", path, f"org.freedesktop.{method}",
                         *arguments)

    def test_the_portal_tells_the_preferred_colours(self):
        for dark, number in ((True, 1), (False, 2)):
            desk = self.sit_down(dark=dark)
            answer = self.call(desk, "portal.Desktop", "/org/freedesktop/portal/desktop",
                               "portal.Settings.Read", "string:org.freedesktop.appearance",
                               "string:color-scheme")
            self.assertRegex(answer, f"variant +variant +uint32 {number}")
            desk.close()

    def test_without_a_bus_nobody_answers(self):
        desk = self.sit_down(bus=False)
        self.assertEqual(desk.bus_names(), "")
        desk.start_application(program=SAMPLE)
        desk.expect("window", "Sample")

    def test_stored_passwords_are_read(self):
        desk = self.sit_down()
        self.assertEqual(stored_passwords(desk), [])
        for account, password in (("/one", "first"), ("/two", "se\ncond ü")):
            subprocess.run(["secret-tool", "store", "--label=L", "service", "Nimbrel: x",
                            "account", account], input=password, text=True, check=True,
                           env=desk.environment, timeout=30)
        self.assertEqual(stored_password(desk, account="/two"), "se\ncond ü")
        self.assertEqual(stored_password(desk, account="/one", service="Nimbrel: x"), "first")
        self.assertIsNone(stored_password(desk, account="/three"))

    def test_preferences_are_read(self):
        desk = self.sit_down()
        self.assertEqual(preferences(desk), {})
        set_preferences(desk, advancedMode="true")
        path = desk.home / ".config/Nimbrel/Nimbrel.conf"
        with path.open("a", encoding="utf-8") as file:
            file.write('text="a;b\\x20ac \\"c\\"\\n"\ndata="@ByteArray(\\0\\xff=\\x1z)"\n'
                       "[Group]\nname=ö\n")
        self.assertEqual(preferences(desk), {"advancedMode": "true", "text": 'a;b€ "c"\n',
                                             "data": b"\0\xff=\1z", "Group/name": "ö"})


if __name__ == "__main__":
    unittest.main()
