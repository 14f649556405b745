"""What is done in pieces has the bytes of what is done at once, in bounded memory, here and on Dask's workers."""

import os
import subprocess
import sys

import numpy as np
import pytest
import tessary as ts
from tessary import _chunk_checks, chunks

SMALL = 10**6  # the least that may be asked for


@pytest.fixture(autouse=True)
def many_pieces(monkeypatch):
    """Pieces of a few hundred elements, so that small meshes have many."""
    monkeypatch.setattr(chunks, "memory", lambda given: 40000 if given == SMALL else 10**9)


def contents(folder):
    return {path.name: path.read_bytes() for path in folder.iterdir()}


def everything():
    """A mesh with a property of every kind on every component."""
    mesh = ts.demo_mesh(16)
    counts = {"point": mesh.point_count, "corner": mesh.corner_count, "face": mesh.face_count}
    random = np.random.default_rng(3)
    for component, count in counts.items():
        for dtype, shape in [("f4", (2,)), ("f8", ()), ("u1", (4,)), ("?", ()), ("i8", ()), ("f4", (4, 4))]:
            values = random.integers(0, 2, (count, *shape)).astype(dtype)
            mesh.properties[f"{component}-{dtype}"] = ts.Property(values, component, interpolation="constant")
        indices = random.integers(0, 7, count).astype(np.uint32)
        indices[::5] = ts.NONE
        mesh.properties[f"{component}/through"] = ts.Property(np.arange(7.0), component, indices, default=9)
    return mesh


def test_triangulation_in_pieces(tmp_path):
    mesh = everything()
    stored = chunks.store(mesh, tmp_path / "mesh")
    made = chunks.triangulate(stored, tmp_path / "pieces", max_memory=SMALL)
    whole = mesh.triangulate()
    chunks.store(whole, tmp_path / "whole")
    assert contents(tmp_path / "pieces") == contents(tmp_path / "whole")
    assert (made.mesh().properties["corner/through"].per_element()
            == whole.properties["corner/through"].per_element()).all()
    few = chunks.triangulate(stored, tmp_path / "few", properties=["texcoord"], max_memory=SMALL)
    assert list(few.properties) == ["texcoord"]
    with pytest.raises(ts.FileError, match="already"):
        chunks.triangulate(stored, tmp_path / "few")


def random_points(seed):
    random = np.random.default_rng(seed)
    points = random.normal(size=(int(random.integers(0, 2000)) if seed % 3 else seed % 7, 3))
    if seed % 5 == 1:
        points /= np.linalg.norm(points, axis=1, keepdims=True)
    if seed % 5 == 2:
        points = np.round(points)
    if seed % 5 == 3:
        points[:, 2] = 0
    points *= [1, 1e-22, 1e18][seed % 3]
    if seed % 4 == 3:
        points[::5] = np.nan
    return points.astype(np.float32)


@pytest.mark.parametrize("seed", range(60))
def test_spheres_in_pieces(seed, tmp_path):
    points = random_points(seed)
    np.save(tmp_path / "points.npy", points)
    sphere = chunks.bounding_sphere(np.load(tmp_path / "points.npy", mmap_mode="r"), max_memory=SMALL)
    whole = ts.bounding_sphere(points)
    assert sphere.center.tobytes() == whole.center.tobytes()
    assert np.float64(sphere.radius).tobytes() == np.float64(whole.radius).tobytes()


def test_overlap_in_pieces(tmp_path):
    random = np.random.default_rng(5)
    triangles, boxes = random.normal(size=(5000, 3, 3)), np.abs(random.normal(size=(5000, 2, 3)))
    for name, array in (("triangles", triangles), ("boxes", boxes)):
        np.save(tmp_path / f"{name}.npy", array)
    mapped = [np.load(tmp_path / f"{name}.npy", mmap_mode="r")[7:] for name in ("triangles", "boxes")]
    found = chunks.overlap(*mapped, output=tmp_path / "found.npy", max_memory=SMALL)
    assert 0 < found.sum() < 4993 and (found == ts.overlap(triangles[7:], boxes[7:])).all()
    assert (chunks.overlap(*mapped, max_memory=SMALL) == found).all()
    with pytest.raises(ts.ArrayError, match="boxes: "):
        chunks.overlap(triangles, boxes[:9])


def broken_mesh(seed):
    """Random faces: edges of many faces, in all directions, corners that repeat, and errors of each kind."""
    random = np.random.default_rng(seed)
    kind = seed % 8
    # Between false offsets anything may pass for a face, which has to fit.
    sizes = random.integers(3, 12 if kind % 2 else 4, int(random.integers(1, 400 if kind < 6 else 20)))
    offsets = np.append(0, np.cumsum(sizes))
    points = random.normal(size=(int(random.integers(3, 300)), 3)).astype(np.float32)
    corners = random.integers(0, len(points) + (kind == 4), offsets[-1])
    if kind == 5:
        points[random.integers(0, len(points), 9), 1] = [np.nan, np.inf, -np.nan] * 3
    if kind in (6, 7):
        offsets[random.integers(0, len(offsets), 7)] = random.integers(0, offsets[-1] + 9 * (kind == 7), 7)
    return points, corners.astype(np.uint32), offsets.astype(np.uint32)


@pytest.mark.parametrize("seed", range(80))
def test_validation_in_pieces_says_the_same(seed):
    arrays = broken_mesh(seed)
    whole = ts.Mesh(arrays[0], corners=arrays[1], offsets=arrays[2], check=False).validate()
    assert chunks.validate(chunks.StoredMesh(*arrays), max_memory=SMALL).problems == whole.problems
    if seed % 8 < 4 and len(arrays[2]) > 50:
        assert whole.warnings and whole.valid


def test_validation_of_nothing_and_of_what_is_fine():
    empty = chunks.StoredMesh(np.zeros((0, 3), np.float32), np.zeros(0, np.uint32), np.zeros(1, np.uint32))
    assert len(chunks.validate(empty)) == 0
    mesh = everything()
    good = chunks.StoredMesh(mesh.points, mesh.corners, mesh.offsets, mesh.properties)
    assert chunks.validate(good, max_memory=SMALL).problems == ts.validate(mesh).problems
    property = ts.Property(np.arange(3.0), "face", np.full(mesh.face_count, 2))
    property.values = property.values[:2]
    [problem] = chunks.validate(chunks.StoredMesh(mesh.points, mesh.corners, mesh.offsets, {"a": property}))
    assert (problem.code, problem.count) == ("property-index", mesh.face_count)
    with pytest.raises(ts.InvalidMesh, match="property-index|indices outside"):
        chunks.triangulate(chunks.StoredMesh(mesh.points, mesh.corners, mesh.offsets, {"a": property}), "nowhere")


def test_what_cannot_be_cut_is_said():
    wheel = chunks.StoredMesh(np.zeros((2000, 3)), np.arange(2000), np.array([0, 2000]))
    with pytest.raises(ts.OutOfMemory, match="face 0 has 2000 corners"):
        chunks.validate(wheel, max_memory=SMALL)
    book = chunks.StoredMesh(np.zeros((1002, 3)), np.array([[0, 1, page] for page in range(2, 1002)]).reshape(-1),
                             np.arange(0, 3001, 3))
    with pytest.raises(ts.OutOfMemory, match="edge 0-1 has more faces"):
        chunks.validate(book, max_memory=SMALL)


def test_pieces_are_tasks(tmp_path):
    distributed = pytest.importorskip("distributed")
    mesh = everything()
    stored = chunks.store(mesh, tmp_path / "mesh")
    chunks.triangulate(stored, tmp_path / "alone", max_memory=SMALL)
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            chunks.triangulate(stored, tmp_path / "tasks", max_memory=SMALL, client=client)
            sphere = chunks.bounding_sphere(stored, max_memory=SMALL, client=client)
            report = chunks.validate(stored, max_memory=SMALL, client=client)
    assert contents(tmp_path / "tasks") == contents(tmp_path / "alone")
    assert sphere.radius == ts.bounding_sphere(mesh).radius and report.problems == ts.validate(mesh).problems


MEASURED = """
import os, sys, numpy as np, tessary as ts
from tessary import chunks
folder, limit = sys.argv[1], int(sys.argv[2])

def high():
    return next(int(line.split()[1]) << 10 for line in open("/proc/self/status") if line.startswith("VmHWM"))

warm = chunks.store(ts.demo_mesh(8), folder + "/warm")
chunks.triangulate(warm, folder + "/warm-triangles"), chunks.validate(warm), chunks.bounding_sphere(warm)
mesh = chunks.load(folder + "/mesh")
pairs = [np.load(f"{folder}/{name}.npy", mmap_mode="r") for name in ("triangles", "boxes")]
for name, work in {
    "triangulate": lambda: chunks.triangulate(mesh, folder + "/made", max_memory=limit),
    "validate": lambda: chunks.validate(mesh, max_memory=limit, scratch=folder),
    "bounding_sphere": lambda: chunks.bounding_sphere(mesh, max_memory=limit),
    "overlap": lambda: chunks.overlap(*pairs, output=folder + "/found.npy", max_memory=limit),
}.items():
    open("/proc/self/clear_refs", "w").write("5")  # the peak is what is resident now
    before = high()
    work()
    print(name, high() - before)
"""


def test_a_mesh_of_four_times_the_memory_stays_below_it(tmp_path):
    if not os.path.exists("/proc/self/status"):
        pytest.skip("the peak of resident memory is read from /proc")
    limit = 24 << 20
    mesh = ts.demo_mesh(512)
    stored = chunks.store(mesh, tmp_path / "mesh")
    size = sum(path.stat().st_size for path in (tmp_path / "mesh").iterdir())
    assert size >= 4 * limit
    count = 4 * limit // 60
    np.save(tmp_path / "triangles.npy", np.ones((count, 3, 3), np.float32))
    np.save(tmp_path / "boxes.npy", np.ones((count, 2, 3), np.float32))
    said = subprocess.run([sys.executable, "-c", MEASURED, tmp_path, str(limit)], capture_output=True, text=True,
                          check=True)
    grown = {name: int(figure) for name, figure in map(str.split, said.stdout.splitlines())}
    assert len(grown) == 4 and all(growth < limit for growth in grown.values()), grown
    whole = mesh.triangulate()
    made = chunks.load(tmp_path / "made")
    assert (made.corners == whole.corners).all()
    assert (made.properties["texcoord"].indices == whole.properties["texcoord"].indices).all()
    assert (made.parents.corner == whole.parents.corner).all()
