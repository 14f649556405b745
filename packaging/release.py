#!/usr/bin/env python3
"""Goes through what a release needs, and says what is missing.

usage: release.py [--dry-run] BUILD

BUILD is a folder with a built program, libraries and Python module. Where nothing is missing, the tag is made;
--dry-run makes none.
"""

import argparse
import os
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]


def output_of(*command, **environment):
    """What a command prints, whichever way it goes, and nothing where it fails."""
    try:
        done = subprocess.run([str(word) for word in command], cwd=ROOT, env={**os.environ, **environment}, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=True)
    except (OSError, subprocess.CalledProcessError):
        return ""
    return done.stdout.strip()


def text_of(name):
    return (ROOT / name).read_text()


def first(pattern, text):
    found = re.search(pattern, text, re.M)
    return found[1] if found else ""


def equal(what, found, wanted):
    return found == wanted, f"{what} says {wanted}" if found == wanted else f"{what} says {found or 'nothing'}, not {wanted}"


def sources(version):
    """Everything in the sources that names the version."""
    yield equal("packaging/vcpkg/vcpkg.json", first(r'"version": "(.*?)"', text_of("packaging/vcpkg/vcpkg.json")), version)
    yield equal("packaging/conan/conanfile.py", first(r'version = "(.*?)"', text_of("packaging/conan/conanfile.py")), version)
    major, minor = version.split(".")[:2]
    yield equal("docs/start.md", first(r"find_package\(Tessary ([0-9.]+)", text_of("docs/start.md")), f"{major}.{minor}")


def built(build, version):
    """Program, libraries and module, as they were built, agree with each other and with this commit."""
    commit = output_of("git", "rev-parse", "--short=7", "HEAD")
    said = output_of(build / "cli/tessary", "--version")
    yield equal("the program", first(r"version (\d+\.\d+\.\d+)\.0 ", said), version)
    yield equal("the program's commit", first(r"commit (\w+)", said), commit)
    major = version.split(".", maxsplit=1)[0]
    for path in ("libtessary.so", "mesh/libtessary_mesh.so", "embedded/libkorvane_embedded.so"):
        soname = first(r"soname: \[(.*)\]", output_of("readelf", "-d", build / path))
        yield equal(f"the name that {path} is looked for by", soname, f"{Path(path).name}.{major}")
        yield equal(f"the file behind {path}", (build / path).resolve().name, f"{Path(path).name}.{version}")
    banner = output_of(sys.executable, "-c", f"import ctypes; ctypes.CDLL({str(build / 'libtessary.so')!r})",
                       VORTIKA_DUMP_VERSION_INFO="1")
    yield equal("the kernels' banner", first(r"(version .*)", banner), first(r"(version .*)", said))
    module = output_of(sys.executable, "-c", "import tessary; print(tessary.__version__)",
                       PYTHONPATH=str(build / "python"))
    yield equal("the Python module", module, version)


def changes(version):
    """Users read what is new under the version, and nothing waits above it."""
    text = text_of("CHANGELOG.md")
    unreleased = first(r"(?s)^## Unreleased\n(.*?)(?=^## |\Z)", text).strip()
    yield not unreleased, "CHANGELOG.md has nothing under Unreleased" if not unreleased else \
        "CHANGELOG.md lists changes under Unreleased: put them under the version"
    dated = re.search(rf"^## {re.escape(version)}, \d{{4}}-\d\d-\d\d$", text, re.M)
    yield bool(dated), f"CHANGELOG.md has a heading \"## {version}, YEAR-MONTH-DAY\""


def repository(version):
    status = output_of("git", "status", "--porcelain")
    yield not status, "nothing is uncommitted" if not status else f"uncommitted: {status.splitlines()[0].strip()}, ..."
    tagged = output_of("git", "rev-parse", "--verify", "--quiet", f"v{version}^{{commit}}")
    head = output_of("git", "rev-parse", "HEAD")
    yield tagged in ("", head), f"the tag v{version} " + ("is free" if not tagged else "is here" if tagged == head
                                                            else f"is at another commit, {tagged[:7]}")
    names = output_of("git", "tag", "--points-at", "HEAD", "v*").split()
    yield names in ([], [f"v{version}"]), f"the tags of this commit are {', '.join(names) or 'none'}"


def others():
    done = subprocess.run([sys.executable, "-B", ROOT / "packaging/third_parties.py", "check"], check=False)
    yield done.returncode == 0, "docs/third-party.md is as the packages say"


def go_through(build, version):
    """Prints every item, and says whether all are done."""
    missing = 0
    for items in (sources(version), built(build, version), changes(version), repository(version), others()):
        for done, text in items:
            print(f"[{'x' if done else ' '}] {text}")
            missing += not done
    print(f"{missing} to do for {version}" if missing else f"{version} can be released")
    return missing == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--dry-run", action="store_true")
    parser.add_argument("build", type=Path)
    arguments = parser.parse_args()
    version = first(r"project\(Tessary VERSION (\S+)", text_of("CMakeLists.txt"))
    if not go_through(arguments.build.resolve(), version):
        return 1
    if not arguments.dry_run and not output_of("git", "rev-parse", "--verify", "--quiet", f"v{version}"):
        subprocess.run(["git", "tag", "--annotate", "--message", f"Tessary {version}", f"v{version}"], cwd=ROOT, check=True)
        print(f"made the tag v{version}: publish it, and ./dev package")
    return 0


if __name__ == "__main__":
    sys.exit(main())
