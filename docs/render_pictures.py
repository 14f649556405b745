#!/usr/bin/env python3
"""Renders the pictures of the documentation by the project itself: render_pictures.py SEPARATE [NAME...]

The viewer's pages in a headless browser. A picture is written anew only where it differs visibly from the stored
one. SEPARATE is the example that takes a pile of bodies apart.
"""

import io
import math
import sys
import tempfile
from pathlib import Path

import numpy as np
from PIL import Image, ImageChops

ROOT = Path(__file__).resolve().parents[1]
sys.path[:0] = [str(ROOT / "viewer"), str(ROOT / "examples")]

import gallery  # noqa: E402
import shapes  # noqa: E402
import tessary as ts  # noqa: E402
from browser import Browser  # noqa: E402

PICTURES = ROOT / "docs/pictures"
SCALE = 1.5
STEP = 24  # of a colour, and it has to be so on average over 8 x 8 pixels


def strip(_):
    """One mesh and what becomes of it, side by side under one camera."""
    mesh = ts.demo_mesh(9)
    fine = ts.demo_mesh(40)
    plain = {"color": "color", "camera": "0.62,0.45,3.3,0,0,0", "shading": "smooth"}
    cells = ts.voxels(fine, 0.13)
    colored = cells.mesh()
    nearest = [np.argmin(((fine.points - c) ** 2).sum(1)) for c in (cells.cells + 0.5) * cells.cell_size]
    colored.properties["color"] = ts.Property(np.repeat(fine.properties["color"].values[nearest], 6, 0), component="face")
    return [({"mesh": mesh}, plain), ({"triangles": mesh.triangulate()}, plain), ({"quads": mesh.quads(crease_angle=20, gap=0.06)}, plain),
            ({"samples": fine.sample(distance="3.2%", seed=3)}, plain), ({"cells": colored}, {**plain, "shading": "flat"})]


def polygons(_):
    mesh = ts.demo_mesh(8)
    mesh.properties["face"] = ts.Property(np.arange(mesh.face_count), component="face")
    view = {"color": "face", "camera": "0.62,0.5,2.55,0.03,0.1,0.05"}
    return [({"polygons": mesh, "their fans": mesh.triangulate()}, view)]


def seams(_):
    mesh = ts.demo_mesh(12)
    return [({"polygons": mesh, "triangles": mesh.triangulate()},
             {"color": "texcoord", "marks": "seam", "camera": "1.05,0.45,3.2,0.05,0,0", "shading": "smooth"})]


def samples(_):
    mesh = gallery.bunny()
    view = {"layout": "together", "edges": 0, "shading": "smooth", "color": ""}
    return [({"surface": mesh, "samples": mesh.sample(distance=d, seed=7)}, view) for d in ("5%", "2%")]


def problems(_):
    return [({"faulty.obj": shapes.broken_mesh()}, {"bare": 0, "marks": "boundary,nonmanifold,samedirection", "click": "run the same way", "zoom": 2.2})]


def voxels(_):
    mesh = gallery.bunny()
    return [({"surface": mesh, "cells": ts.voxels(mesh, float(np.ptp(mesh.points, axis=0).max()) / 26).mesh()}, {})]


def of_gallery(scene, **more):
    def panels(separate):
        models, view = scene(separate)
        return [(models, {**view, **more})]
    return panels


# name: panels, and the size of each
SIZES = {
    "results": (strip, 264, 250),
    "polygons-and-fans": (polygons, 760, 380),
    "seams-kept": (seams, 760, 380),
    "crease-quads": (of_gallery(gallery.quads), 760, 360),
    "neighbours": (of_gallery(gallery.neighbours), 560, 360),
    "samples": (samples, 380, 380),
    "samples-with-values": (of_gallery(gallery.attributes), 760, 380),
    "smallest-sphere": (of_gallery(gallery.sphere), 480, 380),
    "voxels": (voxels, 760, 350),
    "pile-taken-apart": (of_gallery(gallery.pile, camera="0.6,0.42,3.1,0,0,0"), 760, 360),
    "problems-marked": (problems, 980, 620),
}


def shot(browser, page, view):
    click, zoom = view.pop("click", None), view.pop("zoom", 1)
    browser.open(page, **{"bare": 1, "theme": "light", **view})
    if click:
        browser.run(f"[...document.querySelectorAll('#problems button')].find(b => b.innerText.includes('{click}')).click()")
        browser.settle()
        for _ in range(round(math.log(zoom, 1.15))):
            browser.key("-")
    else:
        browser.run("document.getElementById('buttons').hidden = true")
        browser.run("legend.hidden = !legend.querySelector('canvas')")
    browser.settle()
    assert not browser.faults, browser.faults
    return Image.open(io.BytesIO(browser.screenshot())).convert("RGB")


def render(browser, name, separate, folder):
    panels, width, height = SIZES[name]
    browser.resize(width, height, SCALE)
    shots = []
    for models, view in panels(separate):
        ts.view(*models.values(), path=folder / "page.html", names=tuple(models), overwrite=True)
        shots.append(shot(browser, folder / "page.html", dict(view)))
    picture = Image.new("RGB", (sum(one.width for one in shots), shots[0].height))
    for i, one in enumerate(shots):
        picture.paste(one, (i * shots[0].width, 0))
    return small(picture)


def small(picture):
    """The picture with fewer colours: 256 where nobody sees it, else in steps of 4."""
    few = picture.quantize(256, method=Image.Quantize.MAXCOVERAGE, dither=Image.Dither.NONE)
    palette, back = few.getpalette(), few.getpixel((0, few.height - 1))
    palette[3 * back:3 * back + 3] = picture.getpixel((0, picture.height - 1))
    few.putpalette(palette)
    return few if distance(picture, few.convert("RGB")) <= 8 else picture.point(lambda v: min(255, (v + 2) // 4 * 4))


def distance(one, other):
    """The largest difference of a colour's means over 8 x 8 pixels."""
    return max(high for _, high in ImageChops.difference(one, other).reduce(8).getextrema())


def looks_like(picture, file):
    if not file.exists():
        return False
    stored, new = Image.open(file).convert("RGB"), picture.convert("RGB")
    if stored.size != new.size:
        return False
    return distance(stored, new) <= STEP


def main():
    separate, names = sys.argv[1], sys.argv[2:] or list(SIZES)
    with tempfile.TemporaryDirectory() as folder, Browser() as browser:
        for name in names:
            picture, file = render(browser, name, separate, Path(folder)), PICTURES / f"{name}.png"
            if not looks_like(picture, file):
                picture.save(file, optimize=True)
                print(f"{file.relative_to(ROOT)}: {file.stat().st_size // 1000} kB", file=sys.stderr)


if __name__ == "__main__":
    main()
