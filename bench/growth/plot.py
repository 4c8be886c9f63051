"""Line plots as SVG: plain text, readable on a light and on a dark page."""
import dataclasses
import math
from xml.sax.saxutils import escape

WIDTH, HEIGHT = 720, 440
LEFT, RIGHT, TOP, BOTTOM = 84, 40, 56, 112  # the margins hold labels, the title and the legend
# On a light page and on a dark one.
COLOURS = (("#0b63c5", "#6cb2ff"), ("#c2410c", "#fb923c"), ("#64748b", "#a8b3c4"), ("#15803d", "#4ade80"))
STYLE = """
  text {{ font: 13px system-ui, "DejaVu Sans", sans-serif; fill: #333 }}
  .title {{ font-size: 16px; font-weight: 600 }}
  .axis {{ stroke: #888; fill: none }} .grid {{ stroke: #ddd; fill: none }}
  .line {{ fill: none; stroke-width: 2.2; stroke-linejoin: round }}
  .goal {{ stroke: #b91c1c; stroke-dasharray: 6 5; fill: none }} .page {{ fill: #fff }}
  {light}
  @media (prefers-color-scheme: dark) {{
    .page {{ fill: #16181d }} text {{ fill: #ddd }} .grid {{ stroke: #33363d }}
    .goal {{ stroke: #f87171 }}
    {dark}
  }}"""
DASHES = ("", "7,4", "2,4")


@dataclasses.dataclass
class Line:
    name: str
    points: list          # (x, y)
    colour: int = 0
    dash: int = 0
    dots: bool = True


@dataclasses.dataclass
class Axis:
    title: str
    log: bool = True
    ticks: list = dataclasses.field(default_factory=list)   # chosen from the values when empty
    text: object = None                                     # how a tick's value is written
    low: float | None = None

    def fit(self, values):
        self.low = min(values) if self.low is None else self.low
        self.high = max(values)
        if not self.ticks:
            self.ticks = log_ticks(self.low, self.high) if self.log else even_ticks(self.low, self.high)
        self.low, self.high = min(self.low, self.ticks[0]), max(self.high, self.ticks[-1])

    def place(self, value):
        """0 to 1 along the axis."""
        if self.log:
            value, low, high = math.log(value), math.log(self.low), math.log(self.high)
        else:
            low, high = self.low, self.high
        return (value - low) / (high - low or 1)

    def label(self, value):
        return self.text(value) if self.text else f"{value:,g}"


def log_ticks(low, high):
    """1, 2, 5, 10, 20...: the powers of ten alone where that is many."""
    first, last = math.floor(math.log10(low)), math.ceil(math.log10(high))
    steps = (1, 2, 5) if last - first <= 3 else (1,)
    ticks = [step * 10.0 ** power for power in range(first, last + 1) for step in steps]
    inner = [tick for tick in ticks if low <= tick <= high]
    below = [tick for tick in ticks if tick < low][-1:]
    above = [tick for tick in ticks if tick > high][:1]
    return below + inner + above


def even_ticks(low, high):
    step = 10.0 ** math.floor(math.log10((high - low) or 1))
    for factor in (0.2, 0.5, 1, 2):
        if (high - low) / (step * factor) <= 7:
            step *= factor
            break
    return [step * i for i in range(math.floor(low / step), math.ceil(high / step) + 1)]


def style():
    light, dark = (" ".join(f".line.c{i} {{ stroke: {pair[page]} }} .dot.c{i} {{ fill: {pair[page]} }}"
                            for i, pair in enumerate(COLOURS)) for page in (0, 1))
    return STYLE.format(light=light, dark=dark)


class Plot:
    def __init__(self, title, x_axis, y_axis, lines, goal=None):
        self.title, self.x_axis, self.y_axis, self.lines, self.goal = title, x_axis, y_axis, lines, goal
        points = [point for line in lines for point in line.points]
        x_axis.fit([x for x, _ in points])
        y_axis.fit([y for _, y in points] + ([goal[0]] if goal else []))

    def x(self, value):
        return LEFT + self.x_axis.place(value) * (WIDTH - LEFT - RIGHT)

    def y(self, value):
        return HEIGHT - BOTTOM - self.y_axis.place(value) * (HEIGHT - TOP - BOTTOM)

    def svg(self):
        parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" role="img">',
                 f"<title>{escape(self.title)}</title>", f"<style>{style()}\n</style>",
                 f'<rect class="page" width="{WIDTH}" height="{HEIGHT}" rx="6"/>',
                 text(LEFT, 30, self.title, "start", ' class="title"'),
                 *self.axes(), *self.goal_line(), *self.curves(), *self.legend(), "</svg>"]
        return "\n".join(parts) + "\n"

    def axes(self):
        bottom, right = HEIGHT - BOTTOM, WIDTH - RIGHT
        for tick in self.y_axis.ticks:
            y = self.y(tick)
            yield f'<path class="grid" d="M{LEFT} {y:.1f}H{right}"/>'
            yield text(LEFT - 8, y + 4.5, self.y_axis.label(tick), "end")
        for tick in self.x_axis.ticks:
            x = self.x(tick)
            yield f'<path class="grid" d="M{x:.1f} {TOP}V{bottom}"/>'
            yield f'<path class="axis" d="M{x:.1f} {bottom}v5"/>'
            yield text(x, bottom + 20, self.x_axis.label(tick))
        yield f'<path class="axis" d="M{LEFT} {TOP}V{bottom}H{right}"/>'
        yield text((LEFT + right) / 2, bottom + 42, self.x_axis.title)
        middle = (TOP + bottom) / 2
        yield text(22, middle, self.y_axis.title, "middle", f' transform="rotate(-90 22 {middle})"')

    def goal_line(self):
        if self.goal:
            value, name = self.goal
            yield f'<path class="goal" d="M{LEFT} {self.y(value):.1f}H{WIDTH - RIGHT}"/>'
            yield text(WIDTH - RIGHT - 6, self.y(value) - 7, name, "end")

    def curves(self):
        for line in self.lines:
            places = [f"{self.x(x):.1f} {self.y(y):.1f}" for x, y in line.points]
            yield f'<path class="line c{line.colour}"{dashes(line)} d="M{"L".join(places)}"/>'
            if line.dots:
                for place in places:
                    x, y = place.split()
                    yield dot(line, float(x), float(y))

    def legend(self):
        """Three to a row below the plot."""
        for number, line in enumerate(self.lines):
            x = LEFT + number % 3 * ((WIDTH - LEFT - RIGHT) / 3)
            y = HEIGHT - 42 + number // 3 * 22
            yield f'<path class="line c{line.colour}"{dashes(line)} d="M{x:.1f} {y}h28"/>'
            if line.dots:
                yield dot(line, x + 14, y)
            yield text(x + 35, y + 4.5, line.name, "start")


def dot(line, x, y):
    """Round, or square on a dashed line."""
    if line.dash:
        return f'<rect class="dot c{line.colour}" x="{x - 4:.1f}" y="{y - 4:.1f}" width="8" height="8"/>'
    return f'<circle class="dot c{line.colour}" cx="{x:.1f}" cy="{y:.1f}" r="3.4"/>'


def dashes(line):
    return f' stroke-dasharray="{DASHES[line.dash]}"' if line.dash else ""


def text(x, y, content, anchor="middle", more=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{more}>{escape(str(content))}</text>'
