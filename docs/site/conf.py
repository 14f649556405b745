"""How Sphinx makes the site of the pages that make.py gathers."""

import os
import re
import sys

sys.path.insert(0, os.environ["TESSARY_PYTHON"])

project = "Tessary"
version = release = os.environ["TESSARY_VERSION"]
copyright = ""
html_show_copyright = False
html_show_sphinx = False

extensions = ["myst_parser", "sphinx.ext.autodoc"]
exclude_patterns = ["files"]
root_doc = "index"

myst_heading_anchors = 4
myst_enable_extensions = ["colon_fence"]

primary_domain = "py"
highlight_language = "none"

default_role = "literal"
autodoc_member_order = "bysource"
autodoc_typehints = "signature"
autodoc_preserve_defaults = True
add_module_names = False

# The look: system fonts, nothing that is fetched from elsewhere.
html_theme = "furo"
html_title = f"Tessary {version}"
html_static_path = ["_static"]
html_css_files = ["site.css"]
html_copy_source = False
html_show_sourcelink = False
html_use_index = True
html_theme_options = {"navigation_with_keys": True}


def prepare_docstring(app, what, name, obj, options, lines):
    """Lists of parameters, which end where the indentation does, become definition lists."""
    del app, what, name, obj, options
    made, is_list = [], False
    for line, below in zip(lines, [*lines[1:], ""]):
        if line.startswith("Alias for field number"):  # of a named tuple, whose comment says it better
            continue
        if re.fullmatch("-{4,}", line):
            made[-1], is_list = "", True
            continue
        if not line.startswith(">>>"):
            line = line.replace("*", "\\*")
        has_text = below.startswith("    ")
        if is_list and re.match(r"\w", line):
            is_list = has_text or re.match(r"[\w, ]+( : |$)", line)
            if is_list:
                line = re.sub(r"^[\w, ]+?(?= : |$)", lambda match: f"**{match[0]}**", line, count=1)
                made += [] if has_text else ["", line]
                line = line if has_text else ""
        made.append(line)
    lines[:] = made


def setup(app):
    app.connect("autodoc-process-docstring", prepare_docstring)
