#!/usr/bin/env python3
"""Knows what the project takes from others: packaging/third-parties.txt, and what Debian's packages say.

usage: third_parties.py check             whether list, ./dev and docs/third-party.md agree
       third_parties.py write             makes docs/third-party.md
       third_parties.py notices PACKAGE   the licences of what is built into one of our packages
"""

import re
import subprocess
import sys
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[1]
PAGE = ROOT / "docs/third-party.md"

# Packages that only name the one which holds the program.
VERSION_OF = {"g++": "g++-12", "clang-format": "clang-format-14", "clang-tidy": "clang-tidy-14"}
# Of these the stable distribution takes a new version every few weeks.
MOVING = {"chromium"}
# One licence, several names of it.
SPELLING = {"Expat": "MIT", "zlib": "Zlib", "BSD-C3": "BSD-3-clause", "BSL-1": "BSL-1.0", "BSD-3-Clause": "BSD-3-clause",
            "BSD-3-Clause+CLA": "BSD-3-clause", "Expat and BSL-1": "MIT and BSL-1.0",
            "PD": "public domain"}
SECTIONS = {
    "linked": "Shared libraries that ours need",
    "built in": "Compiled into our libraries and programs",
    "imported": "What the Python module imports",
    "build": "What building needs",
    "test": "What tests and checks need",
    "docs": "What the site of the documentation is made with",
    "bench": "What benchmarks can run beside ours",
    "package": "What makes packages, and tries them",
    "compiler": "Further compilers that must do",
}
INTRODUCTION = """# Third parties

<!-- made by packaging/third_parties.py write -->

What the project takes from others, as the packages of Debian 12 have it. Nothing under the GPL is linked or built in.
The packages of [ours](install.md) that hold code of others carry its licences in `/usr/share/doc/*/copyright`.
"""


class Party(NamedTuple):
    package: str
    use: str
    places: list[str]
    purpose: str
    licence: str


def parties():
    for line in (ROOT / "packaging/third-parties.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            package, use, purpose, licence = (field.strip() for field in line.split("|"))
            places = re.search(r"\[(.*)\]", use)
            yield Party(package, use.split(" [")[0], places[1].split(", ") if places else [], purpose, licence)


def copyright_file(package):
    return Path("/usr/share/doc", package, "copyright")


def declared_licence(package):
    """What a machine-readable copyright file says of all files, or an empty text."""
    try:
        text = copyright_file(package).read_text(errors="replace")
    except FileNotFoundError:
        return ""
    for paragraph in re.split(r"\n\s*\n", text):
        if re.search(r"^Files:\s*\*", paragraph, re.M | re.I):
            licence = re.search(r"^License:\s*(.+)", paragraph, re.M)
            return licence[1].strip() if licence else ""
    return ""


def facts_of(package):
    """Version without what Debian adds to it, and home page; empty where the package is not known here."""
    name = VERSION_OF.get(package, package)
    for command in (["dpkg-query", "-W", "-f", "Version: ${Version}\nHomepage: ${Homepage}\n"],
                    ["apt-cache", "show", "--no-all-versions"]):
        text = subprocess.run([*command, name], capture_output=True, text=True, check=False).stdout
        version = re.search(r"^Version: (\S+)", text, re.M)
        if version:
            home = re.search(r"^Homepage: (\S+)", text, re.M)
            plain = re.sub(r"^\d+:|-[^-]*$", "", version[1])
            return re.split(r"[+~.](?:dfsg|ds|really|nmu|deb\d)", plain)[0], home[1] if home else ""
    return "", ""


def row_of(party):
    version, home = facts_of(party.package)
    name = f"[{party.package}]({home})" if home else party.package
    licence = party.licence or declared_licence(party.package)
    shown = "of the day" if party.package in MOVING else version
    purpose = party.purpose + (f"; in {', '.join(party.places)}" if party.places else "")
    return f"| {name} | {shown} | {SPELLING.get(licence, licence)} | {purpose} |"


def page():
    lines = [INTRODUCTION]
    for use, title in SECTIONS.items():
        rows = [row_of(party) for party in parties() if party.use == use]
        lines += [f"## {title}\n", "| package | version | licence | what for |", "|---|---|---|---|", *rows, ""]
    return "\n".join(lines)


def installed_by_dev():
    """The packages that ./dev names in its lists."""
    text = (ROOT / "dev").read_text()
    lists = re.findall(r"^(?:\w+_)?packages=\(([^)]*)\)", text, re.M)
    return {word for body in lists for line in body.splitlines() for word in line.split("#")[0].split()}


def faults():
    listed, installed = {party.package for party in parties()}, installed_by_dev()
    for package in sorted(installed - listed):
        yield f"{package} is in ./dev and not in packaging/third-parties.txt: say there what it is for"
    for package in sorted(listed - installed):
        yield f"{package} is in packaging/third-parties.txt, and ./dev installs it nowhere"
    for party in parties():
        licence = party.licence or declared_licence(party.package)
        if not licence and copyright_file(party.package).exists():
            yield f"{party.package}: its copyright file says no licence that programs can read: write it into the list"
        if party.use in ("linked", "built in") and re.search(r"\bA?GPL", licence):
            yield f"{party.package} is under {licence}, and {party.use}"
    yield from page_faults()


def page_faults():
    """Rows of packages that are not installed here, which show no licence, are as the page has them."""
    if "VERSION_CODENAME=bookworm" not in Path("/etc/os-release").read_text():
        return
    old = PAGE.read_text().splitlines() if PAGE.exists() else []
    for line in page().splitlines():
        if line not in old and not re.match(r"\| .* \|  \| .* \|$|\| .* \| .* \|  \| .* \|$", line):
            yield f"{PAGE.relative_to(ROOT)} lacks \"{line}\": make it anew with packaging/third_parties.py write"


def notices(package):
    for party in parties():
        if package in party.places:
            print(f"\nPart of this package is {party.package}, {party.purpose}. Of it Debian says:\n")
            print(copyright_file(party.package).read_text(errors="replace"))


def main(arguments):
    if arguments == ["check"]:
        found = list(faults())
        for fault in found:
            print(f"third parties: {fault}", file=sys.stderr)
        return 1 if found else 0
    if arguments == ["write"]:
        PAGE.write_text(page())
        return 0
    if len(arguments) == 2 and arguments[0] == "notices":
        notices(arguments[1])
        return 0
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
