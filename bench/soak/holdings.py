"""What a process and its keeper hold, read from /proc."""

import collections
import os
import re
import statistics
from pathlib import Path

from application_case import children

# Anonymous memory is the process's own: what others share, and take off PSS, isn't in it.
COLUMNS = ("fds", "threads", "mounts", "RSS KiB", "PSS KiB", "anon KiB", "keeperFds", "keeperPSS")
# One may come and go with what the desktop asks just now.
TOLERANCE = {"fds": 1, "threads": 1, "mounts": 0, "keeperFds": 0}


def fields(path):
    """The lines "Name: value" of a file of /proc."""
    lines = Path(path).read_text(encoding="utf-8").splitlines()
    return {name: value.strip() for name, _, value in (line.partition(":") for line in lines)}


def kibibytes(process, name):
    return int(fields(f"/proc/{process}/smaps_rollup")[name].split()[0])


def descriptors(process):
    return len(os.listdir(f"/proc/{process}/fd"))


def descriptor_kinds(process):
    """How many of each: "socket", "anon_inode:[eventfd]", a path."""
    links = []
    for path in Path(f"/proc/{process}/fd").iterdir():
        try:
            links.append(re.sub(r":\[\d+\]$", "", os.readlink(path)))
        except OSError:
            pass  # closed meanwhile
    return collections.Counter(links)


def threads(process):
    """Their ids."""
    return [path.name for path in Path(f"/proc/{process}/task").iterdir()]


def wakeups(process):
    """Those of each thread so far."""
    return {thread: int(fields(f"/proc/{process}/task/{thread}/status")["voluntary_ctxt_switches"])
            for thread in threads(process)}


def wakeups_since(process, before):
    """A thread that has ended meanwhile isn't counted."""
    return sum(count - before.get(thread, 0) for thread, count in wakeups(process).items())


def cpu_seconds(process):
    """User's and system's together."""
    facts = Path(f"/proc/{process}/stat").read_text(encoding="utf-8").rpartition(")")[2].split()
    return (int(facts[11]) + int(facts[12])) / os.sysconf("SC_CLK_TCK")


class Holdings:
    def __init__(self, process, folder):
        self.process, self.folder = process, folder
        self.keeper = children(process)[0]  # the one child that the program has made so far

    def mounts(self):
        table = Path(f"/proc/{self.process}/mountinfo").read_text(encoding="utf-8")
        return sum(line.split(" ")[4].startswith(self.folder) for line in table.splitlines())

    def now(self):
        return {"fds": descriptors(self.process), "threads": len(threads(self.process)),
                "mounts": self.mounts(), "RSS KiB": kibibytes(self.process, "Rss"),
                "PSS KiB": kibibytes(self.process, "Pss"),
                "anon KiB": kibibytes(self.process, "Anonymous"),
                "keeperFds": descriptors(self.keeper),
                "keeperPSS": kibibytes(self.keeper, "Pss")}


def growth(before, after):
    """In words, what has grown by more than comes and goes."""
    return [f"{name} from {before[name]} to {after[name]}" for name, most in TOLERANCE.items()
            if after[name] > before[name] + most]


def slope(rows, name):
    """By which a figure grows from round to round, along all that were noted."""
    if len(rows) < 2:
        return 0.0
    return statistics.linear_regression([number for number, _ in rows],
                                        [row[name] for _, row in rows]).slope
