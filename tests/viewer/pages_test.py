"""What pages let people do: look at values, find problems, turn the view; and what pages do not let meshes do."""

import html
import io
import json
import random
import struct

import numpy
import pytest
from PIL import Image

from conftest import PROBLEMS, SQUARES, program

FRONT = {"bare": 1, "camera": "0,0,5,0,0,0"}
HOSTILE = "</script><img/src=x/onerror=window.broken=1>"


def text_of(browser, element):
    return browser.run(f"document.getElementById('{element}').innerText")


def ply(element, properties, rows, count):
    header = "".join(f"property {p}\n" for p in properties)
    return f"ply\nformat ascii 1.0\nelement {element} {count}\n{header}end_header\n{rows}".encode()


# Seen from the front, the squares fill the middle: 0 and 1 below, 2 and two triangles above.
@pytest.mark.parametrize("x, y, face, corner, point", [(-30, 30, 0, 2, 4), (40, 50, 1, 5, 2), (-45, -45, 2, 11, 6),
                                                       (20, -10, 3, 12, 4), (10, -50, 4, 17, 7)])
def test_the_pointer_finds_the_face_and_its_nearest_corner_with_every_value(show, x, y, face, corner, point):
    browser = show(SQUARES, **FRONT)
    browser.hover(160 + x, 120 + y)
    text = text_of(browser, "inspector")
    assert f"Face {face}" in text and f"Corner {corner} " in text and f"Point {point}\n" in text, text
    assert "material\t" + ("oak" if face in (0, 3, 4) else '"<b>ash</b>"') in text
    uv = {2: "1  1  (value 2)"}.get(corner, "none")
    assert f"texcoord\t{uv}" in text
    assert f"position\t{point % 3}  {point // 3}  0" in text


def test_every_face_that_is_gone_to_is_under_the_pointer(show, demo):
    browser = show(demo / "demo.obj")
    browser.resize(720, 480)
    middle = browser.run("[canvas.clientWidth / 2, canvas.clientHeight / 2]")
    faces = json.loads(program("info", demo / "demo.obj", "--json"))["faces"]
    for face in random.Random(1).sample(range(faces), 12):
        browser.run(f"go.querySelector('#go-number').value = {face}, go.querySelector('button').click()")
        browser.key("Escape")
        browser.hover(*middle)
        assert f"Face {face}\n" in text_of(browser, "inspector").replace(" ", "\n", 2).replace("Face\n", "Face ")


def test_samples_show_their_values(show):
    cloud = ply("vertex", ["float x", "float y", "float z", "int face_id", "float weight"],
                "0 0 0 7 0.25\n1 0 0 8 nan\n0 1 0 -9 0.5\n1 1 0 2147483647 1\n", 4)
    browser = show(cloud, name="cloud.ply", color="weight", **FRONT)
    browser.click(160 - 62, 120 - 62)
    text = text_of(browser, "inspector")
    assert "Point 2" in text and "face_id\t-9" in text and "weight\t0.5" in text, text
    assert text_of(browser, "legend").split() == ["weight", "0.25", "1"]
    browser.hover(160 + 62, 120 - 62)
    assert "Point 2" in text_of(browser, "inspector"), "what was clicked stays"
    browser.key("Escape")
    assert browser.run("inspector.hidden")


@pytest.mark.parametrize("mesh", ["problems", "demo"])
def test_marked_edges_are_those_that_validate_counts(show, demo, tmp_path, mesh):
    file = demo / "demo.obj" if mesh == "demo" else tmp_path / "problems.obj"
    if mesh == "problems":
        file.write_text(PROBLEMS)
    browser = show(file, size=(900, 600))
    report = {p["kind"]: p["count"] for p in json.loads(program("validate", file, "--json"))["problems"]}
    boundary = json.loads(program("info", file, "--json"))["boundary_edges"]
    counts = dict(browser.run("[...document.querySelectorAll('#marks label')].map(l => "
                              "[l.firstChild.id, Number(l.lastChild.innerText)])"))
    assert counts["mark-nonmanifold"] == report.get("non-manifold-edge", 0)
    assert counts["mark-samedirection"] == report.get("same-direction", 0)
    assert counts["mark-boundary"] == boundary
    assert counts.get("mark-places", 0) == report.get("repeated-corner", 0)
    assert len(report) == browser.run("document.querySelectorAll('#problems details').length")


def test_problems_lead_to_their_places(show):
    browser = show(PROBLEMS, size=(900, 600))
    browser.run("[...document.querySelectorAll('#problems button')].find(b => b.innerText.includes('corner 18')).click()")
    assert "Face 5" in text_of(browser, "inspector") and "Corner 18\n" in text_of(browser, "inspector")
    browser.key("n")
    first = text_of(browser, "inspector")
    browser.key("n")
    assert text_of(browser, "inspector") != first


# Three corners of a point that there is not, a point nowhere, offsets of a face of two corners.
def test_faulty_meshes_are_shown_as_far_as_they_go(show):
    rows = "0 0 0\n1 0 0\n1 1 0\n0 1 0\nnan 1 0\n" + "4 0 1 2 3\n3 0 1 9\n3 0 1 4\n2 0 1\n"
    file = ply("vertex", ["float x", "float y", "float z\nelement face 4", "list uchar int vertex_indices"], rows, 5)
    browser = show(file, name="faulty.ply", size=(900, 600))
    assert "3 faces cannot be drawn" in text_of(browser, "names")
    assert browser.run("document.querySelectorAll('#problems .error').length") == 3
    browser.run("[...document.querySelectorAll('#problems button')].find(b => b.innerText.includes('point 4 ')).click()")
    assert "no place" in text_of(browser, "state")


def test_a_page_inside_a_notebook_draws_and_answers(show, tmp_path):
    browser = show(SQUARES)
    page = (tmp_path / "page.html").read_text()
    (tmp_path / "outer.html").write_text(f'<iframe srcdoc="{html.escape(page)}" sandbox="allow-scripts" width="600" height="300"></iframe>')
    browser.resize(700, 400)
    browser.call("Page.navigate", url=(tmp_path / "outer.html").as_uri())
    frame = browser.wait_for_frame("document.documentElement?.dataset.ready || ''")
    assert frame("document.documentElement.dataset.ready") == "yes"
    frame("document.getElementById('go-number').value = 4, document.querySelector('#go button').click()")
    assert "Face 4" in frame("document.getElementById('inspector').innerText")
    frame("document.getElementById('about').click(), document.querySelector('#help button').click()")
    assert not frame("document.getElementById('help').open")


def test_names_from_elsewhere_stay_text(show):
    names = f"g {HOSTILE}\nusemtl {HOSTILE}\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"
    file = ply("vertex", ["float x", "float y", "float z", f"float {HOSTILE}\nelement face 1", "list uchar int vertex_indices"],
               "0 0 0 1\n1 0 0 2\n0 1 0 3\n3 0 1 2\n", 3)
    browser = show(names, file, name="<img src=x onerror=window.broken=1>.obj", **FRONT)
    for face in (0, 1):
        browser.hover(40 + 160 * face, 140)
    browser.run("color.value = color.options[color.options.length - 1].value, color.dispatchEvent(new Event('change'))")
    assert browser.run("[typeof window.broken, document.images.length]") == ["undefined", 0]
    assert HOSTILE in browser.run("[...color.options].map(o => o.innerText).join()")
    assert HOSTILE in text_of(browser, "legend")


# Random bits do not compress, so the page holds them as bytes and not as base64.
def test_pages_of_bytes_hold_every_bit(show, tmp_path):
    draw = random.Random(2)
    values = [v for v in struct.unpack("<750000f", draw.randbytes(3000000)) if abs(v) < 1e38][:720000]
    header = "ply\nformat binary_little_endian 1.0\nelement vertex 240000\nproperty float x\nproperty float y\nproperty float z\nend_header\n"
    browser = show(header.encode() + struct.pack("<720000f", *values), name="noise.ply")
    assert browser.run("document.characterSet") == "windows-1252"
    for point in (0, 123456, 239999):
        browser.run(f"go.querySelector('#go-element').value = 'point', go.querySelector('#go-number').value = {point}, go.querySelector('button').click()")
        shown = text_of(browser, "inspector").split("position\t")[1].split()
        assert [float(x) for x in shown] == pytest.approx(values[3 * point:3 * point + 3], rel=1e-6)


def test_rounded_pages_say_how_far_off_they_are(show):
    browser = show(SQUARES, options=["--quantise"], size=(900, 600))
    assert "rounded" in text_of(browser, "names")
    browser.run("go.querySelector('#go-element').value = 'point', go.querySelector('#go-number').value = 4, go.querySelector('button').click()")
    shown = [float(x) for x in text_of(browser, "inspector").split("position\t")[1].split()]
    assert shown == pytest.approx([1, 1, 0], abs=2 / 65534)


# A square of n x n quads with a wave in it, seen from so near the middle that a quad is some pixels large.
def test_a_million_triangles_are_drawn_and_told_apart(show, tmp_path):
    n = 707
    x, y = (grid.ravel().astype("f4") for grid in numpy.meshgrid(numpy.arange(n + 1), numpy.arange(n + 1)))
    points = numpy.stack([x, y, 5 * numpy.sin(x / 50)], 1).astype("<f4")
    first = (numpy.arange(n)[:, None] * (n + 1) + numpy.arange(n)).ravel()
    faces = numpy.zeros(n * n, [("size", "u1"), ("corners", "<i4", 4)])
    faces["size"], faces["corners"] = 4, first[:, None] + [0, 1, n + 2, n + 1]
    header = (f"ply\nformat binary_little_endian 1.0\nelement vertex {len(points)}\nproperty float x\nproperty float y\n"
              f"property float z\nelement face {n * n}\nproperty list uchar int vertex_indices\nend_header\n")
    browser = show(header.encode() + points.tobytes() + faces.tobytes(), name="wave.ply", bare=1, camera="0,0,0.05,0,0,0")
    arrays = points.nbytes + 4 * (n * n + 1) + 16 * n * n
    assert (tmp_path / "page.html").stat().st_size < arrays + 1e6
    middle = (n * n - 1) // 2
    for column in (-4, 0, 3):
        browser.hover(160 + 20.8 * column, 120)
        assert f"Face {middle + column} " in text_of(browser, "inspector")
    browser.key("0")
    assert len(Image.open(io.BytesIO(browser.screenshot())).convert("RGB").getcolors(1 << 20)) > 50


def distance(browser):
    browser.wait_for("location.hash.includes('camera')")
    browser.run("new Promise(done => setTimeout(() => done(1), 700))")
    return float(browser.run("new URLSearchParams(location.hash.slice(1)).get('camera').split(',')[2]"))


def test_wheel_keys_and_two_fingers_zoom_and_the_address_remembers(show):
    browser = show(SQUARES, **FRONT)
    browser.call("Input.dispatchMouseEvent", type="mouseWheel", x=160, y=120, deltaX=0, deltaY=-200)
    after_wheel = distance(browser)
    browser.key("-")
    after_key = distance(browser)
    for kind, spread in (("touchStart", 20), ("touchMove", 30), ("touchMove", 60), ("touchEnd", 0)):
        points = [{"x": 160 - spread, "y": 120}, {"x": 160 + spread, "y": 120}] if spread else []
        browser.call("Input.dispatchTouchEvent", type=kind, touchPoints=points)
    after_pinch = distance(browser)
    assert after_wheel < 4.9 < 5 and after_wheel < after_key and after_pinch < 0.6 * after_key
    browser.run("location.reload()")
    browser.wait_for("document.documentElement?.dataset.ready || ''")
    assert distance(browser) == pytest.approx(after_pinch, rel=1e-3)
