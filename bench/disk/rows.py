"""The rows of the tables and their goals.

A goal is a ratio, always so that bigger is better for us: the rate over theirs, or their time over
ours. AHEAD is simply more than theirs.
"""
import dataclasses

AHEAD = 1.0
MEASURED = None


@dataclasses.dataclass(frozen=True)
class Row:
    name: str
    unit: str
    limit: float | None = MEASURED  # against the best passthrough
    peers: float | None = AHEAD     # against the best encrypted peer
    over: float | None = MEASURED   # instead of a ratio: at most so many units over the passthrough

    @property
    def more_is_better(self):
        return self.unit in ("MiB/s", "IOPS")

    def ratio(self, ours, theirs):
        return ours / theirs if self.more_is_better else theirs / ours

    def best(self, values):
        return (max if self.more_is_better else min)(values)

    def text(self, value):
        if self.unit.startswith("CPU") or (self.unit == "ms" and value < 10):
            return f"{value:.2f}"
        return f"{value:.1f}" if self.unit in ("ms", "MiB") and value < 100 else f"{value:.0f}"


ROWS = (
    Row("sequential write", "MiB/s", 0.85, 1.6),
    Row("sequential read, cold", "MiB/s", 0.85, 1.5),
    Row("sequential read, warm", "MiB/s", 0.85, 4),
    Row("4 KiB random read, 1 job", "IOPS", 0.85),
    Row("4 KiB random read, 4 jobs", "IOPS", 0.85),
    Row("4 KiB random write", "IOPS", 0.7),
    Row("append 10,000 x 100 B", "ms"),
    Row("append 10,000 x 100 B, fsync each", "ms"),
    Row("create 2,000 files of 4 KiB", "ms", 0.8),
    Row("stat 2,000, cold", "ms", 0.8),
    Row("read 2,000, cold", "ms", 0.8),
    Row("remove 2,000", "ms", 0.8),
    Row("untar 4,000 files", "ms", 0.8),
    Row("grep 4,000, cold", "ms", 0.8),
    Row("rm -rf 4,000", "ms", 0.8),
    Row("ls -l of 10,000, cold", "ms", 0.7),
    Row("ls -l of 10,000, warm", "ms", 0.7),
    Row("git clone of 4,000 files", "ms"),
    Row("git status, cold", "ms"),
    Row("git status, warm", "ms"),
    Row("mount until the first ls", "ms", over=10),
    Row("daemon CPU per GiB written", "CPU s", 1 / 1.6, 2),
    Row("daemon CPU per GiB read", "CPU s", 1 / 1.6, 2),
    Row("daemon's peak memory", "MiB"),
)
