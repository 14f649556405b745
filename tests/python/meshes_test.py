"""Meshes of NumPy arrays, their properties, files and pickles."""

import copy
import gc
import io
import pickle

import numpy as np
import pytest
import tessary as ts

SQUARE = np.float32([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]])


def address(array):
    return array.__array_interface__["data"][0]


def test_arrays_that_fit_are_used_in_place():
    corners, offsets = np.uint32([0, 1, 2, 3]), np.int32([0, 4])
    mesh = ts.Mesh(SQUARE, corners=corners, offsets=offsets)
    values = np.arange(8.0).reshape(4, 2)
    mesh.properties["place"] = ts.Property(values, "point")
    pairs = [(mesh.points, SQUARE), (mesh.corners, corners), (mesh.offsets, offsets),
             (mesh.properties["place"].values, values),
             (mesh.triangulate().properties["place"].values, values)]
    assert [address(held) == address(given) for held, given in pairs] == [True] * 5
    assert not any(held.flags.writeable for held, _ in pairs)


def test_arrays_outlive_their_meshes_and_owners():
    points = SQUARE.copy()
    shown = ts.Mesh(points, [[0, 1, 2, 3]]).triangulate().points
    del points
    gc.collect()
    assert shown.tolist() == SQUARE.tolist()


@pytest.mark.parametrize("faces, corners, offsets", [
    ([[0, 1, 2], [0, 2, 3]], [0, 1, 2, 0, 2, 3], [0, 3, 6]),
    (np.int64([[0, 1, 2, 3]]), [0, 1, 2, 3], [0, 4]),
    ([[0, 1, 2, 3], (0, 2, 1)], [0, 1, 2, 3, 0, 2, 1], [0, 4, 7]),
    (np.zeros((0, 3), np.uint8), [], [0]),
    ([], [], [0]),
])
def test_faces(faces, corners, offsets):
    mesh = ts.Mesh(SQUARE, faces)
    assert mesh.corners.tolist() == corners and mesh.offsets.tolist() == offsets


def test_pickles_and_copies_hold_everything():
    mesh = ts.demo_mesh(8)
    buffers = []
    small = pickle.dumps(mesh, protocol=5, buffer_callback=buffers.append)
    back = pickle.loads(small, buffers=buffers)
    assert len(small) < 20000 and address(back.points) == address(mesh.points)
    for other in (back, pickle.loads(pickle.dumps(mesh)), copy.copy(mesh), copy.deepcopy(mesh)):
        assert repr(other) == repr(mesh)
        for name, property in mesh.properties.items():
            assert (other.properties[name].per_element() == property.per_element()).all()
    samples = pickle.loads(pickle.dumps(mesh.sample(count=100)))
    assert isinstance(samples, ts.Samples) and samples.parents.face.shape == (len(samples),)


def test_files_keep_what_they_can(tmp_path):
    mesh = ts.demo_mesh(8)
    assert ["face_id" in warning for warning in mesh.save(tmp_path / "demo.obj")] == [True]
    again = ts.read(tmp_path / "demo.obj")
    assert (again.corners == mesh.corners).all()
    assert again.properties["texcoord"].indices.shape == (962,)
    with pytest.raises(ts.FileError, match="overwrite=True") as caught:
        mesh.save(tmp_path / "demo.obj")
    assert caught.value.code == "exists"
    file = io.BytesIO()
    mesh.save(file, "ply")
    assert ts.read(file.getvalue()).face_count == 225


def test_errors_of_files_say_where():
    with pytest.raises(ts.FileError, match="content:2: ") as caught:
        ts.read(b"v 0 0 0\nf 1 2 9\n")
    assert (caught.value.code, caught.value.line) == ("malformed", 2)
    with pytest.raises(ts.FileError) as caught:
        ts.read("there is none.obj")
    again = pickle.loads(pickle.dumps(caught.value))
    assert (again.code, again.file, str(again)) == ("not-found", "there is none.obj", str(caught.value))
