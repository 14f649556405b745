"""The page with every kernel's result: nothing is left out, and every pane draws."""

import io
import os
import re
import subprocess
import sys
from html import unescape
from pathlib import Path
from urllib.parse import parse_qsl

from PIL import Image

ROOT = Path(__file__).parents[2]


def exported_kernels():
    """Names of the kernels, as the library exports them."""
    lines = (ROOT / "tests/abi/exports.txt").read_text().splitlines()
    names = {re.match(r"Tessary::(\w+)", line)[1] for line in lines if line.startswith("Tessary::")}
    return names - {"Scratch", "ProgressScope", "reportProgress", "DedupBody"}  # memory and messages, which nobody could see


def test_the_gallery_shows_every_kernel(browser, tmp_path):
    environment = {**os.environ, "PYTHONPATH": os.environ["TESSARY_PYTHON"]}
    subprocess.run([sys.executable, "-B", ROOT / "examples/gallery.py", os.environ["TESSARY_SEPARATE"], tmp_path],
                   check=True, env=environment)
    index = (tmp_path / "index.html").read_text()
    assert [name for name in sorted(exported_kernels()) if name not in index] == []
    links = re.findall(r'<iframe src="([^"]+)"', index)
    assert len(links) == index.count("<section>") > 10
    for link in links:
        page, view = unescape(link).split("#")
        browser.open(tmp_path / page, **dict(parse_qsl(view, keep_blank_values=True)))
        assert (browser.run("document.documentElement.dataset.ready"), browser.faults) == ("yes", []), page
        assert browser.run("color.value") == dict(parse_qsl(view)).get("color", ""), page
        browser.run("document.querySelectorAll('#legend, #buttons, #panes').forEach(e => e.remove())")
        colors = Image.open(io.BytesIO(browser.screenshot())).convert("RGB").getcolors(1 << 20)
        assert len(colors) > 50, f"nothing is drawn on {page}"
