"""The side of a desktop service that a test talks with: commands in, lines out.

A command is a line of words apart by tabs. Its answer is "answer", a tab, and a JSON list with the
one value, or "failed" and why; what happens by itself is a line of its own."""

import json
import os
import sys

from gi.repository import GLib


def tell(*words):
    print(*words, sep="\t", flush=True)


class Commands:
    """Calls `commands[word](*words)` for each line of standard input, on the main loop."""

    def __init__(self, loop, commands):
        self.loop, self.commands, self.text = loop, commands, b""
        GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT,
                          GLib.IO_IN | GLib.IO_HUP, self._read)

    def _read(self, descriptor, _condition):
        part = os.read(descriptor, 65536)
        if not part:
            self.loop.quit()
            return False
        *lines, self.text = (self.text + part).split(b"\n")
        for line in lines:
            self._obey(*line.decode().split("\t"))
        return True

    def _obey(self, word, *words):
        try:
            tell("answer", json.dumps([self.commands[word](*words)]))
        except Exception as error:  # whoever asked shall not wait for an answer
            tell("failed", repr(error).replace("\n", " "))
