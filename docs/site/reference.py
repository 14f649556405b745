"""The pages that are made of docstrings, the program's help, and examples."""

import importlib
import inspect
import re
import subprocess
import sys

from pages import Faults

PYTHON = {
    "tessary": "Meshes and operations",
    "tessary.arrays": "Kernels on plain arrays",
    "tessary.chunks": "Meshes that do not fit into memory",
    "tessary.dask": "Thousands of files",
    "tessary.interop": "Other libraries' meshes",
}


def underlined(title, line="="):
    return f"{title}\n{line * len(title)}\n\n"


def is_error(thing):
    return inspect.isclass(thing) and issubclass(thing, BaseException)


SECTIONS = {"Operations": inspect.isfunction, "Types": lambda thing: inspect.isclass(thing) and not is_error(thing),
            "Errors": is_error}


def package_page(module):
    """What the package itself offers, by what it is; other names are in other modules' pages."""
    text = f".. automodule:: {module.__name__}\n\n"
    for title, fits in SECTIONS.items():
        names = [name for name in module.__all__ if fits(getattr(module, name))]
        kind = "autofunction" if title == "Operations" else "autoclass"
        options = "" if title == "Operations" else "   :members:\n   :undoc-members:\n   :show-inheritance:\n"
        text += underlined(title, "-")
        text += "".join(f".. {kind}:: {module.__name__}.{name}\n{options}\n" for name in names)
    return text


def python_pages(folder):
    """A page for each module that people meet; `folder` holds the package."""
    sys.path.insert(0, str(folder.resolve()))
    pages = {}
    for name, title in PYTHON.items():
        text = package_page(importlib.import_module(name)) if name == "tessary" else \
            f".. automodule:: {name}\n   :members:\n   :undoc-members:\n"
        pages[f"python/{name.replace('.', '-')}.rst"] = underlined(f"{name}: {title.lower()}") + text
    return pages


def output_of(*command, folder=None):
    ended = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False, cwd=folder)
    if ended.returncode:
        raise Faults(f"{command[0]} failed: {ended.stderr}")
    return ended.stdout


def help_block(program, *verb):
    command = " ".join(("tessary", *verb, "--help"))
    return f"```none\n$ {command}\n{output_of(program, *verb, '--help').rstrip()}\n```\n\n"


def with_help(text, program):
    """The page of the program, with what it says itself under the name of each verb."""
    listed = output_of(program, "--help").partition("Verbs:\n")[2]
    verbs = re.findall(r"^  ([a-z]+)", listed, re.MULTILINE)
    if not verbs:
        raise Faults(f"{program} --help lists no verbs")
    for verb in verbs:
        heading = f"\n## {verb}\n\n"
        if heading not in text:
            text = text.rstrip() + "\n" + heading
        text = text.replace(heading, heading + help_block(program, verb))
    first = text.index("\n## ")
    return text[:first] + "\n\n" + help_block(program) + text[first:]


def example_pages(folder, built):
    """A page for each example: what it does, its files, what it prints."""
    pages = {}
    for source in sorted(folder.glob("*.cpp")) + sorted(folder.glob("*/CMakeLists.txt")):
        name = source.stem if source.suffix == ".cpp" else source.parent.name
        files = [source] if source.suffix == ".cpp" else sorted(
            path for path in source.parent.iterdir() if path.suffix in (".h", ".cpp"))
        text = f"# {name.replace('_', ' ').capitalize()}\n\n"
        for path in files:
            text += f"`{path.relative_to(folder.parent)}`\n\n```cpp\n{path.read_text().rstrip()}\n```\n\n"
        program = (built / source.relative_to(folder)).with_name(name).resolve()
        printed = output_of(program, folder=source.parent)
        pages[f"examples/{name}.md"] = text + f"It prints\n\n```none\n{printed}```\n"
    return pages
