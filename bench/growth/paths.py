"""The daemon's memory while ever more paths are looked up."""
import os
import threading
import time

from machine import drop_caches, memory, sh

MILLION = 1_000_000
AT_ONCE = 20_000  # names for one command line


class Sampler:
    """Every half second: paths looked up so far, seconds, resident memory in MiB."""

    def __init__(self, disk):
        self.disk, self.count, self.samples = disk, 0, []
        self.start, self.ended = time.monotonic(), threading.Event()
        self.thread = threading.Thread(target=self.run)

    def run(self):
        while not self.ended.wait(0.5):
            self.take()

    def take(self):
        self.samples.append([self.count, round(time.monotonic() - self.start, 2),
                             round(memory(self.disk.process.pid, "VmRSS"), 2)])

    def __enter__(self):
        self.take()
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.ended.set()
        self.thread.join()
        self.take()


def look_up(disk, names, seconds):
    """Samples over at most so many seconds, and the peak."""
    with Sampler(disk) as sampler:
        end = time.monotonic() + seconds
        for name in names:
            try:
                os.lstat(name)
            except FileNotFoundError:
                pass
            sampler.count += 1
            if sampler.count % 1000 == 0 and time.monotonic() > end:
                break
    return {"samples": sampler.samples, "peak": round(disk.peak(), 2)}


def absent(disk, seconds, count=MILLION):
    """Names that don't exist, all in one folder."""
    folder = f"{disk.plain}/a folder of some depth/and another one"
    os.makedirs(folder, exist_ok=True)
    names = (f"{folder}/a name of usual length {i}.txt" for i in range(count))
    return look_up(disk, names, seconds)


def existing(disk, seconds, folders=10, count=100_000):
    """Files that are there; the kernel holds a reference to each. They are put beside the disk, as a
    cloud client does it, so that the memory of making them doesn't count."""
    names = [f"folder {k}/a name of usual length {i}.txt" for k in range(folders) for i in range(count)]
    for start in range(0, len(names), AT_ONCE):
        put(disk, names[start:start + AT_ONCE])
    drop_caches()
    return look_up(disk, (f"{disk.plain}/{name}" for name in names), seconds)


def put(disk, names):
    encoded = sh([disk.program, "encode", "--password-file", disk.secret, disk.folder, *names])
    for name in encoded.splitlines():
        path = f"{disk.folder}/{name}"
        try:
            os.close(os.open(path, os.O_CREAT | os.O_WRONLY, 0o644))
        except FileNotFoundError:
            os.makedirs(os.path.dirname(path))
            os.close(os.open(path, os.O_CREAT | os.O_WRONLY, 0o644))
