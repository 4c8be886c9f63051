"""One run of the application, unobserved, and the person who keeps it busy."""

import os
import time

from application_desk import ApplicationDesk
from earlier_runs import Volume, leave_volumes
from holdings import (COLUMNS, Holdings, cpu_seconds, descriptor_kinds, growth, slope, wakeups,
                      wakeups_since)

LABELS = ("Work", "Diary", "Photos")
WARM_UP = 5  # rounds: what is loaded at the first use is there behind them
NOTED = 50
REFUSED = 10
MOST_CLICKS_AGAIN = 50
CONTENT = os.urandom(256 * 1024)


class Soak:
    def __init__(self):
        self.clicks_again = 0
        self.desk = ApplicationDesk(tray="sni")
        try:
            self._start()
        except BaseException:
            self.desk.close()
            raise

    def _start(self):
        desk = self.desk
        self.volumes = [Volume(desk, label, automount=False) for label in LABELS]
        leave_volumes(desk, *self.volumes, advanced="true")
        for volume in self.volumes:
            volume.store_password()
        self.application = desk.start_application(observed=False)
        desk.tray.expect_item()
        self.holdings = Holdings(self.application.process.pid, str(desk.folder))

    # What the person does.

    def mount(self):
        self.choose_for_all("Mount", "Unmount")

    def choose_for_all(self, entry, opposite):
        """All at once. A click on a menu that is made anew in the same moment hits nothing, so who
        waits for its outcome in vain clicks again."""
        for volume in self.volumes:
            self.desk.tray.choose(f"{entry} {volume.label}")
        for volume in self.volumes:
            while not self.has_come(f"{opposite} {volume.label}"):
                self.clicks_again += 1
                self.desk.tray.choose(f"{entry} {volume.label}")

    def has_come(self, entry, patience=2):
        end = time.monotonic() + patience
        while entry not in self.desk.tray.labels():
            if time.monotonic() > end:
                if self.clicks_again > MOST_CLICKS_AGAIN:
                    raise TimeoutError(f"no {entry} in {self.desk.tray.labels()}")
                return False
            time.sleep(0.02)
        return True

    def unmount(self):
        self.choose_for_all("Unmount", "Mount")
        if self.desk.mounts():
            raise AssertionError(f"still mounted: {self.desk.mounts()}")

    def use(self):
        for volume in self.volumes:
            path = volume.disk / "copy"
            path.write_bytes(CONTENT)
            if path.read_bytes() != CONTENT:
                raise AssertionError(f"{path} isn't what was written")

    def alerts(self):
        return self.desk.tool("xdotool", "search", "--onlyvisible", "--name", "^Nimbrel$",
                              check=False).split()

    def be_refused(self):
        """While the file is being written its disk stays, whatever the menu is told."""
        volume = self.volumes[0]
        with (volume.disk / "held").open("wb") as file:
            file.write(CONTENT)
            file.flush()
            self.desk.tray.choose(f"Unmount {volume.label}")
            self.desk.until(self.alerts, "the alert")
            file.write(CONTENT)
            self.dismiss()
        if (volume.disk / "held").read_bytes() != CONTENT * 2:
            raise AssertionError("what was written under a refused unmount is lost")

    def dismiss(self):
        def is_gone():
            self.desk.tool("xdotool", "key", "Return")
            time.sleep(0.1)
            return not self.alerts()
        time.sleep(0.3)  # a window takes the keyboard a moment after it is there
        self.desk.until(is_gone, "the alert's end")

    def round(self, number):
        self.mount()
        self.use()
        if number % REFUSED == 0:
            self.be_refused()
        self.unmount()

    # What is noted.

    def note(self, what):
        row = self.holdings.now()
        print(f"{what:>12} " + " ".join(f"{row[column]:>9}" for column in COLUMNS), flush=True)
        return row

    def run(self, rounds, rest):
        """Tells what has grown."""
        print(" " * 12, " ".join(f"{column:>9}" for column in COLUMNS))
        self.note("start")
        for number in range(WARM_UP):
            self.round(number)
        time.sleep(rest)
        before, kinds = self.note("rested"), descriptor_kinds(self.holdings.process)
        rows, began = [], time.monotonic()
        for number in range(1, rounds + 1):
            self.round(number)
            if number % NOTED == 0 or number == rounds:
                rows.append((number, self.note(str(number))))
        each = (time.monotonic() - began) / rounds
        time.sleep(rest)
        after = self.note("rested")
        for kind, count in (descriptor_kinds(self.holdings.process) - kinds).items():
            print(f"new descriptors: {count} {kind}")
        per_round = (after["anon KiB"] - before["anon KiB"]) / rounds
        print(f"{each:.2f} s a round, {self.clicks_again} clicks again; own memory between the "
              f"rests {per_round:+.2f} KiB a round, along the rounds "
              f"{slope(rows, 'anon KiB'):+.2f}")
        return growth(before, after)

    def idle(self, minutes):
        self.mount()
        time.sleep(5)  # what a mount brings about
        process, keeper = self.application.process.pid, self.holdings.keeper
        before = [(cpu_seconds(one), wakeups(one)) for one in (process, keeper)]
        time.sleep(minutes * 60)
        print(f"{minutes:g} minutes idle with {len(self.volumes)} disks:")
        for name, one, (seconds, wakes) in zip(("program", "keeper"), (process, keeper), before):
            spent = cpu_seconds(one) - seconds
            print(f"  {name}: {spent * 1000:.0f} ms of processor time "
                  f"({spent / minutes / 60:.4%} of one), "
                  f"{wakeups_since(one, wakes) / minutes / 60:.2f} wake-ups a second")
        self.note("idle")
        self.unmount()

    def end(self):
        return self.application.terminate()
