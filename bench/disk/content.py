"""Works on the content of one file."""
import os
import random

from machine import MIB, drop_caches, timed

PIECE = 4096


def sequential(bench):
    """A big file of 1 MiB writes, closed (a writeback cache is written out), then read twice."""
    block, rows = os.urandom(MIB), bench.rows
    before = bench.disk.cpu()
    rows["sequential write"] = bench.size / timed(lambda: write_big(bench, block))
    middle = bench.disk.cpu()
    drop_caches()
    rows["sequential read, cold"] = bench.size / timed(lambda: read_big(bench))
    if bench.disk.mounts:
        rows["daemon CPU per GiB written"] = (middle - before) * 1024 / bench.size
        rows["daemon CPU per GiB read"] = (bench.disk.cpu() - middle) * 1024 / bench.size
    rows["sequential read, warm"] = bench.size / timed(lambda: read_big(bench))
    drop_caches()
    check_big(bench, block)
    bench.big.unlink()


def write_big(bench, block):
    with open(bench.big, "wb", buffering=0) as file:
        for _ in range(bench.size):
            if file.write(block) != len(block):
                raise RuntimeError("a short write")


def read_big(bench):
    with open(bench.big, "rb", buffering=0) as file:
        buffer = bytearray(MIB)
        while file.readinto(buffer):
            pass


def check_big(bench, block):
    with open(bench.big, "rb") as file:
        same = all(file.read(MIB) == block for _ in range(bench.size)) and not file.read(1)
    if not same:
        bench.note("a file doesn't read back as it was written")


def random_access(bench):
    """Each block is read once, so that no page cache helps; jobs are processes."""
    write_big(bench, os.urandom(MIB))
    blocks = bench.size * MIB // PIECE
    count = min(8000, blocks // 3)
    offsets = [block * PIECE for block in random.Random(7).sample(range(blocks), 2 * count)]
    bench.rows["4 KiB random read, 1 job"] = count / run_jobs(bench, [offsets[:count]], read_pieces)
    parts = [offsets[count + job::4] for job in range(4)]
    bench.rows["4 KiB random read, 4 jobs"] = count / run_jobs(bench, parts, read_pieces)
    bench.rows["4 KiB random write"] = count / run_jobs(bench, [offsets[:count]], write_pieces)
    check_pieces(bench, offsets[:count:50])
    bench.big.unlink()


def run_jobs(bench, parts, work):
    """Seconds of one process for each part, from the moment at which all have opened the file."""
    drop_caches()
    ready, gate = os.pipe(), os.pipe()
    children = [start_job(bench, part, work, ready, gate) for part in parts]
    for _ in children:
        os.read(ready[0], 1)
    seconds = timed(lambda: finish_jobs(children, gate))
    for end in (*ready, gate[0]):
        os.close(end)
    return seconds


def start_job(bench, part, work, ready, gate):
    child = os.fork()
    if child != 0:
        return child
    status = 1
    try:
        file = os.open(bench.big, os.O_RDWR)
        os.posix_fadvise(file, 0, 0, os.POSIX_FADV_RANDOM)
        os.close(gate[1])
        os.write(ready[1], b"r")
        os.read(gate[0], 1)  # ends when the parent closes the gate's other end
        work(file, part)
        os.close(file)
        status = 0
    finally:
        os._exit(status)


def finish_jobs(children, gate):
    os.close(gate[1])
    if any(os.waitpid(child, 0)[1] for child in children):
        raise RuntimeError("a job failed")


def read_pieces(file, offsets):
    for offset in offsets:
        if len(os.pread(file, PIECE, offset)) != PIECE:
            raise RuntimeError("a short read")


def write_pieces(file, offsets):
    """Up to where the bytes are in the store, also with a writeback cache."""
    for offset in offsets:
        os.pwrite(file, piece_at(offset), offset)
    os.fsync(file)


def piece_at(offset):
    return offset.to_bytes(8, "little") * (PIECE // 8)


def check_pieces(bench, offsets):
    drop_caches()
    with open(bench.big, "rb", buffering=0) as file:
        if any(os.pread(file.fileno(), PIECE, offset) != piece_at(offset) for offset in offsets):
            bench.note("random writes don't read back")


def appends(bench):
    for row, sync in (("append 10,000 x 100 B", False), ("append 10,000 x 100 B, fsync each", True)):
        log = bench.folder / ("log-synced" if sync else "log")
        bench.rows[row] = timed(lambda s=sync, l=log: append(l, s)) * 1000
        if log.read_bytes() != b"x" * 1_000_000:
            bench.note("appended data doesn't read back")


def append(log, sync):
    with open(log, "ab", buffering=0) as file:
        for _ in range(10000):
            file.write(b"x" * 100)
            if sync:
                os.fsync(file.fileno())
