"""The pages of the site, gathered in one folder with their links rewritten."""

import re
import shutil
from pathlib import Path

LINK = re.compile(r"(?<!!)\[([^\]]*)\]\(([^)\s]+)\)")
CODE = re.compile(r"(^```.*?^```)", re.MULTILINE | re.DOTALL)
MADE = {"figures.md"}  # of other pages' figures
KINDS = {"README.md": "index.md", "CHANGELOG.md": "changes.md", "CONTRIBUTING.md": "contributing.md"}


class Faults(Exception):
    """Pages that cannot become a site."""


def page_of_header(header):
    """The page about an installed header, such as "mesh/include/TessaryMesh/Files.h"."""
    return "cpp/" + "-".join(header.split("include/")[1].removesuffix(".h").split("/")) + ".md"


def page_of_example(path):
    """The page about an example, such as "examples/operators/graph.cpp"."""
    return f"examples/{Path(Path(path).parts[1]).stem}.md"


class Pages:
    def __init__(self, root, folder):
        self.root = root
        self.folder = folder

    def text(self, name):
        return (self.folder / name).read_text()

    def add(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def add_guide(self, page):
        self.add(page.name, self.rewritten(page))

    def rewritten(self, page):
        """The text of a page of the checkout, with links as they are on the site."""
        parts = CODE.split(page.read_text())
        return "".join(part if part.startswith("```") else
                       LINK.sub(lambda match: self.link(page, match[1], match[2]), part) for part in parts)

    def link(self, page, words, target):
        if re.match(r"https?:|mailto:|#", target):
            return f"[{words}]({target})"
        name, _, anchor = target.partition("#")
        found = (page.parent / name).resolve()
        if not found.exists():
            raise Faults(f"{page}: link to nothing: {target}")
        path = found.relative_to(self.root).as_posix()
        anchor = f"#{anchor}" if anchor else ""
        if path in KINDS:
            return f"[{words}]({KINDS[path]}{anchor})"
        if path.startswith("docs/"):
            return f"[{words}]({path.removeprefix('docs/')}{anchor})"
        if path.endswith(".h"):
            return f"[{words}]({page_of_header(path)})"
        if path.startswith("examples/") and path.endswith(".cpp"):
            return f"[{words}]({page_of_example(path)})"
        return self.download(words, found, path)

    def download(self, words, found, path):
        if found.is_dir():
            return words
        copy = self.folder / "files" / path.replace("/", "-")
        copy.parent.mkdir(exist_ok=True)
        shutil.copy(found, copy)
        return f"{{download}}`{words.strip('`')} <files/{copy.name}>`"

    def add_index(self, made):
        """The first page names the guides in sections; what is made follows them at the side."""
        text = self.text("index.md")
        groups = {title: re.findall(r"^- .*?\]\(([\w-]+\.md)\)", section, re.MULTILINE)
                  for title, section in re.findall(r"^## (.*?)\n(.*?)(?=^## |\Z)", text,
                                                   re.MULTILINE | re.DOTALL)}
        named = {name for names in groups.values() for name in names}
        for page in sorted(self.folder.glob("*.md")):
            if page.name not in named | MADE | {"index.md"}:
                raise Faults(f"docs/index.md does not name {page.name}")
        for names in groups.values():
            if "benchmarks.md" in names:
                names += sorted(MADE)
        for title, names in {**groups, **made}.items():
            lines = "\n".join(name for name in names if not name.startswith("cpp/") or name == "cpp/index.md")
            text += f"\n```{{toctree}}\n:hidden:\n:caption: {title}\n\n{lines}\n```\n"
        self.add("index.md", text)
