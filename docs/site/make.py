#!/usr/bin/env python3
"""Makes the site of the documentation.

usage: make.py --program FILE --python FOLDER --examples FOLDER OUTPUT

Gathers the pages of docs/, makes those that are made (the program's help, the reference of C++ and Python,
the examples with what they print), and hands them to Sphinx. --program is the program tessary, --python the
folder of the Python package, --examples that of the built examples. What Sphinx warns of, and links that lead
nowhere, are errors.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

from headers import cpp_pages
from links import faults_of
from pages import Faults, Pages
from reference import example_pages, python_pages, with_help
from theme import mend_theme

ROOT = Path(__file__).resolve().parents[2]


def project_version():
    return re.search(r"project\(Tessary VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text())[1]


def gather(source, arguments):
    """Writes every page into `source`."""
    pages = Pages(ROOT, source)
    for page in sorted((ROOT / "docs").glob("*.md")):
        pages.add_guide(page)
    pages.add("command-line.md", with_help(pages.text("command-line.md"), arguments.program))
    pages.add("changes.md", pages.rewritten(ROOT / "CHANGELOG.md"))
    pages.add("contributing.md", pages.rewritten(ROOT / "CONTRIBUTING.md"))
    made = {"C++": cpp_pages(ROOT, ROOT / "build/doxygen/xml"), "Python": python_pages(arguments.python),
            "Examples": example_pages(ROOT / "examples", arguments.examples)}
    for group in made.values():
        for name, text in group.items():
            pages.add(name, text)
    run(sys.executable, "-B", "bench/figures.py", source)
    pages.add_index({title: list(group) for title, group in made.items()})
    shutil.copytree(ROOT / "docs/pictures", source / "pictures")
    shutil.copytree(ROOT / "docs/site/_static", source / "_static")
    shutil.copy(ROOT / "docs/site/conf.py", source)


def run(*command, **environment):
    subprocess.run([str(word) for word in command], check=True, cwd=ROOT,
                   env={**os.environ, **{name: str(value) for name, value in environment.items()}})


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    for name in ("--program", "--python", "--examples"):
        parser.add_argument(name, type=Path, required=True)
    parser.add_argument("output", type=Path)
    arguments = parser.parse_args()
    output = arguments.output.resolve()
    source = output.with_name(output.name + "-source")
    for folder in (source, output):
        shutil.rmtree(folder, ignore_errors=True)
    source.mkdir(parents=True)
    try:
        # What Doxygen warns of is the business of tests/checks/headers.py.
        subprocess.run(["doxygen", "docs/site/Doxyfile"], check=True, cwd=ROOT, stderr=subprocess.DEVNULL)
        gather(source, arguments)
        run(sys.executable, "-m", "sphinx", "-q", "-W", "--keep-going", "-b", "html", "-d",
            output.with_name(output.name + "-doctrees"), source, output,
            TESSARY_VERSION=project_version(), TESSARY_PYTHON=arguments.python.resolve())
        mend_theme(output)
    except (Faults, subprocess.CalledProcessError) as error:
        print(f"make.py: {error}", file=sys.stderr)
        return 1
    faults = faults_of(output)
    for fault in faults:
        print(f"make.py: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
