#!/usr/bin/env python3
"""Checks every #include below src against the direction of the targets.

cmake writes one line a source, `target;used,used;path`. A source may include the files of its own
target and of those that it uses; only the binding sees libfuse; a file that no target lists would
escape the check and is an error itself.
"""

import argparse
import re
import sys
from collections import namedtuple
from pathlib import Path

Entry = namedtuple("Entry", "target uses")

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"(?P<own>[^"]+)"|<(?P<system>[^>]+)>)')
LIBFUSE = re.compile(r"^(fuse3/)?(fuse|cuse)[a-z_]*\.h$")
BINDING_TARGET = "nimbrel_fuse"
BINDING_FILE = re.compile(r"^(UserFileSystem|Fuse)")
SOURCE_SUFFIXES = {".c", ".cpp", ".h", ".hpp"}


def read_layers(text):
    """Path to Entry, and complaints about paths of two targets."""
    entries, complaints = {}, []
    for line in text.splitlines():
        if not line.strip():
            continue
        target, used, path = line.split(";", 2)
        if path in entries and entries[path].target != target:
            complaints.append(f"{path}: listed by {entries[path].target} and by {target}")
        entries[path] = Entry(target, {name for name in used.split(",") if name})
    return entries, complaints


def includes(text):
    """Line number and match of each #include."""
    for number, line in enumerate(text.splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match


def complaint_about(match, path, entries):
    """What is wrong with one #include of the source at `path`; None for nothing."""
    entry = entries[path]
    system = match.group("system")
    if system is not None:
        in_binding = entry.target == BINDING_TARGET and BINDING_FILE.match(Path(path).name)
        if LIBFUSE.match(system) and not in_binding:
            return f"only UserFileSystem and Fuse files of {BINDING_TARGET} may include <{system}>"
        return None
    included = match.group("own")
    owner = entries.get(f"src/{included}")
    if owner is None:
        return f"{included} belongs to no target"
    if owner.target != entry.target and owner.target not in entry.uses:
        return f"{entry.target} may not include {included}"
    return None


def shown(path):
    return path.removeprefix("src/")


def check(entries, source):
    complaints = []
    found = {
        file.relative_to(source).as_posix()
        for file in (source / "src").rglob("*")
        if file.is_file() and file.suffix in SOURCE_SUFFIXES
    }
    complaints += [f"{shown(path)}: no target lists it" for path in sorted(found - entries.keys())]
    for path in sorted(entries):
        file = source / path
        if not file.is_file():
            complaints.append(f"{shown(path)}: listed, but not there")
            continue
        for number, match in includes(file.read_text(encoding="utf-8")):
            complaint = complaint_about(match, path, entries)
            if complaint:
                complaints.append(f"{shown(path)}:{number}: {complaint}")
    return complaints


def main(arguments=None):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--layers", type=Path, required=True, help="the list that cmake wrote")
    parser.add_argument("--source", type=Path, required=True, help="the project's folder")
    options = parser.parse_args(arguments)
    entries, complaints = read_layers(options.layers.read_text(encoding="utf-8"))
    complaints += check(entries, options.source)
    if not entries:
        complaints.append(f"{options.layers}: lists no source at all")
    for complaint in complaints:
        print(complaint)
    if not complaints:
        print(f"{len(entries)} sources keep to their layers.")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
