"""One run of the real program, unmodified: an observer, which Qt loads, tells what it shows."""

import os
import signal
import socket
import subprocess
import threading
from pathlib import Path

from lines import PATIENCE, Lines

PASSED_ON = ("LD_PRELOAD", "QT_LOGGING_RULES", "GCOV_PREFIX", "GCOV_PREFIX_STRIP")


class ObserverSocket:
    """Where the observer calls. Its lines end when the program does, also when it never called."""

    def __init__(self, path):
        self.path = path
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(str(path))
        self.listener.listen(1)
        self.connection = None

    def __iter__(self):
        try:
            self.connection, _ = self.listener.accept()
        except OSError:
            return  # closed: nobody will call
        with self.connection, self.connection.makefile(encoding="utf-8", newline="\n") as lines:
            yield from lines

    def send(self, line):
        """True when somebody is there to read it."""
        try:
            self.connection.sendall(line.encode())
        except (AttributeError, OSError):  # it never called, or has hung up
            return False
        return True

    def close(self):
        """Lines that have come already are still read."""
        try:
            self.listener.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass
        self.listener.close()


class Application:
    """Made by ApplicationDesk.start_application. Unobserved it tells nothing."""

    def __init__(self, desk, program, arguments, observed, stdin):
        self.name = Path(program).name
        environment = self._environment(desk)
        self.socket = ObserverSocket(desk.folder / f"run/observer-{len(desk.programs)}")
        if observed:
            environment["QT_PLUGIN_PATH"] = os.environ["NIMBREL_OBSERVER"]
            environment["QT_QPA_GENERIC_PLUGINS"] = "nimbrelobserver"
            environment["NIMBREL_OBSERVER_SOCKET"] = str(self.socket.path)
        with open(desk.folder / f"{self.name}.out", "a", encoding="utf-8") as output:
            self.process = desk.run(*desk.wrapper, program, *arguments, environment=environment,
                                    log=self.name, stdin=stdin, stdout=output)
        self.lines = Lines(self.socket, lambda: self._report(desk))
        threading.Thread(target=self._hang_up, daemon=True).start()
        if observed:
            self.lines.expect("observing")

    @staticmethod
    def _environment(desk):
        passed_on = {name: os.environ[name] for name in PASSED_ON if name in os.environ}
        return {**desk.environment, **passed_on, "LANGUAGE": desk.language}

    def _report(self, desk):
        return f"status {self.process.poll()}\n{desk.log(self.name)}"

    def _hang_up(self):
        self.process.wait()
        self.socket.close()

    def ask(self, *words):
        """The observer's answer: see observer/ObserverSocket.h."""
        if not self.socket.send("\t".join(map(str, words)) + "\n"):
            raise AssertionError(f"{self.name} can't be seen; came: {self.lines.story()}")
        return self.lines.answer()

    @property
    def running(self):
        return self.process.poll() is None

    def wait(self, patience=PATIENCE):
        """Waits for its end; its status, negative for a signal's number."""
        try:
            return self.process.wait(timeout=patience)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"{self.name} doesn't end; came: {self.lines.story()}") from None

    def terminate(self):
        """As the end of a desktop session does."""
        self.process.send_signal(signal.SIGTERM)
        return self.wait()

    def kill(self):
        self.process.kill()
        return self.wait()
