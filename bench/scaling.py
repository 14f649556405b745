#!/usr/bin/env python3
"""Measures kernels on ever larger inputs, until they do not fit, each in a process of its own.

usage: scaling.py PROGRAMS OUTPUT [--resume] [--docs] [--memory GB] [--seconds S]
                  [arguments of the programs]

PROGRAMS is the folder that holds the programs. OUTPUT gets raw/FAMILY.json, row by row, and
scaling.md; with --resume, rows that are there already stay. With --docs, the figures are kept in
bench/results. Exit code 1 if a row failed for another reason than memory or time.
"""

import argparse
import json
import resource
import signal
import subprocess
import sys
import tempfile
from math import log
from pathlib import Path

from machine import describe, facts_text
from pages import number_text, size_text, table, time_text
from rows import NotRows, good, grouped, keep, own_rows, parse_name, pattern_of, read_folder

# What is measured; the rest is done element by element, without memory of its own.
CHOSEN = {
    "topology": "^(constructDualMesh|addDual|computeTriEdges|populateAdjacentTri|addAdjacentTri|"
                "computeQuadMesh flags)/torus|^quadFaceIndexedInterpolation",
    "triangulation": "/(torus of quads, fresh|mixed polygons, fresh|mixed polygons)/",
    "cutmesh": "/torus",
    "sampling": "/(sphere|four)",
    "primitives": "computeBoundingSphere/(in a ball|on a mesh)",
    "solver": "/mixed",
    "mesh": "readMesh.*/(OBJ|PLY)/|writeMesh.*/(OBJ|PLY)/|validateMesh",
}
USUAL = ["--alone", "--min-size=100000", "--max-size=1000000000", "--row-seconds=0.3"]
COLUMNS = [(100000, "10⁵"), (1000000, "10⁶"), (8000000, "8·10⁶"), (30000000, "3·10⁷"),
           (100000000, "10⁸")]
KEPT = Path(__file__).resolve().parent / "results/scaling.csv"
NO_MEMORY = "needs more memory"
NO_TIME = "takes longer"
LIMITS = (NO_MEMORY, NO_TIME)


class Runner:
    def __init__(self, memory, seconds, arguments):
        self.memory = memory
        self.seconds = seconds
        self.arguments = USUAL + arguments

    def limit(self):
        resource.setrlimit(resource.RLIMIT_AS, (self.memory, self.memory))

    def call(self, program, *more):
        return subprocess.run([program, *self.arguments, *more], text=True, capture_output=True,
                              timeout=self.seconds, preexec_fn=self.limit, check=False)

    def names(self, program, family):
        """Names of the chosen rows, by kernel and input, small ones first."""
        filtered = any(each.startswith("--benchmark_filter") for each in self.arguments)
        chosen = [] if filtered else [f"--benchmark_filter={CHOSEN[family]}"]
        listed = self.call(program, "--benchmark_list_tests", *chosen).stdout.splitlines()
        names = [line for line in listed if "/iterations:1/" in line and "/threads:" not in line]
        names.sort(key=lambda name: parse_name(name)["size"])
        series = {}
        for name in names:
            parts = parse_name(name)
            series.setdefault((parts["kernel"], parts["input"]), []).append(name)
        return series

    def measure(self, program, name, copy):
        """The context and the row as the program writes it, with an error where it did not."""
        with tempfile.NamedTemporaryFile(suffix=".json") as output:
            try:
                ended = self.call(program, f"--benchmark_filter={pattern_of([name])}",
                                  f"--benchmark_out={output.name}", "--benchmark_out_format=json",
                                  *([f"--copy={copy}"] if copy else []))
            except subprocess.TimeoutExpired:
                return {}, failed(name, NO_TIME)
            content = Path(output.name).read_text()
        if not content.rstrip().endswith("}"):
            text = ended.stderr.strip().replace("\n", "; ")
            return {}, failed(name, NO_MEMORY if "bad_alloc" in text else
                              f"ended with {ended.returncode}: {text}")
        content = json.loads(content)
        row = content["benchmarks"][0]
        if row.get("error_message") == "not enough memory":
            row = failed(name, NO_MEMORY)
        return content["context"], row


def failed(name, message):
    return {"name": name, "error_occurred": True, "error_message": message}


class Results:
    """The rows of one family, kept in its file."""

    def __init__(self, path, resume):
        self.path = path
        kept = resume and path.exists()
        self.content = json.loads(path.read_text()) if kept else {"context": {}, "benchmarks": []}

    def find(self, name):
        return next((row for row in self.content["benchmarks"] if row["name"] == name), None)

    def add(self, context, row):
        self.content["context"].update(context)
        self.content["benchmarks"].append(row)
        self.path.write_text(json.dumps(self.content, indent=1))


def climb(runner, program, names, results):
    """Measures one kernel and input, until a size is too large."""
    for name in names:
        row = results.find(name)
        if row is None:
            print(name.split("/iterations")[0], file=sys.stderr, flush=True)
            context, row = runner.measure(program, name,
                                          results.content["context"].get("copy_GB_per_s"))
            results.add(context, row)
        if row.get("error_occurred"):
            return


def nanoseconds(row):
    return number_text(1e6 * row.figure("median_ms") / row.figure("elements"))


def near(size, rows):
    """The row of that size, or of the nearest one within a factor of 1.6."""
    row = min(rows, key=lambda row: abs(log(row.size / size)))
    return row if abs(log(row.size / size)) < log(1.6) else None


def series_line(kernel, source, group):
    """How the figures of one kernel and input grow."""
    measured = good(group)
    columns = [near(size, measured) for size, _ in COLUMNS]
    last = measured[-1]
    end = next((row for row in group if row.error), None)
    return [f"`{kernel}`", source, last.words.get("unit", "element"),
            *(nanoseconds(row) if row else "" for row in columns), nanoseconds(last),
            size_text(int(last.figure("elements"))), time_text(last.figure("median_ms")),
            number_text(last.figure("B_per_element")),
            number_text(1e-3 * last.figure("process_MB")),
            f"{size_text(end.size)} {end.error if end.error in LIMITS else '**failed**'}"
            if end else ""]


def scaling_table(rows):
    lines = []
    for (_, kernel, source), group in grouped(row for row in rows if not row.threads).items():
        if own_rows(group):
            lines.append(series_line(kernel, source, group))
    heads = ["kernel", "input", "element", *(f"ns at {text}" for _, text in COLUMNS),
             "at the largest", "largest", "its time", "peak B", "process GB", "beyond"]
    return table(heads, lines)


def report(raw, output, docs):
    context, rows = read_folder(raw)
    if not good(rows):
        raise NotRows(f"{raw}: no rows; does any name fit the arguments?")
    facts = describe(context, rows)
    (output / "scaling.md").write_text(f"# Scaling\n\n{facts_text(facts)}\n\n{scaling_table(rows)}\n")
    if docs:
        keep(KEPT, facts, [row for row in rows if not row.threads])
    return [row for row in rows if row.error and row.error not in LIMITS]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("programs", type=Path)
    parser.add_argument("output", type=Path)
    parser.add_argument("--resume", action="store_true")
    parser.add_argument("--docs", action="store_true")
    parser.add_argument("--memory", type=float, default=16)
    parser.add_argument("--seconds", type=float, default=300)
    arguments, more = parser.parse_known_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # subprocess ends the program with us
    runner = Runner(int(arguments.memory * 1e9), arguments.seconds, more)
    raw = arguments.output / "raw"
    raw.mkdir(parents=True, exist_ok=True)
    for path in raw.glob("*.json") if not arguments.resume else []:
        path.unlink()
    try:
        for family in CHOSEN:
            program = arguments.programs / f"bench_{family}"
            results = Results(raw / f"{family}.json", arguments.resume)
            for names in runner.names(program, family).values():
                climb(runner, program, names, results)
        unexpected = report(raw, arguments.output, arguments.docs)
    except (NotRows, OSError) as error:
        print(f"scaling.py: {error}", file=sys.stderr)
        return 2
    for row in unexpected:
        print(f"scaling.py: {row.name}: {row.error}", file=sys.stderr)
    return 1 if unexpected else 0


if __name__ == "__main__":
    sys.exit(main())
