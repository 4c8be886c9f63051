"""A desk at which a person works with the assistants alone (session_main.cpp)."""

import os

from desk import Conversation, Desk
from lines import PATIENCE


class SessionDesk(Desk):
    def __init__(self, language="en", scale=1, dark=False, advanced=False, screen="1280x900x24"):
        self.options = ["--language", language]
        self.options += ["--dark"] if dark else []
        self.options += ["--advanced"] if advanced else []
        self.session = None
        super().__init__(scale, screen)

    def start_session(self):
        self.environment["NIMBREL_RESOURCES"] = os.environ["NIMBREL_RESOURCES"]
        self.session = Conversation(self, os.environ["NIMBREL_SESSION"], *self.options)
        self.lines = self.session.lines

    def say(self, *words):
        self.session.say(*words)

    def end_session(self):
        """Quits as the application would; its disks end with it."""
        if self.session is None:
            return
        program, self.session = self.session.program, None
        if program.poll() is None:
            program.stdin.close()
        status = program.wait(timeout=PATIENCE)
        if status != 0:
            raise AssertionError(f"the session ended with {status}: {self.story()}")

    def close(self):
        try:
            self.end_session()
        finally:
            super().close()
