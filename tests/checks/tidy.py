#!/usr/bin/env python3
"""usage: tidy.py BUILD_FOLDER [each]

The sources that are built hold what .clang-tidy asks for, there and in their own folder. Most of the time goes into
the headers that all of them include, so they are looked at in batches, as if they were one source. Those that do not
compile together, because they give one name to two things, are parted. Two checks, of unused aliases, are silent
in batches; "each" looks at every source alone, which takes longer.
"""

import concurrent.futures
import json
import os
import re
import shlex
import subprocess
import sys
from pathlib import Path

BATCH = 8
FOLDERS = ("cli", "python", "src", "embedded", "mesh", "system")  # those that take longest first
# The program is built with a precompiled header, which only the compiler that made it can read.
NOT_FOR_CLANG = re.compile(r"^\S*/ccache |-Winvalid-pch -include \S+| -o \S+| -c \S+")


def sources(build):
    """Source files by the command that compiles them, each once."""
    by_command = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        file = Path(entry["file"])
        if file.is_relative_to(Path.cwd()) and file.relative_to(Path.cwd()).parts[0] in FOLDERS:
            flags = tuple(shlex.split(NOT_FOR_CLANG.sub("", entry["command"]))[1:])
            by_command.setdefault((entry["directory"], flags), set()).add(file)
    seen = set()
    for command, files in sorted(by_command.items(), key=lambda item: -len(item[1])):
        yield command, sorted(files - seen)
        seen |= files


class Batch:
    def __init__(self, command, files, folder):
        self.directory, self.flags = command
        self.files, self.folder = files, folder

    def name(self):
        """Of one source that includes those of the batch, or of the only one."""
        if len(self.files) == 1:
            return str(self.files[0])
        first = self.files[0].relative_to(Path.cwd())
        path = self.folder / f"{'-'.join(first.with_suffix('').parts)}-{len(self.files)}.cpp"
        path.write_text("".join(f'#include "{file}"  // NOLINT(bugprone-suspicious-include)\n' for file in self.files))
        return str(path)

    def faults(self):
        """What clang-tidy says; nothing where all is well."""
        checked = self._run("clang-tidy", "--quiet", "--warnings-as-errors=*",
                            f"--config-file={Path.cwd() / '.clang-tidy'}", self.name(), "--", *self.flags)
        if len(self.files) > 1 and "clang-diagnostic-error" in checked.stdout:
            middle = len(self.files) // 2
            return "".join(Batch((self.directory, self.flags), part, self.folder).faults()
                           for part in (self.files[:middle], self.files[middle:]))
        return checked.stdout if checked.returncode else ""

    def _run(self, *command):
        return subprocess.run(command, cwd=self.directory, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, check=False)


def main():
    build = Path(sys.argv[1])
    size = 1 if sys.argv[2:] == ["each"] else BATCH
    folder = build.resolve() / "tidy"
    folder.mkdir(exist_ok=True)
    batches = [Batch(command, files[at:at + size], folder)
               for command, files in sources(build) for at in range(0, len(files), size)]
    batches.sort(key=lambda batch: FOLDERS.index(batch.files[0].relative_to(Path.cwd()).parts[0]))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        faults = [fault for fault in pool.map(Batch.faults, batches) if fault]
    print("".join(faults), end="")
    print(f"{sum(len(batch.files) for batch in batches)} sources, {len(faults)} of {len(batches)} batches with faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
