"""A page for each installed header, made of Doxygen's XML."""

import re
import xml.etree.ElementTree as ElementTree
from collections import defaultdict
from itertools import groupby

from comments import Comments, code, table
from pages import page_of_header

LIBRARIES = {"include": "Kernels", "mesh/include": "Mesh library", "embedded/include": "Embedded host"}
WIDTH = 88  # of a declaration
SHORT = 60  # of one in a table


def words_of(node):
    return re.sub(r"\s+", " ", "".join(node.itertext())).strip() if node is not None else ""


def template_of(node):
    parameters = node.find("templateparamlist")
    if parameters is None:
        return ""
    names = [" ".join(filter(None, (words_of(each.find("type")), each.findtext("declname"))))
             for each in parameters.findall("param")]
    return f"template <{', '.join(names)}>\n" if names else ""


def tidy(text):
    text = re.sub(r"< ", "<", re.sub(r" >", ">", text))
    return re.sub(r" ([&*]+)(?=\w|$|,|\))", r"\1 ", text).replace("& ,", "&,").rstrip()


def declaration(member):
    """As a header would say it, with an argument to a line where it is long."""
    kind, name = member.get("kind"), member.findtext("name")
    before = tidy(words_of(member.find("type")))
    if kind == "function":
        arguments = member.findtext("argsstring") or "()"
        inner, after = arguments[1:].rsplit(")", 1)
        start = f"{before} {name}(" if before else f"{name}("
        if len(start + inner) > WIDTH:
            each = re.split(r", (?![^<]*>)", tidy(inner))
            inner = ("\n    " + ",\n    ".join(each))
        else:
            inner = tidy(inner)
        start = "static " * (member.get("static") == "yes") + start
        return template_of(member) + start + inner + ")" + after.replace("=default", " = default") + ";"
    if kind == "typedef":
        return template_of(member) + f"using {name} = {before};"
    if kind == "enum":
        return f"enum class {name};"
    value = f" {words_of(member.find('initializer'))}" if member.find("initializer") is not None else ""
    return f"{before} {name}{member.findtext('argsstring') or ''}{value};"


class Headers:
    """What Doxygen says, by header and in the order of its lines."""

    def __init__(self, xml):
        self.entries = defaultdict(list)
        self.scopes = defaultdict(set)
        self.files = {}
        self.namespaces = set()
        for path in sorted(xml.glob("*.xml")):
            for compound in ElementTree.parse(path).iter("compounddef"):
                self.add(compound)
        self.comments = Comments({entry.get("id") for entries in self.entries.values() for entry in entries})

    def add(self, compound):
        kind = compound.get("kind")
        if kind == "file":
            self.files[compound.find("location").get("file")] = compound
        name = compound.findtext("compoundname")
        if kind in ("class", "struct") and compound.get("prot", "public") == "public":
            self.enter(name.rpartition("::")[0], compound)
        if kind == "namespace":
            self.namespaces.add(name)
            for member in compound.iter("memberdef"):
                self.enter(name, member)

    def enter(self, scope, entry):
        header = entry.find("location").get("file")
        self.entries[header].append(entry)
        if entry.tag == "memberdef":
            self.scopes[header].add(scope)

    def page(self, header):
        entries = sorted(self.entries[header], key=lambda entry: int(entry.find("location").get("line")))
        about = self.files[header]
        text = f"# {header}\n\n```cpp\n#include <{header}>\n```\n\n" + self.about(about)
        scopes = sorted(self.scopes[header])
        text += f"Functions and types in {' and '.join(map(code, scopes))}.\n\n" if scopes else ""
        for is_name, run in groupby(entries, self.is_name):
            run = list(run)
            if is_name and len(run) > 2:
                text += self.names_text(run)
                continue
            for entry in run:
                text += self.class_text(entry) if entry.tag == "compounddef" else self.member_text(entry, "##")
        return text

    def is_name(self, entry):
        """Whether it is one of many names that need not have a heading each."""
        return entry.get("kind") in ("typedef", "variable") and self.is_short(entry)

    def names_text(self, members):
        anchors = "".join(f"({member.get('id')})=\n" for member in members)
        heading = f"## {members[0].findtext('name')} to {members[-1].findtext('name')}\n\n"
        return anchors + heading + table(("name", ""), map(self.row, members))

    def row(self, member):
        return (code(declaration(member).removeprefix(template_of(member))),
                self.comments.short(member.find("briefdescription")))

    def about(self, node):
        brief = node.find("briefdescription")
        return self.comments.blocks(brief) + self.comments.blocks(node.find("detaileddescription"))

    def member_text(self, member, level):
        heading = f"({member.get('id')})=\n{level} {member.findtext('name')}\n\n"
        text = heading + f"```cpp\n{declaration(member)}\n```\n\n" + self.about(member)
        values = [(code(value.findtext("name")), self.comments.short(value)) for value in member.findall("enumvalue")]
        return text + (table(("value", ""), values) if values else "")

    def class_text(self, compound):
        name = compound.findtext("compoundname")
        scope = max((each for each in self.namespaces if name.startswith(each + "::")), key=len, default="")
        name = name.removeprefix(scope + "::")
        bases = ", ".join(f"{base.get('prot')} {base.text}" for base in compound.findall("basecompoundref"))
        said = f"{template_of(compound)}{compound.get('kind')} {name}{' : ' * bool(bases)}{bases};"
        text = f"({compound.get('id')})=\n## {name}\n\n```cpp\n{said}\n```\n\n"
        text += self.about(compound)
        members = [member for member in compound.iter("memberdef")
                   if member.get("prot") != "private" and member.get("kind") != "friend"
                   and not (member.findtext("name").startswith("~") and self.is_silent(member))]
        short = [member for member in members if self.is_short(member)]
        if short:
            text += table(("member", ""), map(self.row, short))
        return text + "".join(self.member_text(member, "###") for member in members if member not in short)

    @staticmethod
    def is_silent(member):
        return not words_of(member.find("briefdescription"))

    @staticmethod
    def is_short(member):
        said = declaration(member).removeprefix(template_of(member))
        return not words_of(member.find("detaileddescription")) and len(said) < SHORT and member.get("kind") != "enum"


def cpp_pages(root, xml):
    """A page for each installed header, and one that lists them."""
    headers = Headers(xml)
    pages = {}
    overview = "# C++ headers\n\nWhat is installed, and what it declares.\n\n"
    for folder, library in LIBRARIES.items():
        overview += f"## {library}\n\n"
        names = []
        for path in sorted((root / folder).rglob("*.h")):
            name = page_of_header(path.relative_to(root).as_posix())
            header = path.relative_to(root / folder).as_posix()
            pages[name] = headers.page(header)
            brief = headers.comments.short(headers.files[header].find("briefdescription"))
            names.append(name.removeprefix("cpp/"))
            overview += f"- [{header}]({names[-1]}): {brief}\n"
        overview += "\n```{toctree}\n:hidden:\n\n" + "\n".join(names) + "\n```\n\n"
    return {"cpp/index.md": overview, **pages}
