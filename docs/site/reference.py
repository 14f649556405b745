"""The pages that are made of docstrings, the program's help, and examples."""

import re
import subprocess

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


def python_pages():
    """A page for each module that people meet."""
    pages = {}
    for module, title in PYTHON.items():
        name = f"python/{module.replace('.', '-')}.rst"
        imported = "   :imported-members:\n" if module == "tessary" else ""
        pages[name] = (underlined(f"{module}: {title.lower()}") + f".. automodule:: {module}\n"
                       f"   :members:\n   :undoc-members:\n{imported}")
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
