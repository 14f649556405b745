#!/usr/bin/env python3
"""Holds every file to the table of folders in CONTRIBUTING.md.

The last cell of a row says what a folder's files may include beside each other: folders of the project,
and libraries by the first part of their headers' names. "`X` in `FILE` alone" lets only that file
include X, "public headers" are those that are installed, "anything" is no bound, and `folder/*` stands for
each subfolder by itself. Subfolders without a row belong to the folder above them. The standard library
and the system's headers are open to all.
"""

import re
import sys
from fnmatch import fnmatchcase
from pathlib import Path, PurePath

PUBLIC = "`include/Tessary`, `mesh/include`, `embedded/include`"
ROOTS = ["", "include", "embedded/include", "mesh/include", "src", "mesh", "bench", "tests", "cmake"]
INCLUDE = re.compile(r'\s*#\s*include\s*[<"]([^>"]+)')
SYSTEM = re.compile(r"[a-z_]+|sys/.*|(dlfcn|fcntl|io|malloc|poll|pthread|spawn|stdlib|unistd|windows)\.h")
ITEM = re.compile(r"`([^`]+)`(?: in `([^`]+)` alone)?")


def read_table(text):
    """What each folder may include: pairs of a name and the only file that may, or ""."""
    rows, faults = {}, []
    for line in re.findall(r"^\|(.*`.*)\|$", text, re.MULTILINE):
        cells = [cell.strip() for cell in line.split("|")]
        words = cells[-1].replace("public headers", PUBLIC).replace("anything", "`*`")
        for folder, _ in ITEM.findall(cells[0]):
            if folder in rows:
                faults.append(f"CONTRIBUTING.md: `{folder}` stands in the table twice")
            rows[folder] = ITEM.findall(words)
    return rows, faults


def home_of(path, rows):
    """The folder that the file belongs to, and its row in the table."""
    for folder in map(str, PurePath(path).parents):
        for row in rows:
            if fnmatchcase(folder, row) and folder.count("/") == row.count("/"):
                return folder, row
    return None, None


def resolve(name, includer, files):
    """The file of the project that is included, or None. A header that is made stands for its template."""
    includer = PurePath(includer)
    for place in [includer.parent, includer.parts[0], *ROOTS]:
        for suffix in ("", ".in"):
            path = str(PurePath(place) / name) + suffix
            if path in files:
                return path
    return None


def is_allowed(name, includer, rows, files):
    home, row = home_of(includer, rows)
    target = resolve(name, includer, files)
    if target is None and SYSTEM.fullmatch(name):
        return True
    what, what_row = home_of(target, rows) if target else (name.split("/")[0],) * 2
    return home == what or any(
        item in ("*", what_row) or target is None and fnmatchcase(what, item)
        for item, only in rows[row] if only in ("", PurePath(includer).name))


def check_file(path, rows, files):
    home, _ = home_of(path, rows)
    if home is None:
        return [f"{path}: no row of the table in CONTRIBUTING.md is about its folder"]
    lines = enumerate(Path(path).read_text().splitlines(), 1)
    found = ((number, INCLUDE.match(line)) for number, line in lines)
    return [f"{path}:{number}: `{home}` may not include {match[1]}" for number, match in found
            if match and not is_allowed(match[1], path, rows, files)]


def sources():
    folders = [path for path in Path().iterdir() if path.is_dir() and path.name != "build"]
    return {str(path) for folder in folders for path in folder.rglob("*")
            if path.name.endswith((".h", ".cpp", ".h.in", ".cpp.in"))}


def main():
    files = sources()
    rows, faults = read_table(Path("CONTRIBUTING.md").read_text())
    for row in set(rows) - {home_of(path, rows)[1] for path in files}:
        faults.append(f"CONTRIBUTING.md: `{row}` stands in the table, but holds no file")
    for path in sorted(files):
        faults += check_file(path, rows, files)
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
