"""A picture per family: a panel for each kernel, with the time for an element against their number."""

from math import ceil, floor, log10
from xml.sax.saxutils import escape

from rows import FAMILIES, good, grouped, own_rows, peer_rows

# Cool colours are ours, one for each input; warm ones and dashes are other libraries'.
OURS = ["#08519c", "#4292c6", "#1b7837", "#5aae61", "#54278f", "#9e9ac8", "#01665e", "#636363"]
THEIRS = ["#d7301f", "#e69f00", "#c51b7d", "#8c510a"]
FEWEST = 1000  # elements, about; below, the time is that of the call
COLUMNS = 3
WIDTH, HEIGHT = 290, 178  # of a panel without its legend
LEFT, TOP, RIGHT, BOTTOM = 36, 34, 272, 150
LEGEND_LINE, LETTER = 13, 5.4  # about as wide as a letter is
STYLE = ("text{font:9px sans-serif;fill:#333}.t{font-size:11px;font-weight:bold}.e{text-anchor:end}"
         ".m{text-anchor:middle}.g{stroke:#ddd}path{fill:none;stroke-linecap:round}"
         ".o{stroke-width:2}.l{stroke-dasharray:4 3}.d{stroke-width:4.5}")


def nanoseconds(row, figure):
    return row.figure("elements"), 1e6 * row.figure(figure) / row.figure("elements")


def series_of(rows):
    """Lists of points by name: ours, for every input of more than one size or measured beside a
    library; theirs, one for each library and input."""
    rows = [row for row in rows if row.size >= FEWEST]
    beside = {row.input for row in peer_rows(rows)}
    ours = {key[-1]: [nanoseconds(row, "median_ms") for row in group]
            for key, group in grouped(row for row in rows if not row.threads).items()}
    chosen = {name: points for name, points in ours.items()
              if len(set(points)) > 1 or name in beside} or ours
    theirs = {}
    for row in peer_rows(rows):
        theirs.setdefault((row.beside, row.input), []).append(nanoseconds(row, "other_ms"))
    return ({name: sorted(set(points)) for name, points in chosen.items()},
            {key: sorted(points) for key, points in theirs.items()})


class Axis:
    """A logarithmic scale of at least a decade, from pixel `start` to `end`, with ticks at 1, 2 and 5, or
    at 1 alone where the values spread widely."""

    def __init__(self, values, start, end):
        exponents = range(floor(log10(min(values))), ceil(log10(max(values))) + 3)
        steps = (1, 2, 5) if len(exponents) <= 5 else (1,)
        ticks = [step * 10.0 ** exponent for exponent in exponents for step in steps]
        first = max([i for i, tick in enumerate(ticks) if tick <= min(values)], default=0)
        last = next(i for i, tick in enumerate(ticks) if tick >= max(*values, 9.9 * ticks[first]))
        self.ticks = ticks[first:last + 1]
        self.start, self.end = start, end

    def place(self, value):
        low, high = log10(self.ticks[0]), log10(self.ticks[-1])
        return round(self.start + (log10(value) - low) / (high - low) * (self.end - self.start))


def text(x, y, content, kind=""):
    return f'<text x="{x}" y="{y}"{kind and f" class={chr(34)}{kind}{chr(34)}"}>{escape(content)}</text>'


def tick_text(value):
    for unit, scale in (("M", 1e6), ("k", 1e3)):
        if value >= scale:
            return f"{value / scale:g} {unit}"
    return f"{value:g}"


def grid(across, up):
    lines = "".join(f"M{across.place(tick)} {TOP}V{BOTTOM}" for tick in across.ticks)
    lines += "".join(f"M{LEFT} {up.place(tick)}H{RIGHT}" for tick in up.ticks)
    labels = [text(LEFT - 4, up.place(tick) + 3, tick_text(tick), "e") for tick in up.ticks]
    labels += [text(across.place(tick), BOTTOM + 12, tick_text(tick), "m") for tick in across.ticks]
    return [f'<path class="g" d="{lines}"/>', *labels]


def line(points, across, up, colour, kind):
    places = [f"{across.place(x)} {up.place(y)}" for x, y in points]
    dots = "".join(f"M{place}h0" for place in places)
    return [f'<g stroke="{colour}"><path class="{kind}" d="M{"L".join(places)}"/>'
            f'<path class="d" d="{dots}"/></g>']


def legend(entries):
    """The legend's elements, and the number of its lines."""
    made, x, lines = [], 2, 1
    for name, colour, kind in entries:
        width = 30 + LETTER * len(name)
        if x > 2 and x + width > WIDTH:
            x, lines = 2, lines + 1
        y = BOTTOM + 17 + LEGEND_LINE * lines
        made += [f'<path class="{kind}" stroke="{colour}" d="M{x:.0f} {y - 3}h16"/>',
                 text(round(x) + 20, y, name)]
        x += width
    return made, lines


def panel(kernel, rows):
    """The elements of a kernel's panel, and the number of its legend's lines."""
    ours, theirs = series_of(rows)
    points = [point for points in (*ours.values(), *theirs.values()) for point in points]
    across = Axis([x for x, _ in points], LEFT, RIGHT)
    up = Axis([y for _, y in points], BOTTOM, TOP)
    unit = next((row.words["unit"] for row in rows if "unit" in row.words), "element")
    made = [text(2, 12, kernel, "t"), text(2, 25, f"ns per {unit}, by number of {unit}s"), *grid(across, up)]
    entries = []
    for i, (name, each) in enumerate(ours.items()):
        entries.append((name, OURS[i % len(OURS)], "o"))
        made += line(each, across, up, entries[-1][1], "o")
    colours = {}
    for (library, _), each in theirs.items():
        colour = colours.setdefault(library, THEIRS[len(colours) % len(THEIRS)])
        made += line(each, across, up, colour, "l")
    entries += [(library, colour, "l") for library, colour in colours.items()]
    explained, lines = legend(entries)
    return made + explained, lines


def picture(rows):
    kernels = {}
    for row in good(rows):
        if row.size >= FEWEST:
            kernels.setdefault(row.kernel, []).append(row)
    panels = [panel(kernel, of_kernel) for kernel, of_kernel in kernels.items()]
    width = WIDTH * min(COLUMNS, len(panels))
    made, top = [], 4
    for first in range(0, len(panels), COLUMNS):
        beside = panels[first:first + COLUMNS]
        for i, (elements, _) in enumerate(beside):
            made += [f'<g transform="translate({WIDTH * i + 4} {top})">', *elements, "</g>"]
        top += HEIGHT + LEGEND_LINE * max(lines for _, lines in beside)
    return "\n".join([f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{top}">',
                      f'<style>{STYLE}</style><rect width="{width}" height="{top}" fill="#fff"/>',
                      *made, "</svg>\n"])


def bars(lines):
    """A bar for each kernel that was measured beside a library: how many times as fast it is as the nearest."""
    beside = [(row, peer, 1 / peer.figure("ratio")) for row, peer in lines if peer]
    axis = Axis([1, *(times for *_, times in beside)], 190, 600)
    bottom = 26 + 26 * len(beside)
    made = [text(2, 14, "times as fast as the public library that comes nearest", "t"),
            f'<path class="g" d="{"".join(f"M{axis.place(tick)} 22V{bottom}" for tick in axis.ticks)}"/>']
    made += [text(axis.place(tick), bottom + 12, f"{tick:g}", "m") for tick in axis.ticks]
    for i, (row, peer, times) in enumerate(beside):
        y = 26 + 26 * i
        end = axis.place(times)
        made += [text(184, y + 14, row.kernel.split(" ")[0].replace("_with_axis_aligned_box", "..."), "e"),
                 f'<path d="M190 {y + 11}H{end}" style="stroke:{OURS[0]};stroke-width:12;stroke-linecap:butt"/>',
                 text(end + 6, y + 14, f"{times:.1f}  {peer.beside}")]
    return "\n".join([f'<svg xmlns="http://www.w3.org/2000/svg" width="800" height="{bottom + 18}">',
                      f'<style>{STYLE}</style><rect width="800" height="{bottom + 18}" fill="#fff"/>',
                      *made, "</svg>\n"])


def pictures_of(rows, output):
    """Draws the families' pictures; returns those that were drawn."""
    made = []
    for family in FAMILIES:
        of_family = [row for row in rows if row.family == family]
        if family != "starts" and any(row.size >= FEWEST for row in good(of_family)):
            (output / f"{family}.svg").write_text(picture(of_family))
            made.append(family)
    return made
