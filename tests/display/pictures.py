"""Takes a picture of every page, as a person sees it: pictures.py FOLDER LANGUAGE LOOK SCALE

LOOK is light or dark, SCALE 1 or 2. The pictures are FOLDER/PAGE-LANGUAGE-LOOK-SCALE.png. Ends
with 1 where a control has too little room for its text.
"""

import sys
import time
from pathlib import Path

from assistants_test import PASSWORD, nimbrelctl
from session_desk import SessionDesk


class Photographer:
    def __init__(self, folder, language, look, scale):
        self.folder, self.language, self.look, self.scale = folder, language, look, scale
        self.cut = []

    def desk(self, advanced=False):
        return SessionDesk(self.language, self.scale, self.look == "dark", advanced,
                           f"{1300 * self.scale}x{1000 * self.scale}x24")

    def take(self, desk, page):
        desk.picture(self.folder / f"{page}-{self.language}-{self.look}-{self.scale}.png")
        desk.say("check-layout")
        desk.expect("done", "check-layout")
        self.cut += [f"{page}: {line}" for line in desk.seen if line.startswith("cut")]
        desk.seen.clear()

    def simple_mode(self):
        desk = self.desk()
        try:
            self.new_volume(desk)
            self.passwords(desk)
            desk.end_session()
        finally:
            desk.close()

    def new_volume(self, desk):
        (desk.home / "Nextcloud").mkdir()
        settings = desk.home / ".config/Nextcloud/nextcloud.cfg"
        settings.parent.mkdir()
        settings.write_text("[Accounts]\nversion=2\n0\\Folders\\1\\localPath="
                            f"{desk.home}/Nextcloud/\n", encoding="utf-8")
        desk.start_session()
        desk.say("welcome")
        desk.expect("window")
        self.take(desk, "welcome")
        desk.key("Down")
        self.take(desk, "welcome-open")
        desk.key("Up")
        desk.key("Return")
        desk.expect("focus", "folderNameTextField")
        self.take(desk, "location-empty")
        desk.type("Diary")
        self.take(desk, "location")
        desk.key("Return")
        desk.expect("focus", "passphraseTextField")
        desk.type("Seven otters, 1 piano")
        desk.key("Caps_Lock")
        self.take(desk, "password")
        desk.key("Caps_Lock")
        desk.tab_to("confirmTextField")
        desk.type("Seven otters")
        desk.key("Return")
        desk.expect("alert")
        self.take(desk, "alert")
        desk.key("Return")
        desk.expect("focus", "confirmTextField")
        desk.key("ctrl+a")
        desk.type("Seven otters, 1 piano")
        desk.key("Return")
        desk.expect("mounted")
        desk.expect("window")
        self.take(desk, "success")
        desk.tab_to("openVolumeButton")
        desk.key("space", "Return")

    def passwords(self, desk):
        desk.say("change")
        desk.expect("focus", "oldPassphraseTextField")
        self.take(desk, "change-password")
        desk.key("Escape")
        desk.expect("done", "change")
        desk.say("unmount")
        desk.expect("unmounted")
        nimbrelctl("create", desk.home / "Nextcloud/Photos.nmc", password=PASSWORD)
        desk.end_session()
        (desk.home / ".config/Nimbrel/Nimbrel.conf").unlink()
        desk.start_session()
        desk.say("add", desk.home / "Nextcloud/Photos.nmc")
        desk.say("mount")
        desk.expect("focus", "passphraseTextField")
        self.take(desk, "enter-password")
        desk.key("Escape")

    def advanced_mode(self):
        desk = self.desk(advanced=True)
        try:
            desk.start_session()
            desk.say("new")
            desk.expect("focus", "folderNameTextField")
            desk.type("Archive")
            desk.key("Return")
            desk.expect("focus", "passphraseTextField")
            desk.type(PASSWORD)
            desk.tab_to("confirmTextField")
            desk.type(PASSWORD)
            desk.key("Return")
            desk.expect("focus", "labelTextField")
            self.take(desk, "advanced")
            desk.key("Escape")
            desk.expect("done", "new")
            desk.say("open-options")
            desk.expect("focus", "labelTextField")
            self.take(desk, "options")
            desk.key("Escape")
            desk.expect("done", "open-options")
            desk.end_session()
        finally:
            desk.close()


def main(photographer_class):
    folder, language, look, scale = sys.argv[1:]
    start = time.monotonic()
    photographer = photographer_class(Path(folder), language, look, int(scale))
    photographer.simple_mode()
    photographer.advanced_mode()
    print(f"{time.monotonic() - start:.0f} s", *photographer.cut, sep="\n")
    sys.exit(1 if photographer.cut else 0)


if __name__ == "__main__":
    main(Photographer)
