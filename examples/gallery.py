"""Every kernel's result as a page of its own, and one page with all of them: gallery.py SEPARATE FOLDER

SEPARATE is the example that takes a pile of bodies apart.
"""
import subprocess
import sys
from html import escape
from pathlib import Path
from urllib.parse import urlencode

import numpy as np
import tessary as ts

from shapes import bodies_mesh, broken_mesh, globe, house

BUNNY = Path("/usr/share/glmark2/models/bunny.obj")


def bunny():
    """A scan of a rabbit, where the package glmark2-data has brought it; else the demo mesh."""
    return ts.read(BUNNY) if BUNNY.exists() else ts.demo_mesh(64)


def triangulation(separate):
    mesh = ts.demo_mesh(12)
    mesh.properties["face"] = ts.Property(np.arange(mesh.face_count), component="face")
    return {"polygons": mesh, "triangles": mesh.triangulate()}, {"color": "face", "camera": "0.5,0.42,3.6,0,0,0"}


def seams(separate):
    mesh = ts.demo_mesh(16)
    return {"polygons": mesh, "triangles": mesh.triangulate()}, {"color": "texcoord", "marks": "seam"}


def dual(separate):
    mesh = ts.demo_mesh(12)
    mesh.properties["corners"] = np.diff(ts.dual(mesh).offsets.astype(int)).astype(np.float32)
    return {"corners of each point": mesh}, {"color": "corners", "points": 1, "size": 0.6}


def edges(separate):
    mesh = ts.demo_mesh(16)
    kept = [mesh.face(k) for k in range(mesh.face_count) if k % 97 > 3]
    return {"boundaries": ts.Mesh(mesh.points, kept)}, {"marks": "boundary"}


def neighbours(separate):
    mesh = bunny()
    tables = ts.adjacency(mesh)
    across = tables.face_vertex_adjacent_tri.reshape(-1, 3)
    steps = np.full(len(across), np.nan, np.float32)  # stays so for what hangs together with nothing
    front, step = np.array([0]), 0
    while len(front):
        steps[front] = step
        near = across[front].ravel()
        near = near[near != ts.NONE]
        front, step = np.unique(near[np.isnan(steps[near])]), step + 1
    mesh.properties["steps"] = ts.Property(steps[np.unique(tables.face, return_index=True)[1]], component="face")
    return {"steps from the first face": mesh}, {"color": "steps", "edges": 0}


def quads(separate):
    mesh = house()
    return {"faces": mesh, "quads, parted at creases": mesh.quads(crease_angle=30, gap=0.125)}, {"camera": "0.55,0.3,4.4,0,0,0"}


def cut(separate):
    mesh = ts.demo_mesh(8)
    return {"polygons": mesh, "quads": mesh.quads()}, {"color": "texcoord", "marks": "seam"}


def samples(separate):
    mesh = bunny()
    view = {"layout": "together", "edges": 0, "shading": "smooth", "color": ""}
    return {"surface": mesh, "samples": mesh.sample(distance="2.5%", seed=7)}, view


def attributes(separate):
    mesh = ts.demo_mesh(48)
    return {"surface": mesh, "samples": mesh.sample(distance="2.5%", seed=1)}, {"color": "color", "edges": 0, "shading": "smooth"}


def sphere(separate):
    mesh = bunny()
    found = mesh.bounding_sphere()
    away = np.linalg.norm(mesh.points - found.center, axis=1)
    around = globe(found.center, found.radius, mesh.points[away > found.radius * (1 - 1e-5)])
    return {"points": mesh, "smallest sphere": around}, {"layout": "together", "edges": 0, "shading": "smooth"}


def voxels(separate):
    mesh = bunny()
    cells = ts.voxels(mesh, float(np.ptp(mesh.points, axis=0).max()) / 40)
    return {"surface": mesh, "cells": cells.mesh()}, {}


def pile(separate):
    text = subprocess.run([separate, "bodies"], check=True, capture_output=True, text=True).stdout
    rows = np.array([line.split() for line in text.splitlines()], float)
    before, after = np.split(rows, 2)
    view = {"color": "body", "edges": 0, "shading": "smooth"}
    return {"overlapping": bodies_mesh(before), "taken apart": bodies_mesh(after)}, view


def problems(separate):
    return {"faulty mesh": broken_mesh()}, {"marks": "boundary,nonmanifold,samedirection"}


# name, kernels, what is to be seen
SCENES = [
    (triangulation, "computeTriangulation, triangulatePolyMesh",
     "Polygons of three to eight corners become fans of triangles; each triangle knows its polygon, by which both are coloured."),
    (seams, "copyPropertiesToTriangulatedMesh",
     "Texture coordinates follow with their indices, so seams (green) stay where they were."),
    (dual, "constructDualMesh, addDual", "Every point lists the corners that use it; here is how many they are."),
    (edges, "computeTriEdges, polyEdgeToTriEdge, triEdgeToPolyEdge", "Each edge is listed once, with both sides; those that have but one are the boundaries (blue)."),
    (neighbours, "populateAdjacentTri, addAdjacentTri, findAdjacentHalfEdge", "From face to face across edges: how many steps each is from the first."),
    (quads, "computeQuadMesh, quadFaceIndexedInterpolation",
     "Every triangle becomes three quads; along creased edges the surface parts, here by an eighth of each edge."),
    (cut, "interpolatePropertiesToCutMesh", "Every property is carried to the points that cutting makes, and seams stay seams."),
    (samples, "poissonSampleTriMesh", "Samples all over the surface that keep their distance: balls of that diameter (orange) never overlap."),
    (attributes, "PointBins, poissonSampleTriMesh", "Each sample has the values that the surface has at its place."),
    (sphere, "computeBoundingSphere", "The smallest sphere around all points, and the few of them that it touches."),
    (voxels, "intersect_triangle_with_axis_aligned_box", "The cells of a grid that the surface touches."),
    (pile, "Multicollider", "A pile of spheres and boxes that overlap, and the same pile taken apart."),
    (problems, "validateMesh, edgeWarnings", "What is wrong with a mesh, marked where it is: the list leads to each place."),
]


HEAD = """<!doctype html>
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Tessary: every kernel's result</title>
<style>
:root { color-scheme: light dark; font: 15px/1.5 system-ui, sans-serif; }
body { max-width: 1240px; margin: 0 auto; padding: 24px 20px 60px; background: Canvas; color: CanvasText; }
h1 { font-size: 24px; margin: 0; }
main { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(520px, 100%), 1fr)); gap: 28px 24px; margin-top: 24px; }
h2 { font: 600 14px/1.4 ui-monospace, "DejaVu Sans Mono", monospace; margin: 10px 0 2px; overflow-wrap: anywhere; }
p { margin: 0; max-width: 62ch; }
iframe { width: 100%; aspect-ratio: 3 / 2; border: 1px solid #8884; border-radius: 8px; display: block; }
</style>
<h1>Every kernel's result</h1>
<p>Drag to turn, scroll to zoom, point at a face to see its values. Every picture is a page of its own, which
<code>tessary.view</code> wrote.</p>
<main>
"""


def write(scene, separate, folder):
    """Writes the page of a scene; returns its file and how it begins."""
    models, view = scene(separate)
    file = folder / f"{scene.__name__}.html"
    ts.view(*models.values(), path=file, names=tuple(models), overwrite=True)
    return file, view


def main():
    separate, folder = sys.argv[1], Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    page = HEAD
    for scene, kernels, sentence in SCENES:
        file, view = write(scene, separate, folder)
        link = escape(f"{file.name}#{urlencode(view)}")
        page += (f'<section><iframe src="{link}&amp;bare=1" loading="lazy" title="{escape(sentence)}"></iframe>\n'
                 f'<h2>{escape(kernels)}</h2>\n<p>{escape(sentence)} <a href="{link}">Open it</a></p></section>\n')
    (folder / "index.html").write_text(page + "</main>\n</html>\n")


if __name__ == "__main__":
    main()
