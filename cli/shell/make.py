#!/usr/bin/env python3
"""Writes the manual page and the completions of the program, from the tables of options that it has itself.

usage: make.py PROGRAM FOLDER

FOLDER gets tessary.1, and for bash, zsh and fish files of the names that these shells look for: tessary,
_tessary and tessary.fish.
"""

import json
import subprocess
import sys
from pathlib import Path

from completion import bash, fish, zsh
from manual import manual


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def main(program, folder):
    tables = json.loads(output_of(program, "help", "--json"))
    version = output_of(program, "--version").splitlines()[0].split()[-1]
    folder = Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    made = {"tessary.1": manual(tables, version), "tessary": bash(tables), "_tessary": zsh(tables),
            "tessary.fish": fish(tables)}
    for name, text in made.items():
        (folder / name).write_text(text)


if __name__ == "__main__":
    main(*sys.argv[1:])
