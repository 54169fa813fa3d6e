"""Draws what requests cost by the number of entries: a picture with logarithmic axes, readable on
light and dark ground."""

import math

WIDTH, HEIGHT = 960, 440
TOP, BOTTOM = 44, 48
PANEL = 300  # width of the axes
PANELS = ((60, "Commands that read", "get"), (540, "Commands that change", "set"))
LINE = 15  # height of a label

STYLE = """
  text { font: 12px sans-serif; fill: #24292f; }
  .title { font-weight: bold; font-size: 14px; }
  .grid { stroke: #8c959f; stroke-opacity: .35; }
  .linear { stroke: #8c959f; stroke-dasharray: 3 4; fill: none; }
  .line { fill: none; stroke-width: 2; }
  .leader { fill: none; stroke-opacity: .5; }
  .c0 { stroke: #0969da; } .c1 { stroke: #bf3989; } .c2 { stroke: #1a7f37; }
  .c3 { stroke: #bc4c00; } .c4 { stroke: #8250df; } .c5 { stroke: #9a6700; }
  circle { fill: none; stroke-width: 2; }
  @media (prefers-color-scheme: dark) {
    text { fill: #e6edf3; }
    .c0 { stroke: #58a6ff; } .c1 { stroke: #f778ba; } .c2 { stroke: #3fb950; }
    .c3 { stroke: #f0883e; } .c4 { stroke: #bc8cff; } .c5 { stroke: #d29922; }
  }
"""


class Axes:
    """Decades from 10 to 1000 entries, and those of the times that occur."""

    def __init__(self, left, series):
        times = [time for values in series.values() for time in values.values()]
        self.left = left
        self.low = math.floor(math.log10(min(times)))
        self.high = math.ceil(math.log10(max(times)))

    def x(self, entries):
        return self.left + (math.log10(entries) - 1) / 2 * PANEL

    def y(self, time):
        share = (math.log10(time) - self.low) / (self.high - self.low)
        return HEIGHT - BOTTOM - share * (HEIGHT - TOP - BOTTOM)

    def grid(self):
        right = self.left + PANEL
        for power in range(self.low, self.high + 1):
            y = self.y(10 ** power)
            label = f"{10 ** power:g} µs" if power < 3 else f"{10 ** (power - 3):g} ms"
            yield f'<path class="grid" d="M{self.left} {y:.1f}H{right}"/>'
            yield f'<text x="{self.left - 6}" y="{y + 4:.1f}" text-anchor="end">{label}</text>'
        for entries in (10, 32, 100, 320, 1000):
            x = self.x(entries)
            yield f'<path class="grid" d="M{x:.1f} {TOP}V{HEIGHT - BOTTOM}"/>'
            yield f'<text x="{x:.1f}" y="{HEIGHT - BOTTOM + 18}" text-anchor="middle">{entries}</text>'
        yield (f'<text x="{self.left + PANEL / 2}" y="{HEIGHT - 8}" text-anchor="middle">'
               f'entries (dashed: ten times the time for ten times the entries)</text>')

    def linear(self):
        """A line of linear growth from the corner at the bottom."""
        time = 10 ** self.low
        decades = min(2, self.high - self.low)
        return (f'<path class="linear" d="M{self.x(10):.1f} {self.y(time):.1f}'
                f'L{self.x(10 ** (1 + decades)):.1f} {self.y(time * 10 ** decades):.1f}"/>')


def apart(places):
    """The places, from the top, moved down until no two labels overlap, and up from the bottom."""
    for order, step in ((sorted(places, key=places.get), LINE),
                        (sorted(places, key=places.get, reverse=True), -LINE)):
        for above, below in zip(order, order[1:]):
            if (places[below] - places[above]) * (1 if step > 0 else -1) < LINE:
                places[below] = places[above] + step
        last = order[-1]
        places[last] = min(max(places[last], TOP), HEIGHT - BOTTOM)
    return places


def panel(left, title, series):
    axes = Axes(left, series)
    yield f'<text class="title" x="{left}" y="22">{title}</text>'
    yield from axes.grid()
    yield axes.linear()
    ends = {name: axes.y(values[max(values)]) for name, values in series.items()}
    labels = apart(dict(ends))
    for number, (name, values) in enumerate(series.items()):
        points = [(axes.x(entries), axes.y(time)) for entries, time in sorted(values.items())]
        line = "L".join(f"{x:.1f} {y:.1f}" for x, y in points)
        yield f'<path class="line c{number}" d="M{line}"/>'
        yield from (f'<circle class="c{number}" cx="{x:.1f}" cy="{y:.1f}" r="2.5"/>' for x, y in points)
        x, y = points[-1]
        margin = left + PANEL + 8
        yield f'<path class="leader c{number}" d="M{x:.1f} {y:.1f}L{margin} {labels[name]:.1f}h6"/>'
        yield f'<text x="{margin + 9}" y="{labels[name] + 4:.1f}">{name}</text>'


def draw(growth):
    """The picture as SVG text, of {command: {entries: microseconds}}."""
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
             f'role="img" aria-label="Cost of requests by the number of entries">',
             f"<style>{STYLE}</style>"]
    for left, title, prefix in PANELS:
        series = {name: values for name, values in growth.items() if name.startswith(prefix)}
        parts += panel(left, title, series)
    return "\n".join([*parts, "</svg>", ""])
