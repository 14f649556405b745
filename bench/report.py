#!/usr/bin/env python3
"""Makes a report of what the benchmark programs wrote.

usage: report.py RAW OUTPUT [--docs]

RAW holds the programs' JSON files. OUTPUT gets report.md, report.json and a picture per family. With
--docs, the figures are kept in bench/results, where those of an earlier run that were not measured now stay, and
the main ones are put into docs/benchmarks.md. Exit code 1 if a row failed, 2 if RAW holds no rows.
"""

import argparse
import json
import sys
from dataclasses import asdict
from pathlib import Path

from extra_tables import main_lines, main_table
from machine import describe, facts_text
from pages import number_text, paste, size_text, table, time_text
from plots import bars, pictures_of
from rows import FAMILIES, NotRows, good, grouped, keep, merged, own_rows, peer_rows, read_folder, read_kept
from rows import read_remarks

ROOT = Path(__file__).resolve().parent.parent


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


def summary_table(rows, sizes=(1000, 100000, 1000000, 8000000)):
    """A line for each kernel and input: times by size, the rest for the largest size."""
    lines = []
    for (_, kernel, source), group in grouped(own_rows(rows)).items():
        times = {row.size: time_text(row.figure("median_ms")) for row in group}
        others = [f"{size_text(size)}: {text}" for size, text in times.items()
                  if size not in sizes and size > 1000]
        last = group[-1]
        lines.append([f"`{kernel}`", source + (f" ({'; '.join(others)})" if others else "")]
                     + [times.get(size, "") for size in sizes]
                     + [number_text(last.figure("x_copy")), number_text(last.figure("ratio")),
                        number_text(last.figure("speed_up")),
                        number_text(last.figure("B_per_element"))])
    heads = ["kernel", "input"] + [size_text(size) for size in sizes]
    return table(heads + ["× copy", "ratio", "1 → N", "B/element"], lines)


def remark_on(row, remarks):
    """Why the row is behind, and what would change it; empty where it is not."""
    if row.figure("ratio") <= 1 or row.size < 100000:
        return ""
    fitting = (text for pattern, text in remarks if pattern.fullmatch(row.name))
    return "**behind**: " + next(fitting, "nobody has said why yet")


def peer_table(rows, remarks):
    lines = []
    for row in peer_rows(rows):
        lines.append([f"`{row.kernel}`", f"{row.input}, {size_text(row.size)}", row.beside,
                      time_text(row.figure("median_ms")), time_text(row.figure("other_ms")),
                      number_text(row.figure("ratio")),
                      row.words.get("difference", "") or "the same work",
                      remark_on(row, remarks)])
    heads = ["kernel", "input, size", "library", "Tessary", "library's time", "ratio",
             "the library's work", ""]
    return table(heads, lines) if lines else ""


def report_text(facts, rows, remarks, pictures):
    parts = ["# Benchmarks", facts_text(facts)]
    failed = [row for row in rows if row.error]
    if failed:
        parts.append("**Failed:**\n\n" + "\n".join(f"- {row.name}: {row.error}" for row in failed))
    if peer_rows(rows):
        parts += ["## Beside other libraries", peer_table(rows, remarks)]
    for family in FAMILIES:
        of_family = [row for row in rows if row.family == family]
        if of_family:
            parts.append(f"## {family}")
            if family in pictures:
                parts.append(f"![{family}]({family}.svg)")
            parts.append(table(FULL_HEADS, [full_line(row) for row in of_family]))
    return "\n\n".join(parts) + "\n"


def keep_for_docs(root, facts, rows):
    """Keeps the figures, and puts the main ones into the page about them."""
    kept = root / "bench/results/benchmarks.csv"
    measured = [row for row in good(rows) if not row.threads]
    facts, rows = merged(facts, measured, *read_kept(kept))
    keep(kept, facts, rows)
    page = root / "docs/benchmarks.md"
    paste(page, "machine", facts_text(facts))
    paste(page, "main", main_table(rows))
    (root / "docs/pictures/benchmarks.svg").write_text(bars(main_lines(rows)))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("raw", type=Path)
    parser.add_argument("output", type=Path)
    parser.add_argument("--docs", action="store_true")
    arguments = parser.parse_args()
    try:
        context, rows = read_folder(arguments.raw)
        if not rows:
            raise NotRows(f"{arguments.raw}: no rows; does any name fit the arguments?")
        facts = describe(context, rows)
        remarks = read_remarks(Path(__file__).parent / "remarks.txt")
        pictures = pictures_of(rows, arguments.output)
        (arguments.output / "report.md").write_text(report_text(facts, rows, remarks, pictures))
        (arguments.output / "report.json").write_text(
            json.dumps({"facts": facts, "rows": [asdict(row) for row in rows]}, indent=1))
        if arguments.docs:
            keep_for_docs(ROOT, facts, rows)
    except NotRows as error:
        print(f"report.py: {error}", file=sys.stderr)
        return 2
    failed = [row for row in rows if row.error]
    for row in failed:
        print(f"report.py: {row.name}: {row.error}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
