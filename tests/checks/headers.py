#!/usr/bin/env python3
"""Holds the comments of the installed headers to what CONTRIBUTING.md says of them.

Doxygen reads them, so that editors and the reference can. Every name that a caller may use has a comment,
every name that a library exports is among them, and a function that writes into one of its arguments
says of each argument whether it goes in or out. What every C++ programmer knows by its name or form may go
without.
"""

import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

KNOWN = re.compile(r"""operator|Member\ (begin|end|data|size|empty)\(|->|macro\ definition|nullptr_t
    |Member\ (\w+)\((const\ )?\2(<\ T\ >)?\ ?&&?\)|MutablePtr<\ T\ >|std::hash""", re.VERBOSE)
COMMANDS = {"param", "returns", "pre", "post", "throws", "note", "tparam", "file",
            "complexity", "failure", "memory", "method", "{", "}"}
XML = Path("build/doxygen/xml")


def faults_of_doxygen():
    Path("build").mkdir(exist_ok=True)
    made = subprocess.run(["doxygen", "docs/site/Doxyfile"], capture_output=True, text=True, check=False)
    if made.returncode:
        return [f"doxygen: {made.stderr}"]
    lines = (line.replace(f"{Path.cwd()}/", "") for line in made.stderr.splitlines())
    return [line for line in lines if "warning:" in line and not KNOWN.search(line)]


def headers():
    return [path for folder in ("include", "mesh/include", "embedded/include")
            for path in sorted(Path(folder).rglob("*.h"))]


def faults_of_commands(path):
    """Commands that are none of the agreed ones, which Doxygen may know and editors do not, and the
    notation of other projects."""
    for number, line in enumerate(path.read_text().splitlines(), 1):
        for command in re.findall(r"///.*?(?<![\w`])@(\w+|[{}])", line):
            if command not in COMMANDS:
                yield f"{path}:{number}: @{command} is none of the commands in CONTRIBUTING.md"


def functions():
    """The functions that callers may use, by qualified name: members of Doxygen's XML."""
    found = {}
    for page in XML.glob("*.xml"):
        for compound in ElementTree.parse(page).iter("compounddef"):
            if compound.get("kind") in ("namespace", "class", "struct"):
                for member in compound.iter("memberdef"):
                    if member.get("kind") == "function" and member.get("prot") != "private":
                        name = f"{compound.findtext('compoundname')}::{member.findtext('name')}"
                        found.setdefault(name, []).append(member)
    return found


def is_written(parameter):
    words = "".join(parameter.find("type").itertext())
    return "&" in words and "&&" not in words and "const" not in words


def described(member):
    return {name.text for item in member.iter("parameteritem")
            for name in item.iter("parametername") if name.get("direction")}


def faults_of_parameters(name, member):
    parameters = member.findall("param")
    if "(" in name or not any(map(is_written, parameters)) or "operator" in name:
        return
    if member.findtext("name") == name.split("::")[-2]:
        return  # a constructor: its sentence says what becomes of what it is given
    for missing in {each.findtext("declname") for each in parameters} - described(member) - {None}:
        place = member.find("location")
        yield (f"{place.get('file')}:{place.get('line')}: {name} writes into an argument, and does not "
               f"say whether {missing} goes in or out: @param[in], [out] or [in,out]")


def exported():
    """The functions outside of classes that the libraries export."""
    for path in Path("tests/abi").glob("*exports.txt"):
        for line in path.read_text().splitlines():
            match = re.match(r"(\w+::\w+)\(", line)
            if match:
                yield path, match[1]


def main():
    faults = faults_of_doxygen()
    faults += [fault for path in headers() for fault in faults_of_commands(path)]
    found = functions()
    for name, members in found.items():
        for member in members:
            faults += faults_of_parameters(name, member)
    faults += [f"{path}: {name} stands in no installed header" for path, name in exported()
               if name not in found]
    for fault in dict.fromkeys(faults):
        print(fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
