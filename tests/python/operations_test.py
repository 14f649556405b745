"""Every option of the operations, their maps to the source, and what they refuse in which words."""

import sys
import types

import numpy as np
import pytest
import tessary as ts

DEMO = ts.demo_mesh(8)
SQUARE = ts.Mesh([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], [[0, 1, 2, 3]])


def twisted():
    """Two triangles that run along an edge in one direction."""
    return ts.Mesh(np.eye(4, 3), [[0, 1, 2], [0, 1, 3]])


def test_parents_lead_back_to_the_source():
    triangles = DEMO.triangulate()
    assert (triangles.corners == DEMO.corners[triangles.parents.corner]).all()
    assert (np.bincount(triangles.parents.face) == DEMO.face_sizes - 2).all()
    assert triangles.properties["face_id"].values.tolist() == \
        DEMO.properties["face_id"].values[triangles.parents.face].tolist()
    quads = DEMO.quads()
    assert (quads.faces[:, 0] == DEMO.corners[quads.parents.corner]).all()
    samples = DEMO.sample(distance="5%", seed=1)
    weights, corners = samples.properties["weight"].values, triangles.faces[samples.parents.triangle]
    assert np.allclose((DEMO.points[corners] * weights[:, :, None]).sum(1), samples.points, atol=1e-6)
    assert (triangles.parents.face[samples.parents.triangle] == samples.parents.face).all()


def test_properties_are_chosen_by_name():
    assert list(DEMO.triangulate(properties="none").properties) == []
    assert list(DEMO.triangulate(properties=["color"]).properties) == ["color"]
    assert "texcoord" in DEMO.sample(count=50, properties="texcoord").properties
    with pytest.raises(ts.ArgumentError, match="^properties: the mesh has no 'uv'; it has color, ") as caught:
        DEMO.quads(properties=["uv"])
    assert caught.value.argument == "properties"


def test_quads_follow_their_options():
    DEMO.copy().properties["sharp"] = ts.Property(np.arange(962) % 2 == 0, "corner")
    mesh = ts.Mesh(DEMO.points, corners=DEMO.corners, offsets=DEMO.offsets)
    mesh.properties["sharp"] = ts.Property(np.ones(962, bool), "corner")
    by_angle, by_property = mesh.quads(crease_angle=30), mesh.quads(crease_property="sharp", gap=0.1)
    assert 0 < by_angle.creased_edges < by_property.creased_edges <= by_property.edge_count
    assert by_property.point_count > by_angle.point_count
    moved = SQUARE.quads(edge_weight=0.25, inner_weights=(2, 1, 1))
    assert moved.points[SQUARE.point_count:][0].tolist() == [0.75, 0, 0]
    for options in ({"gap": 2}, {"edge_weight": np.nan}, {"inner_weights": (1, 2)}, {"crease_property": "nothing"},
                    {"crease_angle": "steep"}):
        with pytest.raises(ts.ArgumentError) as caught:
            mesh.quads(**options)
        assert caught.value.argument in options and str(caught.value).startswith(caught.value.argument)


def test_meshes_without_an_edge_table_are_told_where():
    for operation in (ts.adjacency, ts.edges, ts.quads):
        with pytest.raises(ts.InvalidMesh, match="split_edges=True") as caught:
            operation(twisted())
        assert caught.value.report.find("same-direction").count == 1
    assert twisted().quads(split_edges=True).split_edges == 1
    assert len(twisted().edges(split_edges=True).corners) == len(twisted().adjacency(split_edges=True).tri_edges) > 0
    assert ts.adjacency(twisted(), with_edges=False).tri_edges.shape == (0, 2)
    assert twisted().validate().valid and twisted().validate().warnings[0].code == "same-direction"
    with pytest.raises(ts.InvalidMesh):
        ts.arrays.edges(twisted().faces)


def test_samples_by_distance_and_by_count():
    by_count = DEMO.sample(count=500, seed=2)
    assert 450 < by_count.point_count < 550
    assert by_count.smallest_distance() >= by_count.distance * 0.999
    assert abs(by_count.area - DEMO.info()["area"]) < 0.5
    far = ts.Mesh(SQUARE.points + np.float32(1e6), [[0, 1, 2, 3]]).sample(distance=0.5)
    assert "rounded by 12 % of the distance" in far.warnings[-1]
    assert SQUARE.sample(distance=100).warnings[-1].startswith("no sample")
    for options in ({}, {"distance": 1, "count": 1}, {"distance": -1}, {"distance": "two%"}, {"distance": 1e-30},
                    {"distance": 1e39}, {"count": 0}, {"count": 1.5}, {"count": 10, "seed": -1}):
        with pytest.raises(ts.ArgumentError):
            DEMO.sample(**options)


def test_boxes_are_broadcast():
    triangle, boxes = np.float64([[0, 0, 0], [1, 0, 0], [0, 1, 0]]), np.zeros((3, 2, 3))
    boxes[:, 0, 0], boxes[:, 1] = [0, 1.05, 3], 0.1
    assert ts.overlap(triangle, boxes).tolist() == [True, True, False]
    assert ts.overlap(np.stack([triangle, triangle + 5]), boxes[0]).tolist() == [True, False]
    assert ts.overlap(np.zeros((0, 3, 3)), boxes[0]).shape == (0,)
    with pytest.raises(ts.ArrayError, match="3 boxes, where there are 2 triangles"):
        ts.overlap(np.zeros((2, 3, 3)), boxes)


def test_voxels_become_cubes():
    cells = DEMO.voxels(0.25)
    assert DEMO.voxels("12.5%").cell_size == 0.125 * DEMO.bounding_sphere().radius
    cubes = cells.mesh()
    assert cubes.face_count == 6 * len(cells.cells) and cubes.validate().valid
    with pytest.raises(ts.ArgumentError, match="^cell_size: "):
        DEMO.voxels(0)


@pytest.mark.parametrize("call, words", [
    (lambda: ts.Mesh(np.eye(3), [[0, 1, 2.5]]), "faces: indices, whole numbers.*not float64"),
    (lambda: ts.Mesh(np.eye(3), np.array([[0, 1, -1]])), r"faces: entry 2 is -1; it has to be 0 to 4294967295"),
    (lambda: ts.Mesh(np.eye(3), [[0, 1, 2**32]]), "faces: entry 2 is 4294967296"),
    (lambda: ts.Mesh([[1e300, 0, 0]], []), r"points: entry 0 is 1e\+300; the largest float32 is"),
    (lambda: ts.Mesh(np.eye(3) + 1j, []), r"points: .*not complex numbers \(complex128\)"),
    (lambda: ts.Mesh(np.eye(3)[:, :2], []), r"points: numbers of shape \(n, 3\) are wanted, not shape \(3, 2\)"),
    (lambda: ts.Mesh(np.eye(3), 7), "faces: an array of shape .* is wanted, not 7"),
    (lambda: ts.Mesh(np.eye(3), np.ma.masked_equal([[0, 1, 2]], 1)), "faces: .*masked"),
    (lambda: ts.arrays.triangulate([0, 1, 2], [0, 5]), "offsets: entry 1 is 5, where there are 3 corners"),
    (lambda: ts.arrays.quads([[0, 1, 2]], [[0, 0]], 3), "edges: entry 1 is 0, a corner that is named twice"),
    (lambda: ts.Multicollider().ignore(0, 0, 1), "there is no pair"),
])
def test_what_came_and_what_is_wanted(call, words):
    with pytest.raises((ts.ArrayError, IndexError), match=words):
        call()


def test_properties_are_converted_or_refused():
    mesh = SQUARE.copy()
    for values, kept in ((np.float16([1, 2, 3, 4]), np.float32), (np.arange(12).reshape(4, 3), np.int32),
                         (np.arange(8, dtype=">i8")[::2], np.int64), (["a", "b", "c", "ä"], np.str_),
                         (np.zeros((4, 4, 4)), np.float64), (np.uint8([[1, 2, 3, 4]] * 4), np.uint8)):
        mesh.properties["some"] = ts.Property(values, "point")
        assert np.issubdtype(mesh.properties["some"].values.dtype, kept)
        assert mesh.properties["some"].values.tolist() == np.asarray(values).tolist()
    assert list(SQUARE.properties) == []
    for wrong in (np.zeros((4, 5)), np.full((4, 2), 2**40), [b"a"] * 4, np.zeros(3), [1j] * 4):
        with pytest.raises(ts.ArrayError):
            mesh.properties["some"] = ts.Property(wrong, "point")
    with pytest.raises(ts.ArgumentError, match="4 values do not tell which elements"):
        mesh.properties["other"] = [1, 2, 3, 4]
    del mesh.properties["some"]
    with pytest.raises(KeyError):
        del mesh.properties["some"]


def test_indices_go_with_their_values():
    mesh = SQUARE.copy()
    mesh.properties["uv"] = ts.Property([[0.5, 1.0], [2, 3]], "corner", [0, 1, ts.NONE, 1], "none", default=[9, 9])
    uv = mesh.triangulate().properties["uv"]
    assert (uv.interpolation, uv.default.tolist()) == ("none", [9, 9])
    assert mesh.properties["uv"].per_element().tolist() == [[0.5, 1], [2, 3], [9, 9], [2, 3]]
    mesh.properties["uv"] = ts.Property([1.0, 2, 3, 4], "corner")
    assert mesh.properties["uv"].indices is None


def test_trimesh_is_spoken(monkeypatch):
    """A stand-in with the constructor and the attributes that trimesh documents."""
    class Trimesh:
        def __init__(self, vertices, faces, process, vertex_attributes, face_attributes):
            self.vertices, self.faces = np.asarray(vertices, float), np.asarray(faces, np.int64)
            self.vertex_attributes, self.face_attributes = vertex_attributes, face_attributes
            assert process is False
    monkeypatch.setitem(sys.modules, "trimesh", types.SimpleNamespace(Trimesh=Trimesh))
    again = ts.from_trimesh(DEMO.to_trimesh())
    assert again.face_count == 512 and (again.points == DEMO.points).all()
    assert sorted(again.properties) == ["color", "face_id", "material"]


def test_packages_that_are_missing_are_named(monkeypatch):
    for name in ("trimesh", "open3d", "pyvista"):
        monkeypatch.setitem(sys.modules, name, None)
        with pytest.raises(ts.Error, match=f"the package {name} is not installed"):
            getattr(DEMO, f"to_{name}")()


def test_pictures_show_meshes_and_points():
    axes = DEMO.plot(color="material", edges=False)
    polygons = axes.collections[0]
    assert len(polygons.get_array()) == DEMO.face_count
    DEMO.sample(count=50).plot(color="weight")
    with pytest.raises(ts.ArgumentError, match="^color: there is no property 'uv'"):
        DEMO.plot(color="uv")


def test_pages_show_meshes_in_notebooks_and_files(tmp_path):
    path, samples = tmp_path / "page.html", DEMO.sample(count=50)
    assert repr(ts.view(DEMO, samples, path)) == "<Page mesh, samples>"
    assert b"samples" in path.read_bytes()
    with pytest.raises(ts.FileError, match="page.html"):
        ts.view(DEMO, path)
    hostile = ts.view(DEMO, names=("</script><b>\u2603",)).html()
    assert hostile.isascii() and "</script><b>" not in hostile
    assert "<iframe srcdoc=" in DEMO._repr_html_() and "225" in DEMO._repr_html_()
    for wrong, argument in ((lambda: ts.view(DEMO, 5), "mesh"), (lambda: ts.view(DEMO, names=("a", "b")), "names")):
        with pytest.raises(ts.ArgumentError) as caught:
            wrong()
        assert caught.value.argument == argument


def test_concave_faces_are_told_and_split():
    dart = ts.Mesh([[0, 0, 0], [4, 2, 0], [0, 4, 0], [2, 2, 0]], [[0, 1, 2, 3]])
    for operation, options in ((ts.triangulate, {}), (ts.quads, {}), (ts.sample, {"distance": 0.5})):
        assert 'concave="split"' in operation(dart, **options).warnings[0]
        split = operation(dart, concave="split", **options)
        assert split.warnings == () and (split.parents.face == 0).all()
    assert (ts.triangulate(dart, concave="split").faces == [[3, 0, 1], [3, 1, 2]]).all()
    assert ts.sample(dart, distance=0.5).area == 12 and ts.sample(dart, distance=0.5, concave="split").area == 4
    with pytest.raises(ts.ArgumentError, match="concave: .*'ears'"):
        ts.triangulate(dart, concave="ears")


def test_concave_faces_are_looked_for_again_where_points_may_have_moved():
    points = np.array([[0, 0, 0], [4, 2, 0], [0, 4, 0], [2, 2, 0]], np.float32)
    borrowing = ts.Mesh(points, [[0, 1, 2, 3]])
    assert borrowing.triangulate().warnings
    points[3, 0] = -2
    assert not borrowing.triangulate().warnings
