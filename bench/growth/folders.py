"""What an entry costs in ever larger folders."""
import os
import shutil

from machine import drop_caches, sh, timed

SIZES = (1_000, 10_000, 100_000)


def measure(disk, count):
    """Microseconds an entry."""
    folder = disk.plain / "entries"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    names = [f"{folder}/entry number {i}" for i in range(count)]
    found = {"create": timed(lambda: create(names))}
    drop_caches()
    found["ls -l, cold"] = timed(lambda: list_long(folder, count))
    drop_caches()
    found["stat, cold"] = timed(lambda: [os.stat(name) for name in names])
    shutil.rmtree(folder)
    return {work: round(seconds / count * 1e6, 2) for work, seconds in found.items()}


def create(names):
    for name in names:
        os.close(os.open(name, os.O_CREAT | os.O_WRONLY))


def list_long(folder, count):
    """Unsorted, without names of owners: what remains is the disk's work."""
    if sh(["ls", "-lnU", folder]).count("\n") != count + 1:
        raise RuntimeError(f"ls doesn't show {count} files")
