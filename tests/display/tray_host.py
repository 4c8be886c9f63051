"""A desktop's tray of the newer kind: StatusNotifier items on the session bus."""

from desk import Service


class TrayHost:
    """Runs from the start; stop() and start() take it away and bring it back, as a panel that
    crashes or comes late."""

    def __init__(self, desk, watcher_alone=False):
        self.desk = desk
        self.service = None
        self.start(watcher_alone)

    def start(self, watcher_alone=False):
        """A watcher alone shows nothing until register_host: its panel is still to come."""
        self.service = Service(self.desk, "tray_host", *["watcher"] * watcher_alone)

    def register_host(self):
        self.service.ask("register-host")

    def stop(self):
        self.service.stop()
        self.service = None

    def expect_item(self):
        """Waits for an icon; its name on the bus."""
        self.desk.until(self.items, "the tray's icon")
        return self.items()[-1]

    def expect_changed(self, signal):
        """Waits for the icon's NewIcon, NewToolTip, NewStatus, or its menu's LayoutUpdated."""
        self.service.expect("changed", signal)

    def items(self):
        return self.service.ask("items")

    def properties(self):
        """Id, Title, Status, ToolTip, IconName, IconPixmap ([width, height, hash] each)..."""
        return self.service.ask("properties")

    def icon(self):
        """What tells one picture of the icon from another."""
        properties = self.properties()
        return [properties["IconName"], properties["IconPixmap"]]

    def click(self):
        """The left button."""
        self.service.ask("activate", 1200, 10)

    def middle_click(self):
        self.service.ask("secondary", 1200, 10)

    def menu(self):
        """What a right click shows: label, enabled, checked, separator, entries of each."""
        return [entry for entry in self.service.ask("menu") if entry["visible"]]

    def labels(self):
        """The menu in short: "-" is a separator, "(off)" stands behind a disabled entry."""
        return ["-" if entry["separator"] else
                entry["label"] + ("" if entry["enabled"] else " (off)") for entry in self.menu()]

    def choose(self, label):
        """Opens the menu and clicks the entry; a label with a star at its end is a beginning."""
        for entry in self.menu():
            if entry["label"] == label or (label.endswith("*") and
                                           entry["label"].startswith(label[:-1])):
                if not entry["enabled"]:
                    raise AssertionError(f"{label} is disabled")
                self.service.ask("choose", entry["id"])
                return
        raise AssertionError(f"no {label} in {self.labels()}")
