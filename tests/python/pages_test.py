"""The code of the pages and the notebooks does what they say."""

import json
import re
from pathlib import Path

import pytest
import tessary as ts

ROOT = Path(__file__).parents[2]
NOTEBOOKS = sorted((ROOT / "examples" / "notebooks").glob("*.ipynb"))


@pytest.fixture(autouse=True)
def files(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    ts.demo_mesh(64).save("roof.obj")
    (tmp_path / "frames").mkdir()
    for number in range(3):
        ts.demo_mesh(8).save(f"frames/frame.{number:04}.ply")


BLOCKS = {page.name: re.findall(r"^```python\n(.*?)^```", page.read_text(), re.DOTALL | re.MULTILINE)
          for page in sorted((ROOT / "docs").glob("*.md"))}


@pytest.mark.parametrize("name, blocks", [each for each in BLOCKS.items() if each[1]])
def test_pages(name, blocks, capsys):
    namespace = {}
    assert name not in ("python.md", "python-recipes.md") or len(blocks) > 2
    for block in blocks:
        exec(block, namespace)
        printed = capsys.readouterr().out.splitlines()
        for expected in re.findall(r"^ *print\(.*\)  # (.*)$", block, re.MULTILINE):
            assert expected in printed


def outputs(notebook):
    """What cells print and return, pictures by their kind."""
    shown = []
    for cell in notebook["cells"]:
        for output in cell.get("outputs", []):
            data = output.get("data", {"text/plain": output.get("text")})
            text = "".join(data.get("text/plain") or [])
            shown.append(sorted(data) if "image/png" in data else re.sub(r" at 0x[0-9a-f]+", "", text))
    return shown


@pytest.mark.parametrize("path", NOTEBOOKS, ids=lambda path: path.stem)
def test_notebooks(path, monkeypatch):
    nbconvert = pytest.importorskip("nbconvert.preprocessors")
    import nbformat
    monkeypatch.setenv("MPLBACKEND", "module://matplotlib_inline.backend_inline")
    notebook = nbformat.read(path, as_version=4)
    stored = json.loads(path.read_text())
    nbconvert.ExecutePreprocessor(timeout=600, kernel_name="python3").preprocess(notebook, {"metadata": {"path": "."}})
    assert outputs(notebook) == outputs(stored)
    assert ["image/png", "text/plain"] in outputs(stored)


def test_there_are_three_notebooks():
    assert len(NOTEBOOKS) == 3
