#!/usr/bin/env python3
"""Makes a report of what the benchmark programs wrote.

usage: report.py RAW OUTPUT [--docs FOLDER]

RAW holds the programs' JSON files. OUTPUT gets report.md, report.json and a picture per family. With
--docs, the tables between the marks of FOLDER's benchmarks.md and scaling.md, and the pictures that
benchmarks.md shows, are made anew too. Exit code 1 if a row failed, 2 if RAW holds no rows.
"""

import argparse
import datetime
import importlib.util
import json
import platform
import re
import shutil
import subprocess
import sys
from dataclasses import asdict
from pathlib import Path

from rows import FAMILIES, NotRows, number_text, read_folder, size_text, table, time_text

PEER_PACKAGES = ["libcgal-dev", "libopenmesh-dev", "libvtk9-dev", "libopen3d-dev"]


def output_of(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=False).stdout.strip()
    except OSError:
        return ""


def processor():
    try:
        match = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    except OSError:
        match = None
    return match.group(1) if match else platform.processor()


def memory_gb():
    match = re.search(r"MemTotal: *(\d+)", Path("/proc/meminfo").read_text())
    return f"{int(match.group(1)) / 2**20:.0f} GB" if match else "unknown"


def describe(context, rows):
    """What has to be known to compare the figures: pairs of a name and a text."""
    facts = {
        "date": context.get("date", "")[:10] or str(datetime.date.today()),
        "revision": output_of("git", "describe", "--always", "--dirty"),
        "processor": f'{processor()}, {context.get("threads", "?")} threads',
        "memory": memory_gb(),
        "system": f'{platform.system()} {platform.release()}, {platform.libc_ver()[0]} '
                  f'{platform.libc_ver()[1]}',
        "compiler": f'{context.get("compiler", "?")}, release build',
        "TBB": context.get("tbb", "?"),
        "copy bandwidth": f'{context.get("copy_GB_per_s", "?")} GB/s read and written',
        "inputs": "made from the seeds fixed in bench/support",
    }
    if any(row.beside for row in rows):
        versions = output_of("dpkg-query", "-W", "-f", "${Package} ${Version}  ", *PEER_PACKAGES)
        facts["other libraries"] = re.sub("  +", ", ", versions)
    return facts


def full_line(row):
    if row.error:
        return [row.name, f"**{row.error}**"] + [""] * 8
    figure = row.figure
    per_second = figure("per_s") or 0
    other = row.words.get("other", "")
    difference = row.words.get("difference", "")
    return [
        row.name.split("/beside:")[0],
        time_text(figure("median_ms")),
        f"{100 * row.spread:.0f} %",
        number_text(1e-6 * per_second) + f' M {row.words.get("unit", "element")}s',
        number_text(figure("GB_per_s")),
        number_text(figure("x_copy")),
        number_text(figure("B_per_element")),
        time_text(figure("other_ms")) if figure("other_ms") else "",
        number_text(figure("ratio")),
        f"{other}: {difference}" if difference else other,
    ]


FULL_HEADS = ["kernel/input/size", "median", "±", "a second", "GB/s", "× copy", "B/element",
              "other way", "ratio", "which"]


def key_without_size(row):
    return row.family, row.kernel, row.input


def grouped(rows):
    """Lists of rows that differ in their sizes alone."""
    groups = {}
    for row in rows:
        groups.setdefault(key_without_size(row), []).append(row)
    return {key: sorted(group, key=lambda row: row.size) for key, group in groups.items()}


def good(rows):
    return [row for row in rows if not row.error]


def own_rows(rows):
    """The kernels' own rows, on all threads and beside no other library."""
    return [row for row in good(rows) if not row.beside and row.threads == 0]


def peer_rows(rows):
    """Rows beside another library, which was measured too."""
    return [row for row in good(rows) if row.beside and row.figure("other_ms")]


def speed_ups(rows):
    """How many times as fast all threads are as one, by name of the row on all threads."""
    one = {row.name.replace("/threads:1", ""): row for row in good(rows) if row.threads == 1}
    return {row.name: one[row.name].figure("median_ms") / row.figure("median_ms")
            for row in own_rows(rows) if row.name in one}


def summary_table(rows, sizes=(1000, 100000, 1000000, 8000000)):
    """A line for each kernel and input: times by size, the rest for the largest size."""
    faster = speed_ups(rows)
    lines = []
    for (_, kernel, source), group in grouped(own_rows(rows)).items():
        times = {row.size: time_text(row.figure("median_ms")) for row in group}
        others = [f"{size_text(size)}: {text}" for size, text in times.items()
                  if size not in sizes and size > 1000]
        last = group[-1]
        lines.append([f"`{kernel}`", source + (f" ({'; '.join(others)})" if others else "")]
                     + [times.get(size, "") for size in sizes]
                     + [number_text(last.figure("x_copy")), number_text(last.figure("ratio")),
                        number_text(faster.get(last.name)),
                        number_text(last.figure("B_per_element"))])
    heads = ["kernel", "input"] + [size_text(size) for size in sizes]
    return table(heads + ["× copy", "ratio", "1 → N", "B/element"], lines)


def peer_table(rows):
    lines = []
    for row in peer_rows(rows):
        behind = row.figure("ratio") > 1 and row.size >= 100000
        lines.append([f"`{row.kernel}`", f"{row.input}, {size_text(row.size)}", row.beside,
                      time_text(row.figure("median_ms")), time_text(row.figure("other_ms")),
                      number_text(row.figure("ratio")) + (" **behind**" if behind else ""),
                      row.words.get("difference", "") or "the same work"])
    heads = ["kernel", "input, size", "library", "Tessary", "library's time", "ratio",
             "the library's work"]
    return table(heads, lines) if lines else ""


def scaling_table(rows):
    """Time and memory per element from 100 000 elements on."""
    rows = [row for row in own_rows(rows) if row.size >= 100000]
    lines = []
    for (_, kernel, source), group in grouped(rows).items():
        if len(group) < 2:
            continue
        per = [1e6 * row.figure("median_ms") / row.figure("elements") for row in group]
        last = group[-1]
        lines.append([f"`{kernel}`", source, last.words.get("unit", "element"),
                      number_text(per[0]), number_text(per[-1]),
                      size_text(int(last.figure("elements"))),
                      time_text(last.figure("median_ms")),
                      number_text(last.figure("peak_MB")),
                      number_text(last.figure("B_per_element"))])
    return table(["kernel", "input", "element", "ns each at 100 000", "ns each at the largest",
                  "largest", "time", "peak MB", "peak B each"], lines)


def plot_kernel(axes, kernel, rows):
    for (_, _, source), group in grouped(own_rows(rows)).items():
        axes.plot([row.figure("elements") for row in group],
                  [row.figure("median_ms") for row in group], marker=".", linewidth=1, label=source)
    peers = {}
    for row in peer_rows(rows):
        peers.setdefault((row.beside, row.input), []).append(row)
    for (beside, source), group in peers.items():
        group.sort(key=lambda row: row.size)
        axes.plot([row.figure("elements") for row in group],
                  [row.figure("other_ms") for row in group], marker="x", linewidth=1,
                  linestyle="--", label=f"{beside}, {source}")
    unit = next((row.words.get("unit") for row in rows if row.words), "element")
    axes.set(title=kernel, xscale="log", yscale="log", xlabel=f"{unit}s", ylabel="ms")
    axes.grid(alpha=0.3)
    axes.legend(fontsize=6)


def plot_speed_ups(axes, rows):
    """A bar for each kernel, on the largest input."""
    faster = speed_ups(rows)
    largest = {}
    for row in sorted(own_rows(rows), key=lambda row: row.figure("elements")):
        if row.name in faster:
            largest[row.kernel] = row
    for place, (kernel, row) in enumerate(largest.items()):
        axes.barh(place, faster[row.name], height=0.6, color="tab:blue")
        axes.text(0.05, place, f"{kernel}, {row.input}, {size_text(row.size)}", fontsize=6,
                  color="white", va="center")
    axes.axvline(1, color="black", linewidth=0.5)
    axes.set(title="all threads: times as fast as one", yticks=[], ylim=(-0.6, 7.4))


def plot_family(family, rows, path):
    import matplotlib

    matplotlib.use("svg")
    matplotlib.rcParams.update({"svg.hashsalt": "tessary", "svg.fonttype": "none"})
    from matplotlib import pyplot

    kernels = list(dict.fromkeys(row.kernel for row in good(rows)))
    panels = len(kernels) + (1 if speed_ups(rows) else 0)
    columns = min(3, max(panels, 1))
    figure, grid = pyplot.subplots(-(-panels // columns), columns, squeeze=False, layout="constrained",
                                   figsize=(5 * columns, 3.8 * -(-panels // columns)))
    axes = list(grid.flat)
    for kernel in kernels:
        plot_kernel(axes.pop(0), kernel, [row for row in rows if row.kernel == kernel])
    if speed_ups(rows):
        plot_speed_ups(axes.pop(0), rows)
    for left in axes:
        left.set_axis_off()
    figure.suptitle(family)
    figure.savefig(path, metadata={"Date": None})
    pyplot.close(figure)


def plots(rows, output):
    """The families whose pictures were made."""
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


def facts_text(facts):
    return "\n".join(f"- {name}: {text}" for name, text in facts.items() if text)


def report_text(facts, rows, pictures):
    parts = ["# Benchmarks", facts_text(facts)]
    failed = [row for row in rows if row.error]
    if failed:
        parts.append("**Failed:**\n\n" + "\n".join(f"- {row.name}: {row.error}" for row in failed))
    if peer_table(rows):
        parts += ["## Beside other libraries", peer_table(rows)]
    for family in FAMILIES:
        of_family = [row for row in rows if row.family == family]
        if of_family:
            parts.append(f"## {family}")
            if family in pictures:
                parts.append(f"![{family}]({family}.svg)")
            parts.append(table(FULL_HEADS, [full_line(row) for row in of_family]))
    return "\n\n".join(parts) + "\n"


def paste(page, mark, text):
    """Replaces what stands between <!-- mark --> and <!-- end of mark -->."""
    content = page.read_text()
    pattern = re.compile(rf"(<!-- {mark} -->\n).*?(<!-- end of {mark} -->)", re.DOTALL)
    if not pattern.search(content):
        raise NotRows(f"{page}: no place marked <!-- {mark} -->")
    page.write_text(pattern.sub(lambda match: f"{match[1]}\n{text}\n\n{match[2]}", content))


def paste_docs(docs, facts, rows, output, pictures):
    if max(row.size for row in rows) > 8000000:
        paste(docs / "scaling.md", "machine", facts_text(facts))
        paste(docs / "scaling.md", "scaling", scaling_table(rows))
        return
    page = docs / "benchmarks.md"
    paste(page, "machine", facts_text(facts))
    for family in pictures:
        paste(page, family, summary_table([row for row in rows if row.family == family]))
        shutil.copy(output / f"{family}.svg", docs / "pictures" / f"bench-{family}.svg")
    paste(page, "libraries", peer_table(rows) or "None were measured.")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("raw", type=Path)
    parser.add_argument("output", type=Path)
    parser.add_argument("--docs", type=Path)
    arguments = parser.parse_args()
    try:
        context, rows = read_folder(arguments.raw)
        if not rows:
            raise NotRows(f"{arguments.raw}: no rows; does any name fit the arguments?")
        facts = describe(context, rows)
        pictures = plots(rows, arguments.output)
        (arguments.output / "report.md").write_text(report_text(facts, rows, pictures))
        (arguments.output / "report.json").write_text(
            json.dumps({"facts": facts, "rows": [asdict(row) for row in rows]}, indent=1))
        if arguments.docs:
            paste_docs(arguments.docs, facts, rows, arguments.output, pictures)
    except NotRows as error:
        print(f"report.py: {error}", file=sys.stderr)
        return 2
    failed = [row for row in rows if row.error]
    for row in failed:
        print(f"report.py: {row.name}: {row.error}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
