"""What the works need of the machine: caches, mounts, processes, a memory area."""
import contextlib
import os
import pathlib
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

MIB = 1 << 20
CLOCK_OF_PROCESS = 2  # CPUCLOCK_SCHED


def sh(command, timeout=300, **options):
    """Runs a command that must succeed; what it printed to standard error goes with the error."""
    result = subprocess.run([str(part) for part in command], stdin=subprocess.DEVNULL, check=False,
                            capture_output=True, timeout=timeout, **options)
    if result.returncode != 0:
        raise RuntimeError(f"{command}: {result.stderr.decode(errors='replace').strip()}")
    return result.stdout.decode(errors="replace")


def timed(work):
    start = time.perf_counter()
    work()
    return time.perf_counter() - start


def drop_caches():
    os.sync()
    pathlib.Path("/proc/sys/vm/drop_caches").write_text("3", encoding="ascii")


def need_root():
    if os.geteuid() != 0:
        sys.exit("Run as root: disks are mounted, caches are dropped between works.")


def go_apart():
    """Into a mount namespace of its own, where there are some (a bare chroot has none): a program
    that makes one meanwhile would keep our disks alive behind their unmount, and so would we do with
    the disks of others. What is left behind goes with the namespace."""
    if os.environ.get("NIMBREL_BENCH_APART") != "1":
        os.environ["NIMBREL_BENCH_APART"] = "1"
        if subprocess.run(["unshare", "--mount", "true"], capture_output=True,
                          check=False).returncode != 0:
            return
        os.execvp("unshare", ["unshare", "--mount", sys.executable, *sys.argv])
    for line in pathlib.Path("/proc/self/mounts").read_text(encoding="utf-8").splitlines():
        _, mount, kind, _ = line.split(" ", 3)
        if kind.startswith("fuse"):
            subprocess.run(["umount", "--lazy", mount], check=False, capture_output=True)


def mounts_in(table):
    table.seek(0)
    return [line.split()[4].decode() for line in table.read().splitlines()]


def mounts_below(folder):
    """Deepest first."""
    with open("/proc/self/mountinfo", "rb", buffering=0) as table:
        return sorted((m for m in mounts_in(table) if f"{m}/".startswith(f"{folder}/")), reverse=True)


def wait_until_mounted(path, process, seconds=60):
    """The kernel wakes us when the table of mounts changes, so this costs no polling interval."""
    end = time.monotonic() + seconds
    with open("/proc/self/mountinfo", "rb", buffering=0) as table:
        watch = select.poll()
        watch.register(table, select.POLLPRI | select.POLLERR)
        while str(path) not in mounts_in(table):
            if time.monotonic() > end or process.poll() is not None:
                raise RuntimeError(f"{path} wasn't mounted by {process.args}")
            watch.poll(20)


def unmount(path, seconds=20):
    """A cache that is being written, or a program that looks around, keeps a disk busy for a while."""
    end = time.monotonic() + seconds
    while subprocess.run(["umount", str(path)], check=False, capture_output=True,
                         timeout=60).returncode != 0:
        if time.monotonic() > end:
            raise RuntimeError(f"{path} stays busy")
        time.sleep(0.05)


def family(pid):
    """A process and its descendants."""
    members = [pid]
    for member in members:
        with contextlib.suppress(OSError):
            text = pathlib.Path(f"/proc/{member}/task/{member}/children").read_text(encoding="ascii")
            members += [int(child) for child in text.split()]
    return members


def cpu_seconds(pid):
    """User and system, to the nanosecond, with threads that have ended: the process's CPU clock."""
    seconds = 0.0
    for member in family(pid):
        with contextlib.suppress(OSError):
            seconds += time.clock_gettime((~member << 3) | CLOCK_OF_PROCESS)
    return seconds


def memory(pid, field):
    """A field of /proc/PID/status (VmHWM: the peak, VmRSS: now) in MiB. A disk's smaller processes
    count with what isn't a file's: program and libraries are in memory once, not once a process."""
    sizes = sorted((status(member) for member in family(pid)), key=lambda found: found.get(field, 0))
    others = sum(found.get("RssAnon", 0) for found in sizes[:-1])
    return (sizes[-1].get(field, 0) + others) / 1024


def status(pid):
    """Sizes in KiB by field; none of a process that has ended."""
    with contextlib.suppress(OSError):
        lines = pathlib.Path(f"/proc/{pid}/status").read_text(encoding="utf-8").splitlines()
        return {line.split(":")[0]: int(line.split()[1]) for line in lines if line.endswith(" kB")}
    return {}


def free_below(folder):
    for mount in mounts_below(folder):
        subprocess.run(["umount", "--lazy", mount], check=False, capture_output=True, timeout=60)


@contextlib.contextmanager
def memory_area(gibibytes=8):
    """A folder in memory, gone at the end together with all that is mounted in it."""
    area = pathlib.Path(tempfile.mkdtemp(prefix="nimbrel-bench-"))
    try:
        sh(["mount", "-t", "tmpfs", "-o", f"size={gibibytes}g,mode=755", "tmpfs", area])
        yield area
    finally:
        free_below(area)
        shutil.rmtree(area, ignore_errors=True)


def run_apart(work, seconds):
    """Runs `work` in a process group of its own and kills the group when it ends, fails or takes
    longer: a disk that hangs hangs its own round only. Tells what went wrong, or nothing."""
    sys.stdout.flush()
    sys.stderr.flush()
    child = os.fork()
    if child == 0:
        os.setpgid(0, 0)
        status = 1
        try:
            work()
            status = 0
        except BaseException as error:  # pylint: disable=broad-except
            print(f"failed: {error!r}", file=sys.stderr)
        finally:
            sys.stderr.flush()
            os._exit(status)
    end = time.monotonic() + seconds
    ended = False
    try:
        while time.monotonic() < end:
            pid, status = os.waitpid(child, os.WNOHANG)
            if pid:
                ended = True
                return None if status == 0 else "failed"
            time.sleep(0.05)
        return "took too long"
    finally:
        with contextlib.suppress(ProcessLookupError, PermissionError):
            os.killpg(child, signal.SIGKILL)
        if not ended:
            os.waitpid(child, 0)
