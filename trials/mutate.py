"""Plants faults, one at a time, and says which of them no test notices.

usage: mutate.py [--count N] [--seed N] [--folder FOLDER]... [--known]

The faults are of the kinds that people make: off by one, swapped operands, a dropped term, a wrong comparison, a
lost guard. They are drawn from the sources of the kernels, the mesh library and the embedded host, in a copy of
the last commit below build/mutate; only the library and the tests of a fault are built. Ends with 1 where one
survives. --known tries those that survived once.
"""

import argparse
import os
import random
import re
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
COPY, BUILD = ROOT / "build/mutate/source", ROOT / "build/mutate/build"

# The programs that test a folder, the quickest first; what a test of another folder would find is of no use to who
# works on this one.
TESTS = {
    "src/base": ["base", "topology"], "src/topology": ["topology", "cutmesh"], "src/properties": ["properties", "cutmesh"],
    "src/triangulate": ["triangulate"], "src/cutmesh": ["cutmesh"], "src/primitives": ["primitives"],
    "src/sampling": ["sampling"], "src/solver": ["solver"], "embedded/src": ["embedded", "mesh"],
    "mesh/arrays": ["mesh"], "mesh/base": ["mesh"], "mesh/check": ["mesh"], "mesh/ops": ["mesh"], "mesh/files": ["mesh"],
}
PATIENCE = 300  # seconds for a test program; one that hangs has noticed

# Beside faults that only cost time, which no test is to notice.
PASSED_OVER = re.compile(r"TESSARY_ASSERT|constexpr std::size_t k|reserve\(|progress|^\s*//|#|static_assert|template")

KINDS = {
    "off by one": [(r"(?<=[\w\])]) \+ 1\b", ""), (r"(?<=[\w\])]) - 1\b", ""), (r"(?<=\w) < (?=[\w.]+;)", " <= ")],
    "swapped operands": [(r"\b(\w+) - (\w+)\b", r"\2 - \1"), (r"\b(\w+) / (\w+)\b", r"\2 / \1")],
    "dropped term": [(r"(?<=[\w\])]) \+ (?!1\b)[\w.\[\]]+(?=[;,)])", ""), (r"(?<=[\w\])]) && [\w.!()]+(?=\))", "")],
    "wrong comparison": [(r" == ", " != "), (r" <= ", " < "), (r" >= ", " > "), (r" < (?=\w)", " > ")],
    "lost guard": [(r"\bif \((?!constexpr)(.*)\)$", r"if (false && (\1))")],
}

KNOWN = [  # (file, before, after)
    ("src/primitives/FarthestPoint.cpp", "a.index < b.index ? a : b", "a.index < b.index ? b : a"),
    ("src/primitives/FarthestPoint.cpp", "if (d > found.squaredDistance)", "if (d >= found.squaredDistance)"),
    ("src/sampling/Neighbourhood.h", "add(add(mul(y, y), mul(x, x)), mul(z, z))",
     "add(mul(y, y), add(mul(x, x), mul(z, z)))"),
    ("src/sampling/AliasTable.cpp", "            table.alias[z] = 0;", "            table.alias[z] = static_cast<uint>(z);"),
]


def candidates(folders):
    """(file, line, kind, before, after), each once."""
    for folder in folders:
        for path in sorted((COPY / folder).rglob("*.cpp")):
            for number, line in enumerate(path.read_text().splitlines()):
                if PASSED_OVER.search(line):
                    continue
                for kind, rules in KINDS.items():
                    for pattern, replacement in rules:
                        for match in re.finditer(pattern, line):
                            after = line[:match.start()] + match.expand(replacement) + line[match.end():]
                            if after != line:
                                yield path, number, kind, line, after


def known():
    for name, before, after in KNOWN:
        path = COPY / name
        for number, line in enumerate(path.read_text().splitlines()):
            if before in line:
                yield path, number, "known", line, line.replace(before, after)
                break
        else:
            sys.exit(f"mutate.py: {name} has no longer \"{before}\"")


def draw(count, seed, folders):
    """As many of each kind as can be, none twice in a line."""
    generator, by_kind, lines = random.Random(seed), {}, set()
    for fault in candidates(folders):
        by_kind.setdefault(fault[2], []).append(fault)
    for faults in by_kind.values():
        generator.shuffle(faults)
    kinds = list(by_kind.values())
    while any(kinds):
        for faults in kinds:
            if faults:
                fault = faults.pop()
                if fault[:2] not in lines:
                    lines.add(fault[:2])
                    yield fault


def prepare():
    commit = subprocess.run(["git", "rev-parse", "HEAD"], cwd=ROOT, check=True, capture_output=True, text=True).stdout.strip()
    subprocess.run(["git", "worktree", "prune"], cwd=ROOT, check=True)
    if COPY.exists():
        subprocess.run(["git", "checkout", "--quiet", "--force", "--detach", commit], cwd=COPY, check=True)
    else:
        subprocess.run(["git", "worktree", "add", "--quiet", "--force", "--detach", COPY, commit], cwd=ROOT, check=True)
    subprocess.run(["cmake", "-S", COPY, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
                    "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g1", "-DTESSARY_CHECKED=ON",
                    "-DTESSARY_BUILD_PROGRAM=OFF", "-DTESSARY_BUILD_PYTHON=OFF"],
                   check=True, stdout=subprocess.DEVNULL)


def build(targets):
    done = subprocess.run(["cmake", "--build", BUILD, "--parallel", str(os.cpu_count()), "--target", *targets],
                          capture_output=True, text=True)
    return done.returncode == 0


def tests_of(path):
    name = path.relative_to(COPY).as_posix()
    return next(tests for folder, tests in TESTS.items() if name.startswith(folder + "/"))


def is_noticed(tests):
    for test in tests:
        folder = BUILD / "tests" / test
        try:
            done = subprocess.run([folder / f"test_{test}", "--gtest_brief=1", "--gtest_fail_fast"], cwd=folder,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            return True
        if done.returncode != 0:
            return True
    return False


def verdict_of(fault):
    """"killed", "survived" or "no fault" where it does not compile."""
    path, number, _, _, after = fault
    original = path.read_text()
    lines = original.splitlines(keepends=True)
    lines[number] = after + "\n"
    tests = tests_of(path)
    targets = ["tessary", "korvane_embedded"] + [f"test_{test}" for test in tests]
    try:
        path.write_text("".join(lines))
        if not build(targets):
            return "no fault"
        return "killed" if is_noticed(tests) else "survived"
    finally:
        path.write_text(original)


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=60)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--folder", action="append", choices=TESTS)
    parser.add_argument("--known", action="store_true")
    return parser.parse_args()


def main():
    options = arguments()
    prepare()
    folders = options.folder or list(TESTS)
    tests = sorted({test for folder in folders for test in TESTS[folder]})
    if not build([f"test_{test}" for test in tests]) or is_noticed(tests):
        sys.exit("mutate.py: the tests fail without any fault")
    faults = known() if options.known else draw(options.count, options.seed, folders)
    counts, survivors, begin = {"killed": 0, "survived": 0}, [], time.time()
    for fault in faults:
        if not options.known and sum(counts.values()) == options.count:
            break
        verdict = verdict_of(fault)
        path, number, kind, before, after = fault
        if verdict in counts:
            counts[verdict] += 1
            place = f"{path.relative_to(COPY)}:{number + 1}"
            print(f"{verdict:8} {kind:16} {place}", flush=True)
            if verdict == "survived":
                survivors.append(f"{place}, {kind}\n  - {before.strip()}\n  + {after.strip()}")
    print(f"\n{counts['killed']} noticed, {counts['survived']} not, in {time.time() - begin:.0f} s")
    print("\n".join(survivors))
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
