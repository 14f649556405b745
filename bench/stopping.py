"""How long the program takes to end after a signal: at moments spread over each verb's work.

usage: stopping.py PROGRAM FOLDER [--resolution N] [--moments N] [--verb VERB...] [--report FILE]

FOLDER gets the demo mesh and is emptied of what the verbs write. Prints a table of milliseconds from
the signal to the end of the process, and fails where any is above the goal.
"""

import argparse
import os
import signal
import statistics
import subprocess
import sys
import tempfile
import time

GOAL = 0.25  # seconds

# What each verb does with the demo mesh; the samples are about four million.
COMMANDS = {
    "info": ["info", "{mesh}"],
    "validate": ["validate", "{mesh}"],
    "triangulate": ["triangulate", "{mesh}", "-o", "{out}/out.obj"],
    "triangulate to PLY": ["triangulate", "{mesh}", "-o", "{out}/out.ply"],
    "quads": ["quads", "{mesh}", "--crease-angle", "20", "-o", "{out}/out.ply"],
    "sphere": ["sphere", "{mesh}"],
    "voxels": ["voxels", "{mesh}", "--cell", "0.01", "-o", "{out}/out.npz"],
    "adjacency": ["adjacency", "{mesh}", "-o", "{out}/out.npz"],
    "sample": ["sample", "{mesh}", "--distance", "{distance}", "-o", "{out}/out.ply"],
    "sample by count": ["sample", "{mesh}", "--count", "4000000", "-o", "{out}/out.ply"],
    "demo": ["demo", "--resolution", "{resolution}", "--output", "{out}/demo"],
}


def start(command):
    return subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)


def seconds_of(command):
    begin = time.perf_counter()
    process = start(command)
    message = process.communicate()[1]
    if process.returncode != 0:
        sys.exit(f"{' '.join(command)}: {message}")
    return time.perf_counter() - begin


def seconds_to_stop(command, moment):
    """None where the work was over before the signal came."""
    process = start(command)
    time.sleep(moment)
    begin = time.perf_counter()
    process.send_signal(signal.SIGINT)
    process.communicate()
    seconds = time.perf_counter() - begin
    return seconds if process.returncode == 130 else None


def measure(command, moments):
    """(seconds of the whole work, [(moment, seconds to stop)])"""
    whole = seconds_of(command)
    stops = []
    for k in range(moments):
        moment = whole * (k + 0.5) / moments
        seconds = seconds_to_stop(command, moment)
        if seconds is not None:
            stops.append((moment, seconds))
    return whole, stops


def row(name, whole, stops):
    worst_moment, worst = max(stops, key=lambda stop: stop[1])
    median = statistics.median(seconds for _, seconds in stops)
    return (f"| {name} | {whole:.2f} | {len(stops)} | {1000 * median:.0f} | {1000 * worst:.0f} | "
            f"{worst_moment:.2f} |")


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program")
    parser.add_argument("folder")
    parser.add_argument("--resolution", default="512")
    parser.add_argument("--distance", default="0.25%", help="of the samples")
    parser.add_argument("--moments", type=int, default=20)
    parser.add_argument("--verb", action="append", choices=COMMANDS)
    parser.add_argument("--report", help="a file for the table")
    return parser.parse_args()


def main():
    options = arguments()
    os.makedirs(options.folder, exist_ok=True)
    mesh = os.path.join(options.folder, "demo.obj")
    seconds_of([options.program, "demo", "--resolution", options.resolution, "--output",
                options.folder])
    lines = ["| verb | whole (s) | stops | median (ms) | longest (ms) | at (s) |",
             "|---|---:|---:|---:|---:|---:|"]
    slow = []
    with tempfile.TemporaryDirectory(dir=options.folder) as out:
        values = {"mesh": mesh, "out": out, "distance": options.distance,
                  "resolution": options.resolution}
        print("\n".join(lines), flush=True)
        for name in options.verb or COMMANDS:
            command = [options.program] + [part.format(**values) for part in COMMANDS[name]]
            whole, stops = measure(command + ["--force"] * (name not in ("info", "validate", "sphere", "demo")),
                                   options.moments)
            lines.append(row(name, whole, stops))
            print(lines[-1], flush=True)
            slow += [name for _, seconds in stops if seconds > GOAL]
    if options.report:
        with open(options.report, "w", encoding="utf-8") as file:
            file.write("\n".join(lines) + "\n")
    return f"slower than {GOAL} s to stop: {', '.join(sorted(set(slow)))}" if slow else 0


if __name__ == "__main__":
    sys.exit(main())
