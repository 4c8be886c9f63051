"""The mouse of a desk, and a file that it can drag into the program."""

import os

from desk import Conversation

LEFT, MIDDLE, RIGHT = 1, 2, 3


class Mouse:
    """Places are pixels of the display."""

    def __init__(self, desk):
        self.desk = desk

    def _do(self, *words):
        self.desk.tool("xdotool", *words)

    def move(self, x, y):
        self._do("mousemove", x, y)

    def click(self, x, y, button=LEFT):
        self._do("mousemove", x, y, "sleep", 0.05, "click", button)

    def double_click(self, x, y):
        self._do("mousemove", x, y, "sleep", 0.05, "click", "--repeat", 2, "--delay", 80, LEFT)

    def right_click(self, x, y):
        self.click(x, y, RIGHT)

    def drag(self, start, end, steps=8):
        """Slowly enough for the program under the mouse to answer on the way."""
        way = []
        for step in range(1, steps + 1):
            way += ["mousemove", *(round(a + (b - a) * step / steps)
                                   for a, b in zip(start, end)), "sleep", 0.05]
        self._do("mousemove", *start, "sleep", 0.05, "mousedown", LEFT, "sleep", 0.1, *way,
                 "sleep", 0.3, "mouseup", LEFT)


class DragSource(Conversation):
    """A file manager's icon for one file or folder, at a place of the display that is free."""

    SIZE = (160, 80)

    def __init__(self, desk, path, at=(0, 0)):
        super().__init__(desk, os.environ["NIMBREL_DRAG_SOURCE"], path)
        self.middle = [corner + size // 2 + 10 for corner, size in zip(at, self.SIZE)]
        window = desk.until(lambda: desk.tool("xdotool", "search", "--onlyvisible", "--name",
                                              "^Drag source$", check=False).split(),
                            "the drag source")[0]
        desk.tool("xdotool", "windowmove", "--sync", window, *at)

    def drop_at(self, place):
        """Drags it there. True when whoever is there has taken it."""
        self.desk.mouse.drag(self.middle, place)
        self.lines.quiet(0.5)
        return self._outcome()

    def drop_on(self, name):
        return self.drop_at(self.desk.place("where", name))

    def _outcome(self):
        self.desk.until(lambda: self.lines.waiting or self.lines.quiet(0.1), "the drag's end")
        return self.lines.waiting.popleft() == "dropped"
