"""Takes a picture of every window, sheet, dialog and menu of the application, as a person sees it:
window_pictures.py FOLDER LANGUAGE LOOK SCALE

LOOK is light or dark, SCALE 1 or 2. The pictures are FOLDER/WINDOW-LANGUAGE-LOOK-SCALE.png. Ends
with 1 where a control has too little room for its text.
"""

import http.server
import json
import threading
import time

from application_desk import ApplicationDesk
from assistants_test import PASSWORD, nimbrelctl
from pictures import main
from readers import set_preferences

FEED = """<rss version="2.0" xmlns:n="urn:versions"><channel><title>Nimbrel</title><item>
<title>Nimbrel 9.1</title><link>https://nimbrel.example.org/download</link>
<pubDate>Fri, 20 Nov 2026 12:00:00 +0000</pubDate><n:version>9.1</n:version>
<description><![CDATA[<h2>Faster</h2><ul><li>Copies of large folders take half the time.</li>
<li>A disk is there as soon as its password is typed.</li></ul><h2>Safer</h2>
<p>A disk that is in use tells which program uses it.</p>]]></description></item></channel></rss>"""


class Feed(http.server.BaseHTTPRequestHandler):
    def do_GET(self):  # pylint: disable=invalid-name
        self.send_response(200)
        self.send_header("Content-Length", str(len(FEED.encode())))
        self.end_headers()
        self.wfile.write(FEED.encode())

    def log_message(self, *_):  # pylint: disable=arguments-differ
        pass


class Photographer:
    def __init__(self, folder, language, look, scale):
        self.folder, self.language, self.look, self.scale = folder, language, look, scale
        self.cut = []
        self.folder.mkdir(parents=True, exist_ok=True)
        self.feed = http.server.HTTPServer(("127.0.0.1", 0), Feed)
        threading.Thread(target=self.feed.serve_forever, daemon=True).start()

    def desk(self):
        return ApplicationDesk(self.language, self.scale, self.look == "dark",
                               f"{1300 * self.scale}x{1000 * self.scale}x24", tray="trayer")

    def path(self, name):
        return self.folder / f"{name}-{self.language}-{self.look}-{self.scale}.png"

    def take(self, desk, name):
        desk.quiet()
        desk.picture(self.path(name))
        self.cut += [f"{name}: {control}" for control in desk.cut_controls()]

    def take_menu(self, desk, name):
        """A menu is no window of the window manager's."""
        time.sleep(0.4)
        desk.tool("import", "-window", "root", "-trim", "+repage", str(self.path(name)))

    @staticmethod
    def make_folders(desk):
        (desk.home / "Dropbox").mkdir()
        (desk.home / ".dropbox").mkdir()
        (desk.home / ".dropbox/info.json").write_text(
            json.dumps({"personal": {"path": str(desk.home / "Dropbox")}}), encoding="utf-8")
        folders = [desk.home / "Dropbox" / name for name in ("Diary.nmc", "Family photos.nmc")]
        folders.append(desk.home / "Documents/Work.nmc")
        for folder in folders:
            nimbrelctl("create", folder, password=PASSWORD)
        return folders

    def simple_mode(self):
        desk = self.desk()
        try:
            self.make_folders(desk)
            port = self.feed.server_address[1]
            set_preferences(desk, firstRunDate="2026-01-01T00:00:00Z",
                            SUFeedURL=f"http://127.0.0.1:{port}/feed",
                            SULastCheckTime="2026-11-21T10:00:00Z")
            desk.start_application()
            desk.expect("window")
            desk.key("Escape")  # the welcome
            self.panel_and_manager(desk)
            self.sheets(desk)
            self.mounted(desk)
            desk.application.terminate()
        finally:
            desk.close()

    def panel_and_manager(self, desk):
        desk.tray.expect_item()
        desk.tray.picture(self.path("panel-encrypted"))
        desk.tray.click()
        desk.expect("window")
        self.take(desk, "manager-simple-empty")
        desk.key("alt+F4")
        desk.expect("alert")
        self.take(desk, "close-empty")
        desk.key("Return")

    def sheets(self, desk):
        desk.click_on("preferences")
        desk.expect("window")
        self.take(desk, "preferences")
        desk.click_on("checkNowButton")
        desk.expect("window")
        self.take(desk, "update")
        desk.key("Escape")
        desk.until(lambda: len(desk.windows()) == 2, "the update window's end")
        desk.click_on("closeButton")
        desk.until(lambda: len(desk.windows()) == 1, "the preferences' end")
        desk.click_on("mobile")
        desk.expect("window")
        self.take(desk, "mobile")
        desk.key("Escape")
        desk.until(lambda: len(desk.windows()) == 1, "the mobile window's end")

    def mounted(self, desk):
        desk.click_on("add")
        desk.expect("window")
        desk.until(lambda: desk.tell("foldersPopUpButton")["enabled"], "the scan's end")
        desk.choose_in("foldersPopUpButton", "Dropbox")
        desk.click_row("foldersTableView", 0)
        self.take(desk, "add-volumes")
        desk.key("Return")
        desk.expect("focus", "passphraseTextField")
        desk.type(PASSWORD)
        desk.key("Return")
        desk.until(desk.mounts, "the disk")
        desk.until(lambda: desk.tell("unmount")["enabled"], "the toolbar")
        self.take(desk, "manager-simple-mounted")
        desk.tray.picture(self.path("panel-decrypted"))
        desk.click_on("clear")
        desk.expect("alert")
        self.take(desk, "clear-password")
        desk.key("Escape")
        desk.click_on("mode")
        desk.expect("alert")
        self.take(desk, "switch-mode")
        desk.key("Return")
        desk.tray.open_menu()
        self.take_menu(desk, "tray-menu")
        desk.key("Up", "Up", "Return")  # the information about the program
        desk.until(lambda: desk.tell("aboutWindow"), "the about window")
        self.take(desk, "about")
        desk.key("Escape")

    def advanced_mode(self):
        desk = self.desk()
        try:
            folders = self.make_folders(desk)
            set_preferences(desk, firstRunDate="2026-01-01T00:00:00Z", advanced="true")
            desk.start_application()
            desk.tray.expect_item()
            desk.tray.click()
            desk.expect("window")
            self.take(desk, "manager-advanced-empty")
            for folder in folders:
                self.open_folder(desk, folder)
            self.list(desk)
            desk.application.terminate()
        finally:
            desk.close()

    @staticmethod
    def open_folder(desk, folder):
        """By a second start; the last one's password is not given."""
        before = len(desk.mounts())
        desk.start_application(folder, observed=False).wait()
        desk.expect("focus", "labelTextField")
        desk.key("Return")
        desk.expect("focus", "passphraseTextField")
        if folder.name == "Work.nmc":
            desk.key("Escape")
            return
        desk.type(PASSWORD)
        desk.key("Return")
        desk.until(lambda: len(desk.mounts()) > before, "the disk")

    def list(self, desk):
        desk.until(lambda: len(desk.table("tableView")) == 3, "three rows")
        desk.click_row("tableView", 0)
        self.take(desk, "manager-advanced")
        desk.right_click_row("tableView", 1)
        desk.expect("menu")
        self.take_menu(desk, "context-menu")
        desk.key("Escape")
        desk.click_on("mode")
        desk.expect("alert")
        self.take(desk, "switch-to-simple")
        desk.key("Return")


if __name__ == "__main__":
    main(Photographer)
