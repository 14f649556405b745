#!/usr/bin/env python3
"""Runs the benchmark programs of two builds in turn, and shows base against change for every row.

usage: compare.py BASE CHANGE [--rounds N] [--report FILE] [arguments of the programs]

BASE and CHANGE are folders that hold the programs. Rows of one input run together, in one build and
then in the other, several times over. Exit code 0 whatever the times are, 1 if a row failed or a
program ended wrongly, 2 if nothing could be compared.
"""

import argparse
import subprocess
import sys
import tempfile
from pathlib import Path
from statistics import median

from pages import number_text, table, time_text
from rows import NotRows, parse_name, pattern_of, read_file

# Few and short, as every row runs in both builds and in every round.
USUAL = ["--copy=0", "--alone", "--row-seconds=0.05", "--least-samples=1", "--min-size=1000",
         "--max-size=1000000"]
CLEAR = 1.05  # a smaller change than this is none


class Build:
    def __init__(self, folder, arguments):
        self.arguments = USUAL + arguments
        self.programs = {path.name: path for path in sorted(folder.glob("bench_*"))
                         if path.is_file()}

    def call(self, name, *more):
        return subprocess.run([self.programs[name], *self.arguments, *more], text=True,
                              capture_output=True, timeout=600, check=False)

    def row_names(self, name):
        """The rows on all threads; None if the program does not know our arguments."""
        if name not in self.programs:
            return []
        listed = self.call(name, "--benchmark_list_tests")
        if listed.returncode != 0:
            return None
        names = [line for line in listed.stdout.splitlines() if "/iterations:1/" in line]
        return [line for line in names if "/threads:" not in line and "/beside:" not in line]

    def measure(self, name, pattern):
        """The rows whose names fit, by name, and whether the program ended well."""
        with tempfile.TemporaryDirectory() as folder:
            output = Path(folder) / f"{name.removeprefix('bench_')}.json"
            ended = self.call(name, f"--benchmark_filter={pattern}", f"--benchmark_out={output}",
                              "--benchmark_out_format=json")
            if ended.returncode != 0:
                print(f"{self.programs[name]}: {ended.stderr.strip()}", file=sys.stderr)
            rows = read_file(output)[1] if output.exists() and output.stat().st_size else []
            return {row.name: row for row in rows}, ended.returncode == 0


def measure_in_turn(builds, name, pattern, rounds):
    """For each build the rows of every round, by name; and whether all went well."""
    found = [{}, {}]
    well = True
    for number in range(rounds):
        order = (0, 1) if number % 2 == 0 else (1, 0)  # neither is always the first
        for which in order:
            rows, ended_well = builds[which].measure(name, pattern)
            well = well and ended_well
            for row_name, row in rows.items():
                found[which].setdefault(row_name, []).append(row)
    return found, well


def times(rows):
    return [row.figure("median_ms") for row in rows if not row.error]


def verdict(base, change):
    """What the times of a row in all rounds say, and what else differs."""
    remarks = []
    ratio = median(times(change)) / median(times(base))
    if ratio > CLEAR and min(times(change)) > max(times(base)):
        remarks.append("**slower**")
    if ratio < 1 / CLEAR and max(times(change)) < min(times(base)):
        remarks.append("faster")
    if base[0].words.get("hash") != change[0].words.get("hash"):
        remarks.append("**other output**")
    before, after = (rows[0].figure("B_per_element") or 0 for rows in (base, change))
    if abs(after - before) > max(1, 0.03 * before):
        remarks.append(f"memory {number_text(before)} → {number_text(after)} B/element")
    return number_text(ratio), ", ".join(remarks)


def spread_text(values):
    return f"{time_text(median(values))} ({time_text(min(values))} – {time_text(max(values))})"


def line_of(name, base, change):
    if not times(base) or not times(change):
        side = "base" if not times(base) else "change"
        return [name, "", "", "", f"**failed in the {side}**"]
    return [name, spread_text(times(base)), spread_text(times(change)), *verdict(base, change)]


def groups_of(names):
    """The rows by input and size, in order."""
    groups = {}
    for name in names:
        parts = parse_name(name)
        groups.setdefault((parts["input"], parts["size"]), []).append(name)
    return groups


class Comparison:
    def __init__(self, builds, rounds):
        self.builds = builds
        self.rounds = rounds
        self.lines = []
        self.remarks = []
        self.well = True

    def add_program(self, name):
        base, change = (build.row_names(name) for build in self.builds)
        for side, rows in (("base", base), ("change", change)):
            if rows is None:
                self.remarks.append(f"{name} of the {side} does not write what is compared here: "
                                    "it is older than this comparison, or fails")
        base, change = base or [], change or []
        both = [row for row in change if row in base]
        for only, word in ((set(change) - set(base), "new"), (set(base) - set(change), "gone")):
            self.remarks += [f"{word}: {row.split('/iterations')[0]}" for row in sorted(only)]
        for (source, size), rows in groups_of(both).items():
            print(f"{name}: {source}, {size}", file=sys.stderr)
            self.add_rows(name, pattern_of(rows))

    def add_rows(self, name, pattern):
        (base, change), well = measure_in_turn(self.builds, name, pattern, self.rounds)
        self.well = self.well and well
        for row_name in change:
            if row_name in base:
                self.lines.append(line_of(row_name, base[row_name], change[row_name]))

    def text(self):
        heads = ["kernel/input/size", "base", "change", "change / base", ""]
        parts = [table(heads, self.lines)] if self.lines else []
        return "\n\n".join(parts + ["\n".join(f"- {remark}" for remark in self.remarks)]) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("base", type=Path)
    parser.add_argument("change", type=Path)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--report", type=Path)
    arguments, more = parser.parse_known_args()
    comparison = Comparison([Build(arguments.base, more), Build(arguments.change, more)],
                            arguments.rounds)
    try:
        for name in {**comparison.builds[0].programs, **comparison.builds[1].programs}:
            comparison.add_program(name)
    except (NotRows, subprocess.TimeoutExpired) as error:
        print(f"compare.py: {error}", file=sys.stderr)
        return 1
    print(comparison.text(), end="")
    if arguments.report:
        arguments.report.write_text("# Base against change\n\n" + comparison.text())
    if not comparison.lines:
        print("compare.py: no row is in both builds", file=sys.stderr)
        return 2
    return 0 if comparison.well else 1


if __name__ == "__main__":
    sys.exit(main())
