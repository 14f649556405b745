"""Times calls of the package beside NumPy alone and beside other packages, where those are installed.

usage: bench_python.py [RESOLUTION] [--quick] [--kernels LIBRARY]

Everybody gets the same triangles of the demo mesh (RESOLUTION 256: 524,288 triangles), in the arrays that they like best
where that is not part of the work, and a row says where the work differs. A figure is the median of at least five
runs, as a table for a page. With --kernels, a library built of bench/python/kernels.cpp, calls take turns with the same
work called from C++ in this process, and the table has the ratio of the two.
"""

import argparse
import ctypes
import importlib
import os
import statistics
import subprocess
import sys
import tempfile
import time

import numpy as np
import tessary as ts


def median_ms(work, seconds):
    work()
    times = []
    while len(times) < 5 or sum(times) < seconds:
        begin = time.perf_counter()
        work()
        times.append(time.perf_counter() - begin)
    return 1e3 * statistics.median(times)


def ratio(ours, other, seconds):
    """Median of ours over that of the other, which take turns."""
    times = [], []
    while len(times[0]) < 9 or sum(times[0]) + sum(times[1]) < 4 * seconds:
        for work, spent in zip((ours, other), times):
            begin = time.perf_counter()
            work()
            spent.append(time.perf_counter() - begin)
    return statistics.median(times[0]) / statistics.median(times[1])


class Kernels:
    """The same work, called from C++; without a library there is none."""

    def __init__(self, library, path, plain, triangles, soup, boxes):
        self._library = library and ctypes.CDLL(library)
        self._kept = plain, triangles, soup, boxes
        if not library:
            return
        self._library.meshOf.restype = ctypes.c_void_p
        address, size = (lambda array: ctypes.c_void_p(array.ctypes.data)), ctypes.c_size_t
        self._path = ctypes.c_char_p(os.fsencode(path))
        self._polygons, self._triangles = (
            ctypes.c_void_p(self._library.meshOf(address(mesh.points), size(mesh.point_count), address(mesh.corners),
                                                 size(len(mesh.corners)), address(mesh.offsets), size(mesh.face_count)))
            for mesh in (plain, triangles))
        self._corners = address(triangles.corners), size(len(triangles.corners))
        self._points = address(triangles.points), size(triangles.point_count)
        self._pairs = address(soup), address(boxes), size(len(soup))

    def __call__(self, name, *arguments):
        if not self._library:
            return None
        function = getattr(self._library, name)
        known = {"readPly": lambda: (self._path,), "triangulate": lambda: (self._polygons,),
                 "validate": lambda: (self._polygons,), "edges": lambda: self._corners,
                 "adjacency": lambda: (*self._corners, self._points[1]), "sphere": lambda: self._points,
                 "sample": lambda: (self._triangles,), "overlap": lambda: self._pairs}[name]() + arguments
        return lambda: function(*known)


def package(name):
    try:
        return importlib.import_module(name)
    except ImportError:
        return None


def numpy_edges(faces):
    """Each edge once, as its two points."""
    sides = np.sort(faces[:, [0, 1, 1, 2, 2, 0]].reshape(-1, 2), axis=1)
    return np.unique(sides[:, 0].astype(np.uint64) << np.uint64(32) | sides[:, 1])


def numpy_adjacency(faces):
    """The triangle across each edge of a closed mesh."""
    sides = np.sort(faces[:, [0, 1, 1, 2, 2, 0]].reshape(-1, 2), axis=1)
    order = np.argsort(sides[:, 0].astype(np.uint64) << np.uint64(32) | sides[:, 1], kind="stable")
    beside = np.empty(len(order), np.int64)
    beside[order[0::2]], beside[order[1::2]] = order[1::2] // 3, order[0::2] // 3
    return beside.reshape(-1, 3)


def numpy_fans(corners, offsets):
    sizes = np.diff(offsets.astype(np.int64))
    face = np.repeat(np.arange(len(sizes)), sizes - 2)
    first = offsets[:-1].astype(np.int64)[face]
    step = np.arange(len(face)) - np.repeat(np.cumsum(sizes - 2) - (sizes - 2), sizes - 2)
    return corners[np.stack([first, first + step + 1, first + step + 2], axis=1)]


def numpy_boxes(triangles, boxes):
    """Only the three axes of the box: less than the test of ours."""
    low, high = triangles.min(axis=1), triangles.max(axis=1)
    return ((low <= boxes[:, 0] + boxes[:, 1]) & (high >= boxes[:, 0] - boxes[:, 1])).all(axis=1)


def vtk_reader(vtk, path):
    def read():
        reader = vtk.vtkPLYReader()
        reader.SetFileName(path)
        reader.Update()
        return reader.GetOutput()
    return read


def vtk_triangles(vtk, mesh):
    from vtkmodules.util.numpy_support import numpy_to_vtk, numpy_to_vtkIdTypeArray
    cells, data, points = vtk.vtkCellArray(), vtk.vtkPolyData(), vtk.vtkPoints()
    cells.SetData(numpy_to_vtkIdTypeArray(mesh.offsets.astype(np.int64), deep=1),
                  numpy_to_vtkIdTypeArray(mesh.corners.astype(np.int64), deep=1))
    points.SetData(numpy_to_vtk(np.array(mesh.points), deep=1))
    data.SetPoints(points)
    data.SetPolys(cells)

    def triangulate():
        work = vtk.vtkTriangleFilter()
        work.SetInputData(data)
        work.Update()
        return work.GetOutput()
    return triangulate


def rows(resolution, folder, library):
    """name, our work, the same from C++, and pairs of another's name and work."""
    mesh = ts.demo_mesh(resolution)
    plain = ts.Mesh(mesh.points, corners=mesh.corners, offsets=mesh.offsets)
    triangles = plain.triangulate()
    faces, points = triangles.faces, triangles.points
    path = os.path.join(folder, "triangles.ply")
    triangles.save(path)
    random = np.random.default_rng(1)
    boxes = np.stack([points[random.integers(0, len(points), len(faces))],
                      np.full((len(faces), 3), 0.1)], axis=1).astype(np.float32)
    soup = points[faces]
    kernels = Kernels(library, path, plain, triangles, soup, boxes)
    o3d, vtk, meshio = package("open3d"), package("vtk"), package("meshio")
    theirs = triangles.to_open3d().to_legacy() if o3d else None
    yield "read a binary PLY", lambda: ts.read(path), kernels("readPly"), [
        ("meshio", meshio and (lambda: meshio.read(path))), ("VTK", vtk and vtk_reader(vtk, path)),
        ("Open3D", o3d and (lambda: o3d.io.read_triangle_mesh(path)))]
    yield "validate polygons", lambda: plain.validate(), kernels("validate"), []
    yield "triangulate polygons, no attributes", lambda: plain.triangulate(), kernels("triangulate"), [
        ("NumPy (no checks, no parents)", lambda: numpy_fans(plain.corners, plain.offsets)),
        ("VTK (splits concave ones well)", vtk and vtk_triangles(vtk, plain))]
    yield "edges of triangles", lambda: ts.arrays.edges(faces), kernels("edges"), [
        ("NumPy (points, not corners)", lambda: numpy_edges(faces))]
    yield "triangles beside triangles", lambda: ts.arrays.adjacency(faces, len(points)), kernels("adjacency"), [
        ("NumPy (closed meshes only)", lambda: numpy_adjacency(faces))]
    yield "2,000 samples by count", lambda: triangles.sample(count=2000, seed=1), kernels(
        "sample", ctypes.c_size_t(2000), ctypes.c_uint(1)), [
        ("Open3D (exactly as many; ours within 2 %)",
         theirs and (lambda: theirs.sample_points_poisson_disk(2000, init_factor=5)))]
    yield "smallest sphere of the points", lambda: ts.bounding_sphere(points), kernels("sphere"), [
        ("NumPy (around the mean: larger)",
         lambda: np.sqrt(((points - points.mean(axis=0)) ** 2).sum(axis=1).max()))]
    yield "triangles against boxes", lambda: ts.overlap(soup, boxes), kernels("overlap"), [
        ("NumPy (3 of the 13 axes)", lambda: numpy_boxes(soup, boxes))]


def overhead_us():
    """Of the cheapest calls: one point, one triangle."""
    point, corners = np.zeros((1, 3), np.float32), np.uint32([[0, 1, 2]])
    pair = np.zeros((1, 3, 3), np.float32), np.ones((1, 2, 3), np.float32)
    calls = {"bounding_sphere": lambda: ts.bounding_sphere(point), "overlap": lambda: ts.overlap(*pair),
             "arrays.edges": lambda: ts.arrays.edges(corners), "arrays.dual": lambda: ts.arrays.dual(corners, 3)}

    def thousand(call):
        for _ in range(1000):
            call()
    return {name: median_ms(lambda call=call: thousand(call), 0.2) for name, call in calls.items()}


def import_ms():
    """What importing the package adds to importing NumPy."""
    program = ("import time, numpy; begin = time.perf_counter(); import tessary; "
               "print(1e3 * (time.perf_counter() - begin))")
    return statistics.median(float(subprocess.run([sys.executable, "-c", program], capture_output=True, text=True,
                                                  check=True).stdout) for _ in range(7))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("resolution", nargs="?", type=int, default=256)
    parser.add_argument("--quick", action="store_true", help="each once only, to see that all of it works")
    parser.add_argument("--kernels", help="a library built of bench/python/kernels.cpp")
    arguments = parser.parse_args()
    seconds = 0 if arguments.quick else 0.5
    print("| work | tessary | of C++ | others |\n|---|---|---|---|")
    with tempfile.TemporaryDirectory() as folder:
        for name, ours, kernel, others in rows(arguments.resolution, folder, arguments.kernels):
            figure, share = median_ms(ours, seconds), f"{ratio(ours, kernel, seconds):.2f}" if kernel else ""
            times = ((other, median_ms(work, seconds)) for other, work in others if work)
            text = "; ".join(f"{other} {time:.1f} ms ({time / figure:.1f} x)" for other, time in times)
            print(f"| {name} | {figure:.1f} ms | {share} | {text} |", flush=True)
    print("\n" + ", ".join(f"{name} {us:.1f} us" for name, us in overhead_us().items()) + " a call")
    print(f"importing tessary after numpy: {import_ms():.0f} ms")


if __name__ == "__main__":
    main()
