"""Lines that a program tells, one event each, waited for by a test."""

import collections
import json
import queue
import threading
import time

PATIENCE = 60  # seconds; the machine may be loaded
_END = object()


class Lines:
    """Read on a thread of its own. A line is a word, a tab, and the rest; "answer" and "failed" are
    kept apart, for whoever asked. `report` tells more of the program where a test fails."""

    def __init__(self, stream, report=lambda: ""):
        self.report = report
        self.arrived = queue.Queue()
        self.answers = queue.Queue()
        self.waiting = collections.deque()  # what nobody has asked for yet
        self.seen = []
        self.ended = False
        threading.Thread(target=self._read, args=[stream], daemon=True).start()

    def _read(self, stream):
        try:
            for line in stream:
                self.take(line.rstrip("\n"))
        except (OSError, ValueError):
            pass  # the program has gone, and nobody waits for it any more
        self.arrived.put(_END)
        self.answers.put(_END)

    def take(self, line):
        word, _, rest = line.partition("\t")
        if word == "answer":
            self.answers.put(json.loads(rest)[0])
        elif word == "failed":
            self.answers.put(AssertionError(rest))
        else:
            self.arrived.put(line)

    def answer(self):
        """What the program answers to the question that it was just asked."""
        try:
            answer = self.answers.get(timeout=PATIENCE)
        except queue.Empty:
            answer = _END
        if answer is _END:
            self.answers.put(_END)
            raise AssertionError(f"no answer; came: {self.story()}")
        if isinstance(answer, AssertionError):
            raise answer
        return answer

    def _next(self, patience):
        """The next line; None after the last one, queue.Empty where none comes in time."""
        if self.waiting:
            return self.waiting.popleft()
        if self.ended:
            return None
        line = self.arrived.get(timeout=max(0.01, patience))
        if line is _END:
            self.ended = True
            return None
        return line

    def expect(self, what, which=None, patience=PATIENCE):
        """Waits for a line; what came before it is passed over. Returns its second word. `which`
        is that word, or its beginning before a star."""
        end = time.monotonic() + patience
        while True:
            try:
                line = self._next(end - time.monotonic())
            except queue.Empty:
                line = None
            if line is None:
                raise AssertionError(f"no {what} {which}; came: {self.story()}")
            self.seen.append(line)
            word, _, rest = line.partition("\t")
            if word == what and (which is None or rest == which or
                                 (which.endswith("*") and rest.startswith(which[:-1]))):
                return rest

    def all(self):
        """Everything that has been told so far and wasn't asked for."""
        self.quiet(0)
        lines = list(self.waiting)
        self.waiting.clear()
        self.seen += lines
        return lines

    def quiet(self, pause=0.3):
        """Windows come and go for a moment before one keeps the keyboard."""
        while not self.ended:
            try:
                line = self.arrived.get(timeout=pause) if pause else self.arrived.get_nowait()
            except queue.Empty:
                return
            if line is _END:
                self.ended = True
            else:
                self.waiting.append(line)

    def forget(self, what):
        self.waiting = collections.deque(
            line for line in self.waiting if not line.startswith(what))

    def story(self):
        """What happened, for a failed test's report."""
        self.quiet()
        self.seen += self.waiting
        self.waiting.clear()
        return f"{self.seen[-20:]}{' (ended)' if self.ended else ''}\n{self.report()}"
