"""Doxygen's XML of a comment as Markdown."""

import re

TITLES = {"return": "Returns", "pre": "Precondition", "post": "Afterwards", "note": "Note"}
LISTS = {"exception": "Throws", "templateparam": "Template arguments"}
DIRECTIONS = {"in": "in", "out": "out", "inout": "in and out"}


def escaped(text):
    return re.sub(r"([\\`*_<>\[\]|#])", r"\\\1", text or "")


def code(text):
    return f"`{text}`" if text else ""


class Comments:
    """`anchors` are the names of Doxygen's that have a place on the site."""

    def __init__(self, anchors):
        self.anchors = anchors

    def inline(self, node):
        """The text of a node, without the blocks in it."""
        text = escaped(node.text)
        for child in node:
            text += self.inline_child(child) + escaped(child.tail)
        return re.sub(r"\s+", " ", text)

    def inline_child(self, child):
        if child.tag == "computeroutput":
            return code("".join(child.itertext()))
        if child.tag == "ref":
            words = escaped("".join(child.itertext()))
            anchor = child.get("refid")
            is_name = re.search(r"\)|::|[a-z][A-Z]", words)  # and no word that also is one
            return f"[{words}]({anchor})" if is_name and anchor in self.anchors else words
        if child.tag in ("itemizedlist", "parameterlist", "simplesect", "verbatim", "preformatted", "programlisting"):
            return ""
        return self.inline(child)

    def short(self, node):
        """Everything in a node on one line, for a cell of a table."""
        return " ".join(filter(None, (self.inline(para).strip() for para in node.iter("para"))))

    def blocks(self, node):
        """A description: text, lists, code and sections, each followed by an empty line."""
        return "".join(self.paragraph(para) for para in node.findall("para"))

    def paragraph(self, para):
        text = self.inline(para).strip()
        made = f"{text}\n\n" if text else ""
        for child in para:
            if child.tag == "itemizedlist":
                made += "".join(f"- {self.short(item)}\n" for item in child.findall("listitem")) + "\n"
            elif child.tag in ("verbatim", "preformatted", "programlisting"):
                made += self.preformatted(child)
            elif child.tag == "simplesect":
                title = child.findtext("title") or TITLES[child.get("kind")]
                made += f"**{title}**: {self.short_but_title(child)}\n\n"
            elif child.tag == "parameterlist":
                made += self.parameters(child)
        return made

    def short_but_title(self, section):
        return " ".join(self.inline(para).strip() for para in section.findall("para"))

    @staticmethod
    def preformatted(node):
        for space in node.iter("sp"):
            space.text = " "
        lines = ["".join(line.itertext()) for line in node.iter("codeline")] or ["".join(node.itertext())]
        return "```none\n" + "\n".join(lines).strip("\n") + "\n```\n\n"

    def parameters(self, node):
        rows = []
        for item in node.findall("parameteritem"):
            name = item.find(".//parametername")
            words = "".join((name if name is not None else item.find(".//parameternamelist")).itertext()).strip()
            direction = DIRECTIONS.get(name.get("direction") if name is not None else "", "")
            rows.append((code(words), direction, self.short(item.find("parameterdescription"))))
        if node.get("kind") == "param":
            return table(("argument", "", ""), rows)
        return table((LISTS[node.get("kind")], ""), [(name, text) for name, _, text in rows])


def table(heads, rows):
    lines = ["| " + " | ".join(row) + " |" for row in (heads, ["---"] * len(heads), *rows)]
    return "\n".join(lines) + "\n\n"
