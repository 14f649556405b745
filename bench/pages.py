"""Texts of figures, tables, and pages that have marked places for them."""

import re

from rows import NotRows


def time_text(milliseconds):
    for unit, scale in (("s", 1e-3), ("ms", 1), ("µs", 1e3), ("ns", 1e6)):
        if milliseconds * scale >= 1:
            return f"{number_text(milliseconds * scale)} {unit}"
    return f"{milliseconds * 1e6:.2g} ns"


def number_text(value):
    """Three digits."""
    if value is None:
        return ""
    if value >= 100:
        return f"{value:.0f}"
    return f"{value:.1f}" if value >= 10 else f"{value:.2f}"


def size_text(size):
    return f"{size:,}".replace(",", " ")


def table(heads, lines):
    """A Markdown table; columns after the first are aligned to the right."""
    rule = "|---|" + "---:|" * (len(heads) - 1)
    return "\n".join(["| " + " | ".join(heads) + " |", rule]
                     + ["| " + " | ".join(line) + " |" for line in lines])


def paste(page, mark, text):
    """Replaces what stands between <!-- mark --> and <!-- end of mark -->."""
    content = page.read_text()
    pattern = re.compile(rf"(<!-- {mark} -->\n).*?(<!-- end of {mark} -->)", re.DOTALL)
    if not pattern.search(content):
        raise NotRows(f"{page}: no place marked <!-- {mark} -->")
    page.write_text(pattern.sub(lambda match: f"{match[1]}\n{text}\n\n{match[2]}", content))
