"""Thousands of files, here in hundreds: by threads, by two worker processes, and by one that dies of it."""

import functools
import json
import os
import pickle
import signal
import subprocess
import sys

import numpy as np
import pytest
import tessary as ts

distributed = pytest.importorskip("distributed")
from tessary.dask import map_files  # noqa: E402


def contents(folder):
    return {path.name: path.read_bytes() for path in folder.iterdir() if path.is_file()}


@pytest.fixture(scope="module")
def files(tmp_path_factory):
    folder = tmp_path_factory.mktemp("meshes")
    mesh = ts.demo_mesh(8)
    for number in range(200):
        frame = ts.Mesh(mesh.points + np.float32(number), corners=mesh.corners, offsets=mesh.offsets)
        frame.properties["height"] = frame.points[:, 2]
        frame.save(folder / f"frame.{number:04}.ply")
    return folder


@pytest.fixture(scope="module")
def alone(files, tmp_path_factory):
    """What one process makes of each file."""
    folder = tmp_path_factory.mktemp("alone")
    for path in files.iterdir():
        few(ts.read(path)).save(folder / path.name)
    return contents(folder)


@pytest.fixture
def client():
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            yield client


def few(mesh):
    return mesh.sample(distance="40%", seed=7)


def few_and_one_death(marker, mesh):
    """As `few`, but the process that comes first to some file dies in the middle of it."""
    if mesh.points[0, 0] > 60 and not os.path.exists(marker):
        open(marker, "w").close()
        os.kill(os.getpid(), signal.SIGKILL)
    return few(mesh)


def test_two_processes_do_what_one_does_and_a_killed_one_loses_nothing(files, alone, client, tmp_path):
    marker = str(tmp_path / "killed")
    operation = functools.partial(few_and_one_death, marker)
    records = map_files(f"{files}/*.ply", operation, f"{tmp_path}/out/{{name}}", client, progress=False)
    assert os.path.exists(marker)
    assert len(records) == 200 and not records.failures  # those that the dead one had finished are found so
    assert contents(tmp_path / "out") == alone
    again = map_files(f"{files}/*.ply", operation, f"{tmp_path}/out/{{name}}", client, progress=False)
    assert again.counts() == {"done": 0, "skipped": 200, "failed": 0}
    assert [record["points"] for record in again] == [record["points"] for record in records]


def test_meshes_travel_beside_their_message(client):
    mesh = ts.demo_mesh(64)
    _, frames = distributed.protocol.serialize(mesh)
    start = mesh.points.__array_interface__["data"][0]
    assert start in [np.frombuffer(frame, np.uint8).__array_interface__["data"][0] for frame in frames]
    [there] = client.scatter([mesh])
    back = client.submit(ts.triangulate, there).result()
    assert (back.points == mesh.points).all() and (back.corners == mesh.triangulate().corners).all()


def test_arrays_may_lie_anywhere_in_a_message():
    mesh, buffers = ts.demo_mesh(8), []
    message = pickle.dumps(mesh, protocol=5, buffer_callback=buffers.append)
    odd = [memoryview(b"." + buffer.raw().tobytes())[1:] for buffer in buffers]
    back = pickle.loads(message, buffers=odd)
    assert (back.points == mesh.points).all()
    assert (back.properties["texcoord"].indices == mesh.properties["texcoord"].indices).all()


def test_finished_outputs_are_skipped_by_content(files, tmp_path):
    some, out = sorted(map(str, files.iterdir()))[:4], tmp_path / "{stem}.ply"
    run = functools.partial(map_files, some, output=str(out), progress=False)
    assert run("triangulate").counts()["done"] == 4
    (tmp_path / "frame.0001.ply").write_text("damaged")
    assert [record["status"] for record in run("triangulate")] == ["skipped", "done", "skipped", "skipped"]
    assert run(functools.partial(ts.triangulate, properties="none")).counts()["done"] == 4
    one, other = [lambda mesh, way=way: mesh.quads(crease_angle=30, gap=way) for way in (0.0, 0.25)]
    assert [run(one).counts()["done"], run(one).counts()["done"], run(other).counts()["done"]] == [4, 0, 4]


def test_failures_stay_beside_results_and_files_of_others_untouched(files, tmp_path):
    (tmp_path / "a.ply").write_bytes(next(files.iterdir()).read_bytes())
    (tmp_path / "b.ply").write_text("no mesh")
    (tmp_path / "c.ply").write_bytes((tmp_path / "a.ply").read_bytes())
    (tmp_path / "c.json").write_text("mine")
    for _ in range(2):
        records = map_files(tmp_path / "*.ply", "validate", f"{tmp_path}/{{stem}}.json", progress=False)
        assert [record["status"] for record in records][1:] == ["failed", "failed"]
        assert [record["error"] for record in records.failures] == ["FileError", "FileExistsError"]
        assert (tmp_path / "c.json").read_text() == "mine"
    report = ts.read(tmp_path / "a.ply").validate()
    assert json.loads((tmp_path / "a.json").read_text()) == {
        "valid": True, "problems": {problem.code: problem.count for problem in report}}
    noted = json.loads((tmp_path / ".tessary" / "b.json.json").read_text())
    assert "b.ply" in noted["record"]["message"]
    with pytest.raises(ts.ArgumentError, match="name them apart"):
        map_files(tmp_path / "*.ply", "validate", f"{tmp_path}/one.json")


def test_records_hold_small_values_and_files_the_arrays(files, tmp_path):
    one = [next(files.iterdir())]
    facts = map_files(one, "info", progress=False)[0]["value"]
    assert (facts["genus"], facts["area"] > 0) == (1, True)
    pickle.dumps(map_files(one, "bounding_sphere", progress=False))
    map_files(one, "adjacency", f"{tmp_path}/{{stem}}.npz", progress=False)
    tables = np.load(next(tmp_path.glob("*.npz")))
    assert (tables["tri_edges"] == ts.adjacency(ts.read(one[0])).tri_edges).all()


def test_the_package_alone_needs_no_dask(tmp_path):
    (tmp_path / "dask.py").write_text("raise ImportError('there is none')")
    program = ("import sys, tessary; assert 'dask' not in sys.modules\n"
               "try: import tessary.dask\nexcept ImportError as error: print(error)")
    environment = {**os.environ, "PYTHONPATH": f"{tmp_path}:{os.environ['PYTHONPATH']}"}
    said = subprocess.run([sys.executable, "-c", program], env=environment, capture_output=True, text=True, check=True)
    assert "needs the package dask (Debian: python3-dask" in said.stdout
