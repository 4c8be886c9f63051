"""The disks under test.

The passthroughs are measured at their best: multi-threaded, as they are by default, where
that is no slower (name:single takes one thread). passthrough_ll gets a second of timeouts and the
page cache as the kernel sees fit (cache=auto). passthrough_hp has no option for its timeouts: it
lets the kernel keep names and attributes for a day and file content over opens, and it
uses the writeback cache, in which written data waits in memory. It is a limit for disks whose folder
nobody else changes, which ours isn't.

The encrypted peers have the weakest key derivation that they offer, so that neither its time nor its
memory counts as the disk's; cryfs offers none.
"""
import os
import pathlib
import shutil
import statistics
import subprocess
import time

import examples
from machine import cpu_seconds, memory, sh, timed, unmount, wait_until_mounted

PASSWORD = "a benchmark's password"
PEERS = ("gocryptfs", "securefs", "cryfs")


class Disk:
    """`plain` is where the work is done, `store` where the disk keeps it."""
    mounts = True

    def __init__(self, name, area):
        self.name, self.area = name, pathlib.Path(area) / name.replace(":", "-")
        self.store, self.plain = self.area / "store", self.area / "plain"
        for folder in (self.store, self.plain):
            folder.mkdir(parents=True)
        self.secret = self.area / "password"
        self.secret.write_text(PASSWORD + "\n", encoding="ascii")
        self.secret.chmod(0o600)
        self.process = None

    def create(self):
        """What is done once, before the first mount."""

    def command(self):
        """The program in the foreground, and its arguments."""
        raise NotImplementedError

    def environment(self):
        return None

    def standard_input(self):
        return b""

    def mount(self):
        self.launch()
        wait_until_mounted(self.plain, self.process)

    def launch(self):
        self.process = subprocess.Popen([str(part) for part in self.command()], stdin=subprocess.PIPE,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                        env=self.environment(), close_fds=False)
        self.process.stdin.write(self.standard_input())
        self.process.stdin.close()

    def seconds_to_first_listing(self):
        start = time.perf_counter()
        self.mount()
        os.listdir(self.plain)
        return time.perf_counter() - start

    def seconds_of_derivation(self):
        """What of that is the password's, and no disk's."""
        return 0.0

    def stop(self):
        if self.process is not None:
            unmount(self.plain)
            self.process.wait(30)
            self.process = None

    def cpu(self):
        return cpu_seconds(self.process.pid) if self.process else 0.0

    def peak(self):
        return memory(self.process.pid, "VmHWM") if self.process else 0.0


class Raw(Disk):
    mounts = False

    def mount(self):
        self.plain = self.store


class Ours(Disk):
    program = os.environ.get("NIMBRELCTL", str(examples.ROOT / "build/release/src/cli/nimbrelctl"))

    def __init__(self, name, area):
        super().__init__(name, area)
        self.folder = self.store / "folder.nmc"

    def create(self):
        sh([self.program, "create", self.folder, "--password-file", self.secret])

    def command(self):
        return [self.program, "mount", "--foreground", self.folder, self.plain, "--password-file",
                self.secret]

    def seconds_of_derivation(self):
        """The folder's iterations can't be lowered. One command derives the key to encipher one name,
        another only reads the folder's configuration: the difference of their medians."""
        names = [self.program, "encode", "--password-file", self.secret, self.folder, "name"]
        information = [self.program, "info", self.folder]
        pairs = [(timed(lambda: sh(names)), timed(lambda: sh(information))) for _ in range(15)]
        with_key, without = (statistics.median(times) for times in zip(*pairs))
        return max(0.0, with_key - without)


class Passthrough(Disk):
    def __init__(self, name, area):
        super().__init__(name, area)
        self.example, _, self.threads = name.partition(":")

    def create(self):
        examples.program(self.example)

    def command(self):
        program, single = examples.program(self.example), self.threads == "single"
        if self.example == "passthrough_hp":
            return [program, "--foreground", *(["--single"] if single else []), self.store, self.plain]
        source = {"passthrough_fh": f"modules=subdir,subdir={self.store}",
                  "passthrough_ll": f"source={self.store},cache=auto,timeout=1.0"}[self.example]
        return [program, "-f", *(["-s"] if single else []), "-o", source, self.plain]


class Gocryptfs(Disk):
    def create(self):
        sh(["gocryptfs", "-q", "-init", "-scryptn", "10", "-passfile", self.secret, self.store])

    def command(self):
        return ["gocryptfs", "-q", "-fg", "-passfile", self.secret, self.store, self.plain]


class Securefs(Disk):
    def create(self):
        sh(["securefs", "create", "--pbkdf", "pkcs5-pbkdf2-hmac-sha256", "--rounds", "1", "--pass",
            PASSWORD, self.store / "folder"])

    def command(self):
        return ["securefs", "mount", "--pass", PASSWORD, self.store / "folder", self.plain]


class Cryfs(Disk):
    def create(self):
        (self.store / "folder").mkdir()

    def command(self):
        return ["cryfs", "-f", self.store / "folder", self.plain]

    def environment(self):
        return dict(os.environ, CRYFS_FRONTEND="noninteractive", CRYFS_NO_UPDATE_CHECK="true",
                    CRYFS_LOCAL_STATE_DIR=str(self.area / "state"))

    def standard_input(self):
        return (PASSWORD + "\n").encode()


KINDS = {"raw": Raw, "passthrough_fh": Passthrough, "passthrough_ll": Passthrough,
         "passthrough_hp": Passthrough, "ours": Ours, "gocryptfs": Gocryptfs, "securefs": Securefs,
         "cryfs": Cryfs}


def available(name):
    if name.startswith("passthrough"):
        return examples.available(name)
    return name in ("raw", "ours") or shutil.which(name) is not None


def make(name, area):
    return KINDS[name.partition(":")[0]](name, area)


def install_peers():
    sh(["apt-get", "install", "-y", "-qq", "--no-install-recommends", *PEERS],
       env=dict(os.environ, DEBIAN_FRONTEND="noninteractive"))
    examples.fetch_passthrough_hp()
