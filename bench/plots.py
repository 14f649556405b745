"""A picture per family: time against size, beside other libraries, and what all threads bring."""

import importlib.util
import sys

from pages import size_text
from rows import FAMILIES, good, grouped, own_rows, peer_rows, speed_ups

# Cool colours are ours, one for each input; warm ones and dashes are other libraries'.
OURS = ["#08519c", "#4292c6", "#1b7837", "#5aae61", "#54278f", "#9e9ac8", "#01665e", "#636363"]
THEIRS = {"CGAL": "#d7301f", "OpenMesh": "#e69f00", "VTK": "#c51b7d", "Open3D": "#8c510a"}
MARKERS = "^vsDPX*<>"
COLUMNS = 3
PANEL = (4.6, 4.0)  # inches, with the legend
BAR_LABELS = 4.0


def our_lines(rows):
    """Times by elements for every input of more than one size, or measured beside a library."""
    lines = {source: {row.figure("elements"): row.figure("median_ms") for row in group}
             for (_, _, source), group in grouped(own_rows(rows)).items()}
    beside = {row.input for row in peer_rows(rows)}
    own = set(lines)
    for row in peer_rows(rows):
        if row.input not in own:
            lines.setdefault(row.input, {})[row.figure("elements")] = row.figure("median_ms")
    chosen = {source: times for source, times in lines.items()
              if len(times) > 1 or source in beside}
    return chosen or lines


def their_lines(rows):
    lines = {}
    for row in peer_rows(rows):
        times = lines.setdefault((row.beside, row.input), {})
        times[row.figure("elements")] = row.figure("other_ms")
    return lines


def draw(axes, times, **style):
    points = sorted(times.items())
    axes.plot([elements for elements, _ in points], [1e-3 * time for _, time in points],
              markersize=4, **style)


def draw_lines(axes, rows):
    for i, (source, times) in enumerate(our_lines(rows).items()):
        draw(axes, times, label=source, color=OURS[i % len(OURS)], marker="o", linewidth=2)
    markers = {}
    for (beside, _), times in their_lines(rows).items():
        known = beside in markers
        marker = markers.setdefault(beside, MARKERS[len(markers) % len(MARKERS)])
        colour = next((each for name, each in THEIRS.items() if beside.startswith(name)), "black")
        draw(axes, times, label="_" if known else beside, color=colour, marker=marker, linewidth=1,
             linestyle="--")


def plot_kernel(axes, kernel, rows):
    from matplotlib.ticker import EngFormatter, LogLocator, NullLocator

    draw_lines(axes, rows)
    unit = next((row.words["unit"] for row in good(rows) if "unit" in row.words), "element")
    axes.set(xscale="log", yscale="log", xlabel=f"{unit}s")
    axes.set_title(kernel, fontsize=10)
    for axis in (axes.xaxis, axes.yaxis):
        axis.set_major_locator(LogLocator(numticks=12))
        axis.set_minor_locator(NullLocator())
    axes.yaxis.set_major_formatter(EngFormatter(unit="s", sep=" "))
    axes.tick_params(labelsize=8)
    axes.grid(alpha=0.25)
    axes.legend(loc="upper center", bbox_to_anchor=(0.46, -0.2), frameon=False, fontsize=7.5,
                ncols=min(2, len(axes.lines)), columnspacing=1)


def largest_with_speed_up(rows):
    """For each kernel and input, the largest row that one thread was timed on too, and how many times
    as fast all threads are."""
    faster = speed_ups(rows)
    largest = {}
    for row in sorted(own_rows(rows), key=lambda row: row.size):
        if row.name in faster:
            largest[row.kernel, row.input] = (row, faster[row.name])
    return sorted(largest.values(), key=lambda pair: (pair[0].kernel, pair[0].input), reverse=True)


def plot_speed_ups(axes, bars):
    threads = max(int(row.figure("threads") or 1) for row, _ in bars)
    places = range(len(bars))
    axes.barh(places, [times for _, times in bars], height=0.7, color=OURS[1])
    for place, (_, times) in enumerate(bars):
        axes.text(times, place, f" {times:.2f}", va="center", fontsize=7)
    axes.set_yticks(places, [f"{row.kernel}, {row.input}, {size_text(row.size)}"
                             for row, _ in bars], fontsize=7)
    for bound in (1, threads):
        axes.axvline(bound, color="black", linewidth=0.8, linestyle=":", zorder=0)
    axes.tick_params(axis="x", labelsize=8)
    axes.set(xlim=(0, 1.1 * max(threads, *(times for _, times in bars))),
             ylim=(-0.6, len(bars) - 0.4))
    axes.set_title(f"speed-up from 1 to {threads} threads", fontsize=10)


def plot_family(family, rows, path):
    import matplotlib

    matplotlib.use("svg" if path.suffix == ".svg" else "agg")
    matplotlib.rcParams.update({"svg.hashsalt": "tessary", "svg.fonttype": "none"})
    from matplotlib import pyplot

    kernels = list(dict.fromkeys(row.kernel for row in good(rows)))
    bars = largest_with_speed_up(rows)
    columns = min(COLUMNS, len(kernels))
    lines = -(-len(kernels) // columns)
    width = max(PANEL[0] * columns, BAR_LABELS + 3.5)
    below = 0.9 + 0.17 * len(bars) if bars else 0
    height = PANEL[1] * lines + below
    figure = pyplot.figure(figsize=(width, height))

    def axes_at(left, top, right, bottom):  # in inches from the upper left corner
        return figure.add_axes((left / width, 1 - bottom / height, (right - left) / width,
                                (bottom - top) / height))

    for i, kernel in enumerate(kernels):
        left, top = PANEL[0] * (i % columns), PANEL[1] * (i // columns)
        axes = axes_at(left + 0.75, top + 0.4, left + PANEL[0] - 0.15, top + 2.8)
        plot_kernel(axes, kernel, [row for row in rows if row.kernel == kernel])
    if bars:
        plot_speed_ups(axes_at(BAR_LABELS, height - below + 0.4, width - 0.2, height - 0.35), bars)
    figure.savefig(path, dpi=100, metadata={"Date": None} if path.suffix == ".svg" else None)
    pyplot.close(figure)


def pictures_of(rows, output):
    """Draws the families' pictures; returns those that were drawn."""
    if not importlib.util.find_spec("matplotlib"):
        print("report.py: no pictures: this needs matplotlib (python3-matplotlib)", file=sys.stderr)
        return []
    made = []
    for family in FAMILIES:
        of_family = [row for row in rows if row.family == family]
        if good(of_family):
            plot_family(family, of_family, output / f"{family}.svg")
            made.append(family)
    return made
