"""Rows of the benchmark programs, read from the JSON files that they write."""

import csv
import json
import re
from dataclasses import dataclass, field
from pathlib import Path

FAMILIES = ["topology", "triangulation", "cutmesh", "sampling", "primitives", "solver", "starts", "mesh"]

# What a row has at least; files of older programs have no such figures.
NEEDED = ["median_ms", "low_ms", "high_ms", "elements"]


# What is kept of a row, as words and as figures; kept files hold facts before the rows.
KEPT_WORDS = ["unit", "other", "difference"]
KEPT_FIGURES = ["elements", "median_ms", "other_ms", "ratio", "x_copy", "B_per_element", "speed_up", "process_MB"]
KEPT = ["family", "kernel", "input", "size", "beside", *KEPT_FIGURES, *KEPT_WORDS, "error"]


class NotRows(Exception):
    """A file that is not what the benchmark programs of this project write."""


@dataclass
class Row:
    family: str
    kernel: str
    input: str
    size: int
    threads: int = 0  # the limit on threads; 0 means none
    beside: str = ""
    figures: dict = field(default_factory=dict)
    words: dict = field(default_factory=dict)  # unit, hash, other, difference, note
    error: str = ""

    @property
    def name(self):
        threads = f"/threads:{self.threads}" if self.threads else ""
        beside = f"/beside:{self.beside}" if self.beside else ""
        return f"{self.kernel}/{self.input}/{self.size}{threads}{beside}"

    def figure(self, name):
        return self.figures.get(name)

    @property
    def spread(self):
        """Half of the distance between the quartiles, relative to the median."""
        figures = self.figures
        return (figures["high_ms"] - figures["low_ms"]) / 2 / figures["median_ms"]


def parse_name(name):
    """The parts of "kernel/input/size/threads:1/beside:OTHER/iterations:1/manual_time"."""
    parts = name.split("/")
    if len(parts) < 3 or not parts[2].isdigit():
        raise NotRows(f'row "{name}" is not named kernel/input/size')
    options = dict(part.split(":", 1) for part in parts[3:] if ":" in part)
    return {
        "kernel": parts[0],
        "input": parts[1],
        "size": int(parts[2]),
        "threads": int(options.get("threads", 0)),
        "beside": options.get("beside", ""),
    }


def pattern_of(names):
    """Matches these rows alone; a regular expression of ECMAScript."""
    escaped = [re.sub(r"([][.+*?(){}|^$\\])", r"\\\1", name) for name in names]
    return f"^({'|'.join(escaped)})$"


def parse_row(family, benchmark):
    words = benchmark.get("label", "")
    row = Row(family, **parse_name(benchmark["name"]))
    row.words = dict(word.split("=", 1) for word in words.split(" | ") if "=" in word)
    if benchmark.get("error_occurred"):
        row.error = benchmark.get("error_message", "failed")
        return row
    row.figures = {key: value for key, value in benchmark.items() if isinstance(value, (int, float))}
    missing = [key for key in NEEDED if key not in row.figures]
    if missing:
        raise NotRows(f'row "{row.name}" has no {", ".join(missing)}')
    return row


def read_file(path):
    """The context and the rows of one program's file."""
    family = re.sub(r"^peers_", "", path.stem)
    try:
        content = json.loads(path.read_text())
        return content["context"], [parse_row(family, each) for each in content["benchmarks"]]
    except (ValueError, KeyError, TypeError) as error:
        raise NotRows(f"{path}: not what a benchmark program writes ({error})") from error
    except NotRows as error:
        raise NotRows(f"{path}: {error}") from error


def give_one_time(rows):
    """Makes rows of one kernel, input and size show one time.

    Beside every library, and in the family's own program, a kernel is measured anew. The median of these
    times stands in all of the rows. Ratios and speed-ups stay those of times taken one after the other.
    """
    same = {}
    for row in good(rows):
        same.setdefault((*key_without_size(row), row.size, row.threads), []).append(row)
    for group in same.values():
        group.sort(key=lambda row: row.figure("median_ms"))
        middle = dict(group[(len(group) - 1) // 2].figures)
        for row in group:
            row.figures["measured_ms"] = row.figure("median_ms")
            faster = row.figure("median_ms") / middle["median_ms"]
            row.figures.update({key: middle[key] for key in ("median_ms", "low_ms", "high_ms")})
            row.figures.update({key: row.figures[key] * factor for key, factor in
                                (("per_s", faster), ("GB_per_s", faster), ("x_copy", 1 / faster))
                                if key in row.figures})


def read_folder(folder):
    """The merged context and all rows, families in their order, with one time for each job."""
    context, rows = {}, []
    for path in sorted(Path(folder).glob("*.json")):
        if path.stat().st_size == 0:  # no row was chosen
            continue
        found, more = read_file(path)
        context.update(found)
        rows += more
    give_one_time(rows)
    for name, ratio in speed_ups(rows).items():
        next(row for row in rows if row.name == name).figures["speed_up"] = ratio
    order = {family: place for place, family in enumerate(FAMILIES)}
    return context, sorted(rows, key=lambda row: order.get(row.family, len(order)))


def keep(path, facts, rows):
    """Writes facts and rows into a file that read_kept() reads, figures with four digits."""
    with path.open("w", newline="") as file:
        file.writelines(f"# {name}: {text}\n" for name, text in facts.items() if text)
        writer = csv.DictWriter(file, KEPT, extrasaction="ignore", lineterminator="\n")
        writer.writeheader()
        for row in rows:
            figures = {key: f"{row.figures[key]:.4g}" for key in KEPT_FIGURES if key in row.figures}
            figures["elements"] = f"{row.figures.get('elements', row.size):.0f}"
            writer.writerow({**vars(row), **figures, **row.words})


def read_kept(path):
    """The facts and the rows of a kept file; none where there is no such file."""
    lines = path.read_text().splitlines() if path.exists() else []
    facts = dict(line[2:].split(": ", 1) for line in lines if line.startswith("# "))
    rows = []
    for line in csv.DictReader(line for line in lines if not line.startswith("# ")):
        row = Row(line["family"], line["kernel"], line["input"], int(line["size"]), beside=line["beside"],
                  error=line["error"])
        row.words = {key: line[key] for key in KEPT_WORDS if line[key]}
        row.figures = {key: float(line[key]) for key in KEPT_FIGURES if line[key]}
        rows.append(row)
    return facts, rows


def merged(facts, rows, old_facts, old_rows):
    """The rows, and those of an earlier run that were not measured now, in the order of the families."""
    measured = {row.name for row in rows}
    left = [row for row in old_rows if row.name not in measured]
    facts = dict(facts)
    if left:
        facts["measured before"] = old_facts.get("measured before") or \
            f"{len(left)} rows, at {old_facts.get('revision', '?')} on {old_facts.get('date', '?')}"
    order = {family: place for place, family in enumerate(FAMILIES)}
    return facts, sorted([*rows, *left], key=lambda row: order.get(row.family, len(order)))


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
    return {row.name: one[row.name].figure("measured_ms") / row.figure("measured_ms")
            for row in own_rows(rows) if row.name in one}


def read_remarks(path):
    """Pairs of a pattern of row names and a text, from lines "pattern :: text"; * fits anything."""
    remarks = []
    for line in path.read_text().splitlines():
        pattern, separator, text = line.partition(" :: ")
        if separator and not line.startswith("#"):
            parts = [re.escape(part) for part in pattern.strip().split("*")]
            remarks.append((re.compile(".*".join(parts)), text.strip()))
    return remarks
