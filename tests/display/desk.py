"""A real desktop for one test: display, window manager, session bus, keyring, home folder."""

import os
import shutil
import subprocess
import tempfile
import time
from pathlib import Path

from lines import PATIENCE, Lines

# What a GNOME desktop of this Debian writes in; without a desktop it would be another font.
FONTS = """<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd"><fontconfig>
<match target="pattern"><edit name="family" mode="prepend" binding="strong"><string>Cantarell</string>
</edit></match></fontconfig>
"""
BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd"><busconfig><type>session</type>
<listen>unix:path={path}</listen><policy context="default"><allow send_destination="*"
eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>
"""
SANITIZERS = ("ASAN_", "LSAN_", "TSAN_", "UBSAN_")
# Debian's own, which has the modules dbus and gi; another one may stand before it in the path.
SYSTEM_PYTHON = "/usr/bin/python3"


class Desk:
    """Everything in a temporary home folder; close() ends it all and unmounts what is left."""

    def __init__(self, scale=1, screen="1280x900x24", bus=True, keyring=True):
        self.folder = Path(tempfile.mkdtemp(prefix="nimbrel-display-"))
        self.home = self.folder / "home"
        self.programs = []
        self.lines = None  # of the program at which the person sits
        try:
            self._make_home()
            self._set_environment(scale)
            self._start_display(screen)
            if bus:
                self._start_bus()
            if bus and keyring:
                self.start_keyring()
            self._start_window_manager()
        except BaseException:
            self.close()
            raise

    def _make_home(self):
        for name in ("Documents", "Desktop", ".config", ".local/state", ".local/share", ".cache"):
            (self.home / name).mkdir(parents=True)
        (self.folder / "run").mkdir(mode=0o700)
        fonts = self.home / ".config/fontconfig/fonts.conf"
        fonts.parent.mkdir()
        fonts.write_text(FONTS, encoding="utf-8")

    def _set_environment(self, scale):
        self.environment = {
            "PATH": "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
            "HOME": str(self.home), "XDG_CONFIG_HOME": str(self.home / ".config"),
            "XDG_STATE_HOME": str(self.home / ".local/state"),
            "XDG_DATA_HOME": str(self.home / ".local/share"),
            "XDG_CACHE_HOME": str(self.home / ".cache"),
            "XDG_RUNTIME_DIR": str(self.folder / "run"), "LC_ALL": "C.UTF-8",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder}/run/bus",
            "QT_QPA_PLATFORM": "xcb", "QT_SCALE_FACTOR": str(scale), "NO_AT_BRIDGE": "1",
            **{name: value for name, value in os.environ.items() if name.startswith(SANITIZERS)},
        }

    def run(self, *command, environment=None, log=None, **options):
        """Starts a program of this desk; what it complains of is its log."""
        with open(self._log(log or Path(command[0]).name), "a", encoding="utf-8") as complaints:
            program = subprocess.Popen(list(map(str, command)), text=True, stderr=complaints,
                                       env=environment or self.environment, **options)
        self.programs.append(program)
        return program

    def _log(self, name):
        return self.folder / f"{name}.log"

    def log(self, name):
        """The end of what a program has complained of."""
        path = self._log(name)
        return path.read_text(errors="replace")[-2000:] if path.exists() else ""

    def output(self, name):
        """What a program that start_application started has written."""
        return (self.folder / f"{name}.out").read_text(encoding="utf-8", errors="replace")

    def _start_display(self, screen):
        reading, writing = os.pipe()
        display = self.run("Xvfb", "-displayfd", str(writing), "-screen", "0", screen, "-nolisten",
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
        configuration.write_text(BUS.format(path=self.folder / "run/bus"))
        bus = self.run("dbus-daemon", f"--config-file={configuration}", "--nofork",
                       "--print-address", stdout=subprocess.PIPE)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def start_keyring(self):
        keyring = self.run("gnome-keyring-daemon", "--foreground", "--unlock",
                           "--components=secrets", stdin=subprocess.PIPE,
                           stdout=subprocess.DEVNULL)
        keyring.stdin.write("\n")  # its password; without a line it would ask
        keyring.stdin.close()
        self.until(lambda: "org.freedesktop.secrets" in self.bus_names(), "the keyring")

    def bus_names(self):
        return self.tool("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                         "/", "org.freedesktop.DBus.ListNames", check=False)

    def _start_window_manager(self):
        self.run("openbox", "--sm-disable", stdout=subprocess.DEVNULL)
        self.until(lambda: self._has("xdotool", "getactivewindow") or "window id" in
                   self.tool("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), "the window manager")

    def until(self, condition, what, patience=PATIENCE):
        """Waits until `condition` holds, and returns what it says."""
        end = time.monotonic() + patience
        while not (result := condition()):
            if time.monotonic() > end:
                raise TimeoutError(f"{what} didn't come; so far: {self.story()}")
            time.sleep(0.05)
        return result

    def tool(self, *command, check=True):
        return subprocess.run(list(map(str, command)), env=self.environment, capture_output=True,
                              text=True, check=check, timeout=PATIENCE).stdout

    # The person.

    @property
    def seen(self):
        return self.lines.seen

    def story(self):
        return self.lines.story() if self.lines else "nothing was started"

    def expect(self, what, which=None, patience=PATIENCE):
        """Waits for a line; what came before it is passed over. Returns its second word."""
        return self.lines.expect(what, which, patience)

    def expect_none(self, what, seconds=1):
        """No such line comes for a while, nor stands among those that nobody asked for."""
        time.sleep(seconds)
        came = [line for line in self.lines.all() if line.partition("\t")[0] == what]
        if came:
            raise AssertionError(f"unexpected: {came}; before: {self.story()}")

    def quiet(self):
        if self.lines:
            self.lines.quiet()

    def key(self, *keys):
        self.quiet()
        self.tool("xdotool", "key", "--delay", "30", *keys)

    def tab_to(self, control):
        """Tab by Tab, as the keyboard goes."""
        passed = []
        while control not in passed:
            if len(passed) > 20:
                raise AssertionError(f"Tab doesn't reach {control}: {passed}")
            self.quiet()
            self.lines.forget("focus")
            self.key("Tab")
            passed.append(self.expect("focus", "*"))

    def type(self, text):
        self.quiet()
        self.tool("xdotool", "type", "--delay", "15", text)

    def picture(self, path):
        """The whole active window, as it stands on the display."""
        time.sleep(0.3)  # the last paint
        window = self.tool("xdotool", "getactivewindow").strip()
        path.parent.mkdir(parents=True, exist_ok=True)
        self.tool("import", "-window", window, str(path))

    def mounts(self):
        return [line.split(" ")[4] for line in Path("/proc/self/mountinfo").read_text().splitlines()
                if line.split(" ")[4].startswith(str(self.folder))]

    @staticmethod
    def end(program):
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
        for program in reversed(self.programs):
            self.end(program)
        for mount in self.mounts():
            subprocess.run(["fusermount3", "-u", "-z", mount], check=False)
        shutil.rmtree(self.folder, ignore_errors=True)


class Conversation:
    """A program with which a test talks: commands in, lines out."""

    def __init__(self, desk, *command, log=None):
        self.desk = desk
        name = log or Path(command[0]).name
        self.program = desk.run(*command, log=name, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.lines = Lines(self.program.stdout, lambda: desk.log(name))
        self.lines.expect("ready")

    def say(self, *words):
        self.program.stdin.write("\t".join(map(str, words)) + "\n")
        self.program.stdin.flush()

    def ask(self, *words):
        self.say(*words)
        return self.lines.answer()

    def expect(self, what, which=None, patience=PATIENCE):
        return self.lines.expect(what, which, patience)

    def stop(self):
        self.desk.end(self.program)


class Service(Conversation):
    """A part of the desktop on the session bus; services/NAME_main.py."""

    def __init__(self, desk, name, *arguments):
        program = Path(__file__).with_name("services") / f"{name}_main.py"
        super().__init__(desk, SYSTEM_PYTHON, "-B", program, *arguments, log=name)
