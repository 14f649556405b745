"""Pages look as they did: canvases of 320 x 240 pixels beside stored ones. UPDATE=1 stores anew; look at them before that is committed."""

import io
import os
from pathlib import Path

import pytest
from PIL import Image, ImageChops, ImageFilter

from conftest import PROBLEMS, SQUARES

STORED = Path(__file__).parent / "pictures"
SHOTS = Path(os.environ.get("TESSARY_SHOTS", "."))
BUNNY = Path("/usr/share/glmark2/models/bunny.obj")

# A step of colour of less than 7 % is no difference, nor is one that is less than three pixels wide: lines
# and outlines may be drawn a little otherwise by another version. Four such places are allowed.
STEP, PLACES = 18, 4


def canvas_of(browser):
    browser.run("document.querySelectorAll('#legend, #buttons, #panes, #inspector').forEach(e => e.remove())")
    browser.settle()
    return Image.open(io.BytesIO(browser.screenshot())).convert("RGB")


def difference(one, other):
    """How many places differ."""
    step = ImageChops.difference(one, other)
    largest = ImageChops.lighter(ImageChops.lighter(*step.split()[:2]), step.split()[2])
    return sum(largest.filter(ImageFilter.MinFilter(3)).histogram()[STEP + 1:])


def expect_stored(browser, name):
    picture = canvas_of(browser)
    picture.save(SHOTS / f"{name}.png")
    assert len(picture.getcolors(1 << 20)) > 50, "nothing is drawn"
    stored = STORED / f"{name}.png"
    if os.environ.get("UPDATE"):
        picture.save(stored, optimize=True)
    places = difference(picture, Image.open(stored).convert("RGB"))
    assert places <= PLACES, f"{SHOTS / name}.png differs from {stored} at {places} places"


@pytest.mark.parametrize("name, view", [
    ("colors", {"color": "color"}), ("checker", {"color": "texcoord", "marks": "seam", "edges": 0}),
    ("ids", {"color": "face_id", "shading": "smooth"}), ("numbers", {"color": "face_id:numbers", "theme": "dark"}),
    ("fan", {"color": "", "fan": 1}), ("lines", {"color": "", "faces": 0, "points": 1})])
def test_the_demo_mesh(show, demo, name, view):
    file = "demo.ply" if "face_id" in view["color"] else "demo.obj"  # what OBJ files have no place for
    expect_stored(show(demo / file, bare=1, **view), name)


def test_before_and_after_and_both_together(show, demo):
    expect_stored(show(demo / "demo.obj", demo / "demo_quads.ply", bare=1), "beside")
    expect_stored(show(demo / "demo.obj", demo / "demo_samples.ply", bare=1, layout="together", color=""), "together")


def test_samples_with_attributes(show, demo):
    expect_stored(show(demo / "demo_samples.ply", bare=1, color="normal"), "samples")


@pytest.mark.skipif(not BUNNY.exists(), reason="the package glmark2-data is not installed")
def test_the_bunny(show):
    expect_stored(show(BUNNY, bare=1, shading="smooth"), "bunny")


def test_marked_problems(show):
    expect_stored(show(PROBLEMS, bare=1, marks="boundary,nonmanifold,samedirection,places", camera="0.5,0.6,5.5,0,0,0"), "problems")


def test_a_wrong_color_and_a_missing_face_exceed_the_tolerance(show, demo, tmp_path):
    right = canvas_of(show(demo / "demo.ply", bare=1, color="color"))
    text = (demo / "demo.obj").read_text().splitlines()
    faces = [i for i, line in enumerate(text) if line.startswith("f ")]
    seen = 0
    for face in faces[::9]:
        less = canvas_of(show("\n".join(text[:face] + text[face + 1:]), bare=1, color="color"))
        seen += difference(right, less) > PLACES
    assert seen > len(faces[::9]) / 3, "about half of the faces are seen from behind"

    square = canvas_of(show(SQUARES, bare=1, color="material"))
    other = canvas_of(show(SQUARES.replace('"<b>ash</b>"', "oak"), bare=1, color="material"))
    assert difference(square, square) == 0 and difference(square, other) > 100 * PLACES
