"""Works on many files."""
import os
import random
import subprocess

from machine import drop_caches, sh, timed

OLD = 1_500_000_000  # seconds; the archive's files are that old, so that lost times show


def small_files(bench):
    folder, content = bench.folder / "small", os.urandom(4096)
    folder.mkdir()
    names = [str(folder / f"file-{i}") for i in range(2000)]

    def create():
        for name in names:
            with open(name, "wb", buffering=0) as file:
                file.write(content)

    def read():
        for name in names:
            with open(name, "rb", buffering=0) as file:
                if file.read() != content:
                    bench.note("a small file doesn't read back")

    bench.rows["create 2,000 files of 4 KiB"] = timed(create) * 1000
    drop_caches()
    bench.rows["stat 2,000, cold"] = timed(lambda: [os.stat(name) for name in names]) * 1000
    drop_caches()
    bench.rows["read 2,000, cold"] = timed(read) * 1000
    bench.rows["remove 2,000"] = timed(lambda: [os.unlink(name) for name in names]) * 1000


def tree(bench):
    folder = bench.folder / "tree"
    folder.mkdir()
    untar = ["tar", "xf", bench.samples / "tree.tar", "-C", folder]
    bench.rows["untar 4,000 files"] = timed(lambda: run_tar(bench, untar)) * 1000
    drop_caches()
    grep = ["grep", "-rq", "no such text anywhere", folder]
    bench.rows["grep 4,000, cold"] = timed(lambda: subprocess.run(grep, check=False)) * 1000
    check_tree(bench, folder)
    bench.rows["rm -rf 4,000"] = timed(lambda: sh(["rm", "-rf", folder])) * 1000


def run_tar(bench, command):
    """Where times can't be set tar complains; the work is done all the same."""
    if subprocess.run(command, check=False, stderr=subprocess.DEVNULL, timeout=300).returncode != 0:
        bench.note("tar fails")


def check_tree(bench, folder):
    for name, content in sample_files(4000):
        if (folder / name).read_bytes() != content:
            bench.note("an unpacked file doesn't read back")
        if int((folder / name).stat().st_mtime) != OLD:
            bench.note("tar's modification times are lost")


def listing(bench):
    folder = bench.folder / "many"
    folder.mkdir()
    for i in range(10000):
        os.close(os.open(folder / f"entry-{i}", os.O_CREAT | os.O_WRONLY))
    drop_caches()
    bench.rows["ls -l of 10,000, cold"] = timed(lambda: list_long(bench, folder)) * 1000
    bench.rows["ls -l of 10,000, warm"] = timed(lambda: list_long(bench, folder)) * 1000


def list_long(bench, folder):
    if sh(["ls", "-l", folder]).count("\n") != 10001:
        bench.note("ls doesn't show all files")


def sample_files(count):
    generator = random.Random(3)
    for i in range(count):
        yield f"d{i % 80}/file-{i}.txt", generator.randbytes(generator.choice((200, 2000, 9000)))


def make_sample(folder):
    for name, content in sample_files(4000):
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        os.utime(path, (OLD, OLD))


def make_archive(samples):
    make_sample(samples / "tree")
    sh(["tar", "cf", samples / "tree.tar", "-C", samples / "tree", "."])
