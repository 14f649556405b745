"""Tables across families: small inputs, starts of arrays, and figures that others measured."""

from pages import number_text, size_text, table, time_text
from rows import good, grouped, own_rows, peer_rows

MAIN_SIZE = 1000000
# Called element by element, nearly nothing, or the same with weights in the place of flags.
MINOR = ("findAdjacentHalfEdge", "polyEdgeToTriEdge", "triEdgeToPolyEdge", "Scratch<float> resize", "computeQuadMesh weights")

SMALL_SIZES = (10, 100, 1000, 10000)

# Public code that is in no distribution: what it took on this machine, once. Name, kernels that do its
# job, input, size, milliseconds.
QUOTED_NAME = "trueform c0710b3 (TBB), membership and edge link, measured in November 2026"
QUOTED_KERNELS = ("constructDualMesh", "populateAdjacentTri")
QUOTED = (("torus natural", 1000000, 35), ("torus random", 1000000, 90),
          ("torus natural", 8000000, 231), ("torus random", 8000000, 1633))


def with_ratio(row):
    """A time, with its ratio to the other way's where there is one."""
    ratio = row.figure("ratio")
    return time_text(row.figure("median_ms")) + (f" ({number_text(ratio)})" if ratio else "")


def nearest(group, size):
    return min(group, key=lambda row: abs(row.size - size))


def main_lines(rows):
    """For each kernel a row near the main size, in its usual input, and that beside the nearest library or None."""
    kernels = {}
    for (family, kernel, _), group in grouped(own_rows(rows)).items():
        if family != "starts" and kernel not in MINOR:
            kernels.setdefault(kernel, nearest(group, MAIN_SIZE))
    beside = {}
    for (_, kernel, _), group in grouped(peer_rows(rows)).items():
        size = nearest(group, MAIN_SIZE).size
        beside.setdefault(kernel, []).extend(row for row in group if row.size == size)
    return [(row, max(beside.get(kernel, [None]), key=lambda each: each.figure("ratio") if each else 0))
            for kernel, row in kernels.items()]


def main_table(rows):
    lines = []
    for row, peer in main_lines(rows):
        shown = peer or row
        lines.append([f"`{row.kernel}`", f"{shown.input}, {size_text(shown.size)}", time_text(shown.figure("median_ms")),
                      peer.beside if peer else "", time_text(peer.figure("other_ms")) if peer else "",
                      number_text(1 / peer.figure("ratio")) if peer else ""])
    return table(["kernel", "input, size", "time", "nearest library", "its time", "times as fast"], lines)


def small_table(rows):
    """Times of small inputs, and the ratios; empty where there are none."""
    lines = []
    for (family, kernel, source), group in grouped(own_rows(rows)).items():
        times = {row.size: with_ratio(row) for row in group if row.size in SMALL_SIZES}
        if times and family != "starts":
            lines.append([f"`{kernel}`", source] + [times.get(size, "") for size in SMALL_SIZES])
    heads = ["kernel", "input"] + [size_text(size) for size in SMALL_SIZES]
    return table(heads, lines) if lines else ""


def starts_table(rows):
    """A line per kernel, a column per start, named "start 64"; empty where there are none."""
    kernels = {}
    for row in good(rows):
        if row.family == "starts":
            kernels.setdefault(row.kernel, {})[int(row.input.removeprefix("start "))] = row
    starts = sorted({start for by_start in kernels.values() for start in by_start})
    lines = []
    for kernel, by_start in kernels.items():
        times = [row.figure("median_ms") for row in by_start.values()]
        cells = [with_ratio(by_start[start]) if start in by_start else "" for start in starts]
        lines.append([f"`{kernel}`"] + cells + [number_text(max(times) / min(times))])
    return table(["kernel"] + [str(start) for start in starts] + ["worst / best"],
                 lines) if lines else ""


def quoted_table(rows):
    """Our kernels beside quoted figures; empty where not all of them were measured."""
    times = {(row.kernel, row.input, row.size): row.figure("median_ms") for row in own_rows(rows)}
    lines = []
    for source, size, theirs in QUOTED:
        ours = [times.get((kernel, source, size)) for kernel in QUOTED_KERNELS]
        if None not in ours:
            lines.append([" + ".join(f"`{kernel}`" for kernel in QUOTED_KERNELS),
                          f"{source}, {size_text(size)}", time_text(sum(ours)), time_text(theirs),
                          number_text(sum(ours) / theirs)])
    heads = ["kernels", "input, size", "Tessary", QUOTED_NAME, "ratio"]
    return table(heads, lines) if lines else ""


EXTRA_TABLES = {"small": small_table, "starts": starts_table, "quoted": quoted_table}
