"""The plots made of results.json."""
import statistics

from plot import Axis, Line, Plot

COLOURS = {"ours": 0, "passthrough_ll": 1, "passthrough_fh": 3, "raw": 2}
SCALE = 64  # MiB: what the daemon may hold under any load
NAMES = {"ours": "ours", "passthrough_ll": "passthrough_ll", "passthrough_fh": "passthrough_fh",
         "raw": "the store itself"}


def all_plots(results):
    """File name and plot."""
    for work, file in (("create", "create"), ("ls -l, cold", "list"), ("stat, cold", "stat")):
        if results.get("folders"):
            yield f"folders-{file}.svg", folders(results["folders"], work)
    for work, file in (("write", "write"), ("read, cold", "read")):
        if results.get("sizes"):
            yield f"sizes-{file}.svg", sizes(results["sizes"], work)
    if results.get("memory"):
        yield "memory.svg", paths(results["memory"])


def medians(points, key, work):
    """Sorted (key, median of the rounds)."""
    found = {}
    for point in points:
        found.setdefault(point[key], []).append(point[work])
    return sorted((value, statistics.median(values)) for value, values in found.items())


def folders(points, work):
    lines = [Line(NAMES[name], medians([p for p in points if p["disk"] == name], "count", work), colour)
             for name, colour in COLOURS.items() if any(p["disk"] == name for p in points)]
    counts = sorted({point["count"] for point in points})
    return Plot(f"What an entry costs in ever larger folders: {work}",
                Axis("files in the folder", ticks=counts), Axis("microseconds an entry"), lines)


def sizes(points, work):
    lines = []
    for name, colour in COLOURS.items():
        for dash, store in enumerate(("tmpfs", "disk")):
            own = [p for p in points if p["disk"] == name and p["store"] == store]
            if own:
                lines.append(Line(f"{name}, store on {'a ' if store == 'disk' else ''}{store}",
                                  medians(own, "size", work), colour, dash))
    ticks = sorted({point["size"] for point in points})
    return Plot(f"Sequential {work}: throughput of ever larger files",
                Axis("size of the file", ticks=ticks, text=size_text), Axis("MiB/s"), lines)


def size_text(mebibytes):
    return f"{mebibytes} MiB" if mebibytes < 1024 else f"{mebibytes // 1024} GiB"


def paths(runs):
    lines = [Line(f"names that {'exist' if name == 'existing' else 'do not exist'}",
                  [(count / 1000, mebibytes) for count, _, mebibytes in run["samples"]], colour, dots=False)
             for colour, (name, run) in enumerate(sorted(runs.items()))]
    return Plot("The daemon's resident memory while paths are looked up",
                Axis("different paths so far, thousands", log=False),
                Axis("MiB", log=False, low=0), lines, (SCALE, f"{SCALE} MiB"))
