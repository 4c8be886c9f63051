"""A real desktop for one test: display, window manager, session bus, keyring, home folder."""

import collections
import os
import queue
import shutil
import subprocess
import tempfile
import threading
import time
from pathlib import Path

# What a GNOME desktop of this Debian writes in; without a desktop it would be another font.
FONTS = """<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd"><fontconfig>
<match target="pattern"><edit name="family" mode="prepend" binding="strong"><string>Cantarell</string>
</edit></match></fontconfig>
"""
PATIENCE = 60  # seconds; the machine may be loaded


class Desk:
    """Everything in a temporary home folder; close() ends it all and unmounts what is left."""

    def __init__(self, language="en", scale=1, dark=False, advanced=False, screen="1280x900x24"):
        self.options = ["--language", language]
        self.options += ["--dark"] if dark else []
        self.options += ["--advanced"] if advanced else []
        self.folder = Path(tempfile.mkdtemp(prefix="nimbrel-display-"))
        self.home = self.folder / "home"
        self.programs = []
        self.session = None
        self.lines = queue.Queue()
        self.waiting = collections.deque()  # lines that nobody has asked for yet
        self.seen = []
        try:
            self._start(scale, screen)
        except BaseException:
            self.close()
            raise

    def _start(self, scale, screen):
        for name in ("Documents", "Desktop", ".config", ".local/state", ".local/share", ".cache"):
            (self.home / name).mkdir(parents=True)
        (self.folder / "run").mkdir(mode=0o700)
        fonts = self.home / ".config/fontconfig/fonts.conf"
        fonts.parent.mkdir()
        fonts.write_text(FONTS, encoding="utf-8")
        self.environment = {
            "PATH": "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
            "HOME": str(self.home), "XDG_CONFIG_HOME": str(self.home / ".config"),
            "XDG_STATE_HOME": str(self.home / ".local/state"),
            "XDG_DATA_HOME": str(self.home / ".local/share"),
            "XDG_CACHE_HOME": str(self.home / ".cache"),
            "XDG_RUNTIME_DIR": str(self.folder / "run"), "LC_ALL": "C.UTF-8",
            "QT_QPA_PLATFORM": "xcb", "QT_SCALE_FACTOR": str(scale), "NO_AT_BRIDGE": "1",
            "NIMBREL_RESOURCES": os.environ["NIMBREL_RESOURCES"],
            **{name: value for name, value in os.environ.items() if name.startswith("ASAN_")},
        }
        self._start_display(screen)
        self._start_bus()
        self._start_keyring()
        self._start_window_manager()

    def _run(self, *command, **options):
        with open(self.folder / f"{Path(command[0]).name}.log", "a", encoding="utf-8") as log:
            program = subprocess.Popen(command, env=self.environment, text=True, stderr=log,
                                       **options)
        self.programs.append(program)
        return program

    def log(self, name):
        path = self.folder / f"{name}.log"
        return path.read_text(errors="replace")[-2000:] if path.exists() else ""

    def _start_display(self, screen):
        reading, writing = os.pipe()
        display = self._run("Xvfb", "-displayfd", str(writing), "-screen", "0", screen, "-nolisten",
                            "tcp", "-noreset", pass_fds=[writing], stdout=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError(f"Xvfb doesn't start: {display.wait()} {self.log('Xvfb')}")
        self.environment["DISPLAY"] = f":{number}"
        self.until(lambda: self._has("xprop", "-root"), "the display")

    def _has(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, timeout=PATIENCE,
                              check=False).returncode == 0

    def _start_bus(self):
        configuration = self.folder / "bus.conf"
        configuration.write_text(
            '<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN" '
            '"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd"><busconfig>'
            f"<type>session</type><listen>unix:path={self.folder}/run/bus</listen>"
            '<policy context="default"><allow send_destination="*" eavesdrop="true"/>'
            '<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>')
        bus = self._run("dbus-daemon", f"--config-file={configuration}", "--nofork",
                        "--print-address", stdout=subprocess.PIPE)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def _start_keyring(self):
        keyring = self._run("gnome-keyring-daemon", "--foreground", "--unlock",
                            "--components=secrets", stdin=subprocess.PIPE,
                            stdout=subprocess.DEVNULL)
        keyring.stdin.write("\n")  # its password; without a line it would ask
        keyring.stdin.close()
        self.until(lambda: "org.freedesktop.secrets" in self._bus_names(), "the keyring")

    def _bus_names(self):
        return subprocess.run(["dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                               "/", "org.freedesktop.DBus.ListNames"], env=self.environment,
                              capture_output=True, text=True, check=False).stdout

    def _start_window_manager(self):
        self._run("openbox", "--sm-disable")
        self.until(lambda: self._has("xdotool", "getactivewindow") or "window id" in
                   self.tool("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), "the window manager")

    def until(self, condition, what, patience=PATIENCE):
        """Waits until `condition` holds."""
        end = time.monotonic() + patience
        while not condition():
            if time.monotonic() > end:
                raise TimeoutError(f"{what} didn't come; so far: {self._story()}")
            time.sleep(0.05)

    def tool(self, *command, check=True):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True,
                              check=check, timeout=PATIENCE).stdout

    # The session and its person.

    def _story(self):
        """What happened, for a failed test's report."""
        self._quiet()
        self.seen += self.waiting
        return f"{self.seen[-20:]}\n{self.log('nimbrel_session')}"

    def start_session(self):
        self.session = self._run(os.environ["NIMBREL_SESSION"], *self.options,
                                 stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        threading.Thread(target=self._read, args=[self.session], daemon=True).start()
        self.expect("ready")

    def _read(self, session):
        for line in session.stdout:
            self.lines.put(line.rstrip("\n"))

    def say(self, *words):
        self.session.stdin.write("\t".join(map(str, words)) + "\n")
        self.session.stdin.flush()

    def expect(self, what, which=None):
        """Waits for a line; what came before it is passed over. Returns its second word."""
        end = time.monotonic() + PATIENCE
        while True:
            try:
                line = (self.waiting.popleft() if self.waiting
                        else self.lines.get(timeout=max(0.01, end - time.monotonic())))
            except queue.Empty:
                raise AssertionError(f"no {what} {which}; came: {self._story()}") from None
            self.seen.append(line)
            word, _, rest = line.partition("\t")
            if word == what and (which is None or rest == which or
                                 (which.endswith("*") and rest.startswith(which[:-1]))):
                return rest

    def _quiet(self):
        """Windows come and go for a moment before one keeps the keyboard."""
        while True:
            try:
                self.waiting.append(self.lines.get(timeout=0.3))
            except queue.Empty:
                return

    def key(self, *keys):
        self._quiet()
        self.tool("xdotool", "key", "--delay", "30", *keys)

    def tab_to(self, control):
        """Tab by Tab, as the keyboard goes."""
        passed = []
        while control not in passed:
            if len(passed) > 20:
                raise AssertionError(f"Tab doesn't reach {control}: {passed}")
            self._quiet()
            self.waiting = collections.deque(
                line for line in self.waiting if not line.startswith("focus"))
            self.key("Tab")
            passed.append(self.expect("focus", "*"))

    def type(self, text):
        self._quiet()
        self.tool("xdotool", "type", "--delay", "15", text)

    def picture(self, path):
        """The whole active window, as it stands on the display."""
        time.sleep(0.3)  # the last paint
        window = self.tool("xdotool", "getactivewindow").strip()
        path.parent.mkdir(parents=True, exist_ok=True)
        self.tool("import", "-window", window, str(path))

    def end_session(self):
        """Quits as the application would; its disks end with it."""
        if self.session is None:
            return
        if self.session.poll() is None:
            self.session.stdin.close()
        status = self.session.wait(timeout=PATIENCE)
        self.session = None
        if status != 0:
            raise AssertionError(f"the session ended with {status}: {self._story()}")

    def mounts(self):
        return [line.split(" ")[4] for line in Path("/proc/self/mountinfo").read_text().splitlines()
                if line.split(" ")[4].startswith(str(self.folder))]

    @staticmethod
    def _end(program):
        program.terminate()
        try:
            program.wait(timeout=10)
        except subprocess.TimeoutExpired:
            program.kill()
            program.wait()
        for pipe in (program.stdin, program.stdout):
            if pipe:
                pipe.close()

    def close(self):
        try:
            self.end_session()
        finally:
            for program in reversed(self.programs):
                self._end(program)
            for mount in self.mounts():
                subprocess.run(["fusermount3", "-u", "-z", mount], check=False)
            shutil.rmtree(self.folder, ignore_errors=True)
