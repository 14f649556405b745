"""Pages made by the program, in one browser for all tests of a file."""

import os
import subprocess

import pytest

from browser import Browser

SQUARES = """v 0 0 0\nv 1 0 0\nv 2 0 0\nv 0 1 0\nv 1 1 0\nv 2 1 0\nv 0 2 0\nv 1 2 0\nv 2 2 0
vt 0 0\nvt 0.5 0.5\nvt 1 1
usemtl oak\nf 1/1 2/2 5/3 4/1\nusemtl "<b>ash</b>"\nf 2 3 6 5\nf 4 5 8 7\nusemtl oak\nf 5 6 9\nf 5 9 8\n"""

# One edge of three faces, two along which two faces run one way, a corner that repeats a point.
PROBLEMS = """v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0.5 0.5 1\nv 0.5 0.5 -1\nv 2 0 0\nv 2 1 0\nv 1.5 0.5 1
f 1 2 3 4\nf 1 2 5\nf 2 6 1\nf 2 7 8 3\nf 4 3 5\nf 3 3 5\nf 8 7 9\n"""


def program(*arguments):
    done = subprocess.run([os.environ["TESSARY_PROGRAM"], *map(str, arguments)], capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stderr
    return done.stdout


@pytest.fixture(scope="session")
def browser():
    with Browser(320, 240) as one:
        yield one


@pytest.fixture(scope="session")
def demo(tmp_path_factory):
    folder = tmp_path_factory.mktemp("demo")
    program("demo", "--output", folder, "--resolution", 8)
    return folder


@pytest.fixture
def show(browser, tmp_path):
    """Opens the page of one or two files; a text is the content of a file to make. No page may complain or ask for another file."""
    def open_page(*models, options=(), size=(320, 240), name="mesh.obj", **view):
        files = []
        for i, model in enumerate(models):
            files.append(model if os.path.exists(str(model)[:200]) else tmp_path / f"{i}-{name}")
            if files[-1] is not model:
                files[-1].write_bytes(model if isinstance(model, bytes) else model.encode())
        program("view", *files, "-o", tmp_path / "page.html", "--force", "--quiet", *options)
        browser.resize(*size)
        browser.open(tmp_path / "page.html", **view)
        assert browser.run("document.documentElement.dataset.ready") == "yes", browser.faults
        assert browser.requests == [(tmp_path / "page.html").as_uri()]
        return browser
    yield open_page
    assert browser.faults == []
