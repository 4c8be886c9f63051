"""The tables: medians of the rounds, then ours against the best of the others."""
import statistics

from disks import PEERS
from rows import AHEAD, ROWS


class Report:
    """`results` holds a list of rounds for each disk, each with its rows and notes."""

    def __init__(self, results):
        self.results, self.names = results, list(results)
        self.rows = [row for row in ROWS if any(self.values(name, row) for name in self.names)]

    def values(self, name, row):
        return [found["rows"][row.name] for found in self.results[name] if row.name in found["rows"]]

    def median(self, name, row):
        values = self.values(name, row)
        return statistics.median(values) if values else None

    def medians(self, spread):
        yield "| work | " + " | ".join(self.names) + " |"
        yield "|---|" + "--:|" * len(self.names)
        for row in self.rows:
            cells = [self.cell(name, row, spread) for name in self.names]
            yield f"| {row.name}, {row.unit} | " + " | ".join(cells) + " |"

    def cell(self, name, row, spread):
        values = self.values(name, row)
        if not values:
            return "-"
        text = row.text(statistics.median(values))
        return f"{text} ({row.text(min(values))}-{row.text(max(values))})" if spread else text

    def footnotes(self):
        for name in self.names:
            notes = sorted({note for found in self.results[name] for note in found["notes"]})
            for note in notes:
                yield f"- {name}: {note}."

    def goals(self):
        """How many times as good as the best of the others; over 1 is better."""
        if not any(self.median("ours", row) for row in self.rows if "ours" in self.names):
            return
        yield "| ours against | best passthrough | goal | met | best encrypted peer | goal | met |"
        yield "|---|--:|--:|:-:|--:|--:|:-:|"
        for row in self.rows:
            if self.median("ours", row) is not None:
                yield f"| {row.name} | {self.against_limit(row)} | {self.against_peers(row)} |"

    def best(self, row, names):
        """The best value and who has it."""
        found = {self.median(name, row): name for name in names if self.median(name, row) is not None}
        if not found:
            return None, None
        value = row.best(found)
        return value, found[value]

    def against_limit(self, row):
        names = [name for name in self.names if name.startswith("passthrough")]
        value, name = self.best(row, names)
        if value is None:
            return "- | | "
        ours = self.median("ours", row)
        short = name.removeprefix("passthrough_")
        if row.over is not None:
            over = ours - value
            return f"{over:+.1f} {row.unit} ({short}) | {row.over} | {met(over <= row.over)}"
        return judged(row.ratio(ours, value), short, row.limit)

    def against_peers(self, row):
        value, name = self.best(row, [name for name in self.names if name in PEERS])
        return judged(row.ratio(self.median("ours", row), value), name, row.peers) if name else "- | | "


def judged(ratio, name, goal):
    text = f"{ratio:.2f} ({name})"
    if goal is None:
        return f"{text} | measured | "
    if goal == AHEAD:
        return f"{text} | ahead | {met(ratio > 1)}"
    return f"{text} | {goal:g} | {met(ratio >= goal)}"


def met(yes):
    return "yes" if yes else "**no**"
