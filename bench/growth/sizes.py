"""Throughput of ever larger files."""
import os
import shutil
import time

from machine import MIB, drop_caches, timed

SIZES = (1, 16, 256, 1024, 4096, 16384)  # MiB
RESERVE = 2 << 30
BLOCK = os.urandom(8 * MIB)  # more than a processor's near caches take for nothing


def fits(folder, size):
    """Two disks hold their file in turn, so there is one at a time."""
    return shutil.disk_usage(folder).free > size * MIB + RESERVE


def measure(disk, size, seconds):
    """MiB/s of writing, with the data on the store (fsync), and of reading with empty caches. Small
    files are done often enough to be measured: their files are different ones."""
    files = [disk.plain / f"sized-{i}" for i in range(max(1, 64 // size))]
    end = time.monotonic() + seconds
    written = timed(lambda: [write(file, size, end) for file in files])
    drop_caches()
    read_in = timed(lambda: [read(file, end) for file in files])
    for file in files:
        file.unlink()
    total = size * len(files)
    return {"write": round(total / written, 1), "read, cold": round(total / read_in, 1)}


def write(file, size, end):
    with open(file, "wb", buffering=0) as target:
        for number in range(size):
            start = number % 8 * MIB
            target.write(memoryview(BLOCK)[start:start + MIB])
            hurry(end)
        os.fsync(target.fileno())


def read(file, end):
    buffer = bytearray(MIB)
    with open(file, "rb", buffering=0) as source:
        while source.readinto(buffer):
            hurry(end)


def hurry(end):
    if time.monotonic() > end:
        raise TimeoutError("a file took too long")
