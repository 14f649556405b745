#!/usr/bin/env python3
"""Joins the sources of the viewer into the template of a page: join.py PAGE.html STYLE.css THREE.js FILE.js... OUT.cpp

The page allows its own scripts alone, by their hashes: whatever else a mesh might bring does not run.
"""

import base64
import hashlib
import sys
import zlib
from pathlib import Path

PIECE = 16


def hash_of(script):
    return "'sha256-" + base64.b64encode(hashlib.sha256(script.encode("ascii")).digest()).decode() + "'"


def joined(paths):
    """One script in a scope of its own, in the order of the files."""
    texts = (f"// ---- {path.name}\n{path.read_text('ascii')}" for path in paths)
    return '"use strict";\n(() => {\n' + "\n".join(texts) + "})();\n"


def c_array(name, text):
    data = text.encode("ascii")
    rows = (",".join(map(str, data[i:i + PIECE])) for i in range(0, len(data), PIECE))
    return f"constexpr char {name}[] = {{\n" + ",\n".join(rows) + "};\n"


def main():
    page, style, three, *scripts, out = map(Path, sys.argv[1:])
    viewer = joined(scripts)
    library = three.read_bytes().decode("utf-8").encode("ascii", "backslashreplace").decode()
    if 'REVISION="111"' not in library:
        sys.exit(f"{three}: this is not three.js r111, for which the viewer is written")
    packed = base64.b64encode(zlib.compress(library.encode(), 9)).decode()
    html = page.read_text("ascii")
    for mark, text in (("@STYLE@", style.read_text("ascii")), ("@HASHES@", f"{hash_of(library)} {hash_of(viewer)}"),
                       ("@THREE@", packed), ("@VIEWER@", viewer)):
        assert html.count(mark) == 1 and "</script" not in viewer, mark
        html = html.replace(mark, text)
    before, rest = html.split("@ENCODING@")
    middle, after = rest.split("@CONTENTS@\n")
    out.write_text('#include "view/PageTemplate.h"\n\nnamespace TessaryMesh {\nnamespace {\n'
                   + c_array("kBefore", before) + c_array("kMiddle", middle) + c_array("kAfter", after)
                   + "}\n\nPageTemplate pageTemplate()\n{\n    return {{kBefore, sizeof kBefore}, "
                   "{kMiddle, sizeof kMiddle}, {kAfter, sizeof kAfter}};\n}\n}\n")


if __name__ == "__main__":
    main()
