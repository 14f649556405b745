"""Makes the theme work from disk, as well.

Debian's package of it expects a web server: the style imports one of another package by an absolute path,
and the script is a module, which browsers do not load from disk.
"""

from pathlib import Path

NORMALIZE = Path("/usr/share/javascript/normalize.css/normalize.css")
STYLE_IMPORT = "@import url(/javascript/normalize.css/normalize.css);"
SCRIPT_IMPORT = 'import Gumshoe from "./gumshoe-patched.js";'


def mend_theme(site):
    """A theme that has its parts in one piece already stays as it is."""
    style, script = site / "_static/styles/furo.css", site / "_static/scripts/furo.js"
    text = style.read_text()
    if STYLE_IMPORT in text:
        style.write_text(NORMALIZE.read_text() + text.replace(STYLE_IMPORT, ""))
    text = script.read_text()
    if SCRIPT_IMPORT in text:
        spy = script.with_name("gumshoe-patched.js")
        script.write_text(spy.read_text() + "\n(() => {\n" + text.replace(SCRIPT_IMPORT, "") + "})();\n")
        spy.unlink()
