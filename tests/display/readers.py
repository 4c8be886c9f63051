"""What the program leaves behind: stored passwords, preferences, the list of volumes."""

import configparser
import json
import plistlib
import re
from pathlib import Path

from desk import SYSTEM_PYTHON

ESCAPE = re.compile(r"\\(x[0-9a-fA-F]+|.)")
LETTERS = {"n": "\n", "r": "\r", "t": "\t", "0": "\0", "a": "\a", "b": "\b", "f": "\f", "v": "\v"}


def stored_passwords(desk):
    """What the keyring holds: label, attributes (service, account) and secret of each item; the
    secret of a locked one is None."""
    program = Path(__file__).with_name("services") / "passwords_main.py"
    return json.loads(desk.tool(SYSTEM_PYTHON, "-B", program))


def stored_password(desk, **attributes):
    """The password with these attributes (service, account), or None."""
    for item in stored_passwords(desk):
        if attributes.items() <= item["attributes"].items():
            return item["secret"]
    return None


def _value(text):
    """A text of QSettings' INI coding; bytes where it holds a byte array."""
    if text.startswith('"') and text.endswith('"'):
        text = text[1:-1]
    text = ESCAPE.sub(lambda found: chr(int(found[1][1:], 16)) if found[1][0] == "x"
                      and len(found[1]) > 1 else LETTERS.get(found[1], found[1]), text)
    if text.startswith("@ByteArray(") and text.endswith(")"):
        return text[len("@ByteArray("):-1].encode("latin-1")
    return text


def preferences(desk):
    """The preferences by their names, texts as they stand ("true"); empty without a file."""
    path = desk.home / ".config/Nimbrel/Nimbrel.conf"
    parser = configparser.ConfigParser(interpolation=None, delimiters=["="], strict=False)
    parser.optionxform = str
    if path.exists():
        parser.read_string(path.read_text(encoding="utf-8"))
    return {name if section == "General" else f"{section}/{name}": _value(value)
            for section in parser.sections() for name, value in parser[section].items()}


def set_preferences(desk, **values):
    """Puts texts in before the program's start, as an earlier run left them."""
    path = desk.home / ".config/Nimbrel/Nimbrel.conf"
    path.parent.mkdir(mode=0o700, exist_ok=True)
    lines = [f"{name}={value}" for name, value in values.items()]
    path.write_text("\n".join(["[General]", *lines, ""]), encoding="utf-8")
    path.chmod(0o600)


def _object(objects, thing):
    """A keyed archive's object as Python's own."""
    if isinstance(thing, plistlib.UID):
        thing = objects[thing.data]
    if isinstance(thing, dict) and "NS.objects" in thing:
        return [_object(objects, part) for part in thing["NS.objects"]]
    if isinstance(thing, dict):
        return {name: _object(objects, part) for name, part in thing.items() if name != "$class"}
    return None if thing == "$null" else thing


def stored_volumes(desk):
    """The list of volumes as it is stored: one dictionary each."""
    archive = preferences(desk).get("volumes")
    if archive is None:
        return []
    contents = plistlib.loads(archive)
    return _object(contents["$objects"], contents["$top"]["root"])
