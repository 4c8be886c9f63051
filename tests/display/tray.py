"""The X11 tray: a panel in which a program's icon is a window."""

import re
import subprocess

from mouse import LEFT, RIGHT

PANEL = ["trayer", "--edge", "top", "--align", "right", "--widthtype", "request", "--height", "24"]
# A window that has a name, with its size and its place on the display.
WINDOW = re.compile(r'0x\w+ "(.*)": \(.*\)  (\d+)x(\d+)\S+  \+(-?\d+)\+(-?\d+)')


class Trayer:
    """At the top right of the display. Runs from the start; stop() and start() take it away and
    bring it back, as a panel that crashes or comes late."""

    def __init__(self, desk):
        self.desk = desk
        self.program = None
        self.start()

    def start(self):
        self.program = self.desk.run(*PANEL, stdout=subprocess.DEVNULL)
        self.desk.until(lambda: "panel" in self.desk.tool("xwininfo", "-root", "-tree"), "the tray")

    def stop(self):
        self.desk.end(self.program)

    def items(self):
        """The icons' middles by their programs' names."""
        tree = self.desk.tool("xwininfo", "-tree", "-name", "panel", check=False)
        icons = {}
        for name, *numbers in WINDOW.findall(tree):
            width, height, x, y = map(int, numbers)
            if width > 1 and name != "panel":
                icons[name] = (x + width // 2, y + height // 2)
        return icons

    def expect_item(self):
        """Waits for an icon; its place."""
        self.desk.until(self.items, "the tray's icon")
        return list(self.items().values())[-1]

    def click(self, button=LEFT):
        self.desk.mouse.click(*self.expect_item(), button)

    def open_menu(self):
        """The right button; what the menu shows, as the observer tells it."""
        self.desk.quiet()
        self.desk.lines.forget("menu")
        self.click(RIGHT)
        return self.desk.expect("menu")

    def labels(self):
        """The menu in short, which is closed again."""
        labels = self.open_menu().split("|")
        self.desk.key("Escape")
        return labels

    def choose(self, label):
        """Opens the menu and clicks the entry."""
        self.open_menu()
        self.desk.click_menu(label)

    def icon(self):
        """What tells one picture of the icon from another."""
        return self.desk.tool("import", "-window", "panel", "-format", "%#", "info:").strip()

    def picture(self, path):
        """The panel, as it stands on the display."""
        self.desk.tool("import", "-window", "panel", path)
