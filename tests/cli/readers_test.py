"""What other programs read of our PLY and OBJ files: points, faces, colours and normals, by the readers installed here."""

import contextlib
import importlib
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import numpy

PROGRAM = os.environ["TESSARY_PROGRAM"]

CUBE = """ply
format ascii 1.0
element vertex 8
property float x
property float y
property float z
property float nx
property float ny
property float nz
property uchar red
property uchar green
property uchar blue
element face 6
property list uchar int vertex_indices
end_header
0 0 0 -0.6 0 -0.8 0 0 0
1 0 0 0.6 0 -0.8 255 0 0
1 1 0 0.6 0.8 0 255 200 0
0 1 0 0 0.8 -0.6 0 200 0
0 0 1 -0.6 0 0.8 0 0 130
1 0 1 0.6 0 0.8 255 0 130
1 1 1 0.6 0.8 0 255 200 130
0 1 1 0 0.8 0.6 0 200 130
4 3 2 1 0
4 4 5 6 7
4 0 1 5 4
4 1 2 6 5
4 2 3 7 6
4 3 0 4 7
"""

MESHES = {"triangulate": [], "quads": ["--crease-angle", "30", "--gap", "0.1"], "sample": ["-d", "30%"]}
PLY = ["ply", "ply-big", "ply-ascii"]


class Read:
    """Points, and where the reader gives them faces as rows, colours from 0 to 1 and normals of points; else None."""

    def __init__(self, points, faces=None, colors=None, normals=None):
        self.points, self.faces, self.colors, self.normals = points, faces, colors, normals


def by_vtk(path, kind):
    vtk = importlib.import_module("vtkmodules.all")
    arrays = importlib.import_module("vtkmodules.util.numpy_support").vtk_to_numpy
    reader = vtk.vtkOBJReader() if kind == "obj" else vtk.vtkPLYReader()
    reader.SetFileName(path)
    reader.Update()
    data = reader.GetOutput()
    colors, normals = data.GetPointData().GetArray("RGB"), data.GetPointData().GetNormals()
    polygons = data.GetPolys()
    offsets, corners = arrays(polygons.GetOffsetsArray()), arrays(polygons.GetConnectivityArray())
    return Read(arrays(data.GetPoints().GetData()), numpy.split(corners, offsets[1:-1]),
                None if colors is None else arrays(colors)[:, :3] / 255.0,
                None if normals is None else arrays(normals))


def by_open3d(path, kind):
    io = importlib.import_module("open3d").io
    cloud = io.read_point_cloud(path, format="ply") if kind != "obj" else None
    mesh = io.read_triangle_mesh(path)
    read = cloud if len(mesh.triangles) == 0 else mesh
    points, colors, normals = ((read.points, read.colors, read.normals) if read is cloud else
                               (read.vertices, read.vertex_colors, read.vertex_normals))
    return Read(numpy.asarray(points), None if read is cloud else list(numpy.asarray(mesh.triangles)),
                numpy.asarray(colors) if len(colors) else None, numpy.asarray(normals) if len(normals) else None)


def by_meshio(path, kind):
    meshio = importlib.import_module("meshio")
    with contextlib.redirect_stdout(None):
        mesh = meshio.read(path, file_format="obj" if kind == "obj" else "ply")
    data = {name: numpy.asarray(values) for name, values in mesh.point_data.items()}
    colors = numpy.stack([data[name] for name in ("red", "green", "blue")], 1) if "red" in data else None
    if colors is not None and colors.dtype == numpy.int8:  # it takes "uchar" of binary files for signed
        colors = colors.view(numpy.uint8)
    if kind == "obj":  # it leaves the colours of points beside their coordinates
        return Read(mesh.points[:, :3], [row for cells in mesh.cells for row in cells.data], mesh.points[:, 3:])
    normals = numpy.stack([data[name] for name in ("nx", "ny", "nz")], 1) if "nx" in data else None
    faces = [row for cells in mesh.cells if cells.type != "vertex" for row in cells.data]
    return Read(mesh.points, faces, None if colors is None else colors / 255.0, normals)


class OthersRead(unittest.TestCase):
    """Each reader is held to all of a file that it knows: two of OBJ look for no colours or no normals."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = Path(folder.name)
        (cls.folder / "cube.ply").write_text(CUBE)
        cls.expected = {}
        for verb, options in MESHES.items():
            for kind in PLY + ["obj", "npz"]:
                subprocess.run([PROGRAM, verb, cls.folder / "cube.ply", *options, "--quiet", "--format", kind, "-o",
                                cls.path(verb, kind)], check=True, stdin=subprocess.DEVNULL)
            cls.expected[verb] = numpy.load(cls.path(verb, "npz"))

    @classmethod
    def path(cls, verb, kind):
        return str(cls.folder / f"{verb}_{kind}.{kind.split('-')[0]}")

    def hold(self, read, verb, colors, normals, in_order=True):
        ours = self.expected[verb]
        places, our_places = slice(None), slice(None)
        if verb != "sample":
            rows = [list(row) for row in numpy.split(ours["face_vertex"], ours["face_offset"][1:-1])]
            self.assertEqual([len(row) for row in read.faces], [len(row) for row in rows])
            if in_order:
                self.assertEqual([list(row) for row in read.faces], rows)
            places, our_places = numpy.concatenate(read.faces), ours["face_vertex"]
        numpy.testing.assert_allclose(read.points[places], ours["position"][our_places], atol=1e-7)
        if colors:
            numpy.testing.assert_allclose(read.colors[places], ours["color"][our_places], atol=0.5 / 255 + 1e-6)
        if normals:
            numpy.testing.assert_allclose(read.normals[places], ours["normal"][our_places], atol=1e-6)

    def read_all(self, library, reader, kinds, verbs=MESHES, **held):
        try:
            importlib.import_module(library)
        except ImportError as error:
            self.skipTest(f"{library} is not installed: {error}")
        for verb in verbs:
            for kind in kinds:
                with self.subTest(verb=verb, kind=kind):
                    self.hold(reader(self.path(verb, kind), kind), verb, **held)

    def test_ply_by_vtk(self):
        self.read_all("vtkmodules", by_vtk, PLY, colors=True, normals=True)

    def test_ply_by_open3d(self):
        self.read_all("open3d", by_open3d, PLY, ["triangulate", "sample"], colors=True, normals=True)

    def test_ply_by_meshio(self):
        self.read_all("meshio", by_meshio, PLY, ["triangulate", "quads"], colors=True, normals=True)

    def test_obj_by_vtk(self):
        self.read_all("vtkmodules", by_vtk, ["obj"], ["triangulate", "quads"], colors=False, normals=True)

    def test_obj_by_open3d(self):
        self.read_all("open3d", by_open3d, ["obj"], ["triangulate"], colors=True, normals=True,
                      in_order=False)

    def test_obj_by_meshio(self):
        self.read_all("meshio", by_meshio, ["obj"], ["triangulate", "quads"], colors=True, normals=False)


if __name__ == "__main__":
    unittest.main()
