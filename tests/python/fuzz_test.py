"""Whatever arrays come in, what goes out is a result or an error of the package; nothing crashes."""

import numpy as np
import pytest
import tessary as ts
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp
from tessary import arrays

DTYPES = st.sampled_from(["f4", "f8", ">f4", "f2", "g", "i1", "i2", "i4", "i8", ">i4", "u1", "u4", "u8", "?", "c8",
                          "O", "U3", "S2", "M8[s]", "V4"])
SHAPES = hnp.array_shapes(min_dims=0, max_dims=3, min_side=0, max_side=5)
few = settings(max_examples=60, deadline=None, derandomize=True,
               suppress_health_check=[HealthCheck.too_slow, HealthCheck.filter_too_much])
REFUSED = (ts.ArrayError, ts.ArgumentError, ts.InvalidMesh)


@st.composite
def anything(draw, shapes=SHAPES, dtypes=DTYPES):
    """An array of any type, order, alignment and stride."""
    dtype = np.dtype(draw(dtypes))
    shape = draw(shapes)
    numbers = draw(hnp.arrays("f8", shape, elements=st.sampled_from(
        [0, 1, 2, 3, 4, 5, -1, 0.5, 1e30, 1e300, np.nan, np.inf, 2**31, 2**32])))
    with np.errstate(all="ignore"):
        if dtype.kind in "fiu?c":
            array = numbers.astype(dtype)
        else:
            array = np.zeros(shape, dtype)
    return draw(st.sampled_from([lambda a: a, reversed_view, transposed, misaligned, read_only, doubled]))(array)


def reversed_view(array):
    return array[::-1] if array.ndim else array


def transposed(array):
    return np.asfortranarray(array)


def misaligned(array):
    if array.dtype.hasobject:
        return array
    raw = np.zeros(array.nbytes + 1, np.uint8)[1:].view(array.dtype) if array.nbytes else array.reshape(-1)
    raw[...] = array.reshape(-1)
    return raw.reshape(array.shape)


def read_only(array):
    array.flags.writeable = False
    return array


def doubled(array):
    return np.repeat(array, 2, axis=0)[::2] if array.ndim else array


def three_columns(dtypes):
    return anything(st.integers(0, 6).map(lambda n: (n, 3)), st.sampled_from(dtypes))


def use(mesh):
    """Everything that can be done with a mesh."""
    for operation in (ts.triangulate, ts.quads, ts.adjacency, ts.dual, ts.bounding_sphere, ts.validate, ts.info,
                      lambda of: ts.sample(of, distance="30%"), lambda of: ts.quads(of, split_edges=True),
                      lambda of: ts.voxels(of, 1e29)):
        try:
            operation(mesh)
        except REFUSED:
            pass
    repr(mesh), mesh.properties, mesh.copy()


@few
@given(points=st.one_of(anything(), three_columns(["f4", "f8", "i4"])),
       faces=st.one_of(anything(), three_columns(["i4", "u4", "i8", "u1"])), check=st.booleans())
def test_meshes_of_anything(points, faces, check):
    try:
        mesh = ts.Mesh(points, faces, check=check)
    except REFUSED as error:
        assert str(error).strip()
        return
    use(mesh)


@few
@given(corners=anything(), offsets=anything(), values=anything(), indices=anything())
def test_corners_offsets_and_properties_of_anything(corners, offsets, values, indices):
    points = np.eye(5, 3)
    try:
        mesh = ts.Mesh(points, corners=corners, offsets=offsets, check=False)
    except REFUSED:
        mesh = ts.Mesh(points, [[0, 1, 2, 3], [3, 2, 4]])
    for component in ("point", "corner", "face", ""):
        try:
            mesh.properties["some"] = ts.Property(values, component)
            mesh.properties["other"] = ts.Property(values, component, indices)
        except REFUSED:
            pass
    use(mesh)


@few
@given(one=anything(), two=anything(), three=anything())
def test_plain_arrays_of_anything(one, two, three):
    for call in (lambda: arrays.edges(one), lambda: arrays.dual(one, 5), lambda: arrays.adjacency(one, 9),
                 lambda: arrays.triangulate(one, two), lambda: arrays.quads(one, two, 3, three),
                 lambda: arrays.quad_face_values(one, two), lambda: arrays.overlap(one, two),
                 lambda: arrays.bounding_sphere(one),
                 lambda: arrays.adjacency(one, dual=ts.Dual(two, three))):
        try:
            call()
        except REFUSED:
            pass


def index_arrays(length):
    return hnp.arrays("u4", length, elements=st.sampled_from([0, 1, 2, 3, 4, 5, 6, 2**31, 2**32 - 1]))


@few
@given(corners=index_arrays((4, 3)), edges=index_arrays((5, 2)), offsets=index_arrays(6), lists=index_arrays(12),
       creased=hnp.arrays("?", (4, 3)))
def test_kernels_with_indices_that_lead_nowhere(corners, edges, offsets, lists, creased):
    for call in (lambda: arrays.edges(corners), lambda: arrays.adjacency(corners, 7),
                 lambda: arrays.adjacency(corners, dual=ts.Dual(offsets, lists)),
                 lambda: arrays.quads(corners, edges, 7, creased), lambda: arrays.triangulate(lists, offsets),
                 lambda: arrays.quad_face_values(offsets, lists[:5])):
        try:
            call()
        except REFUSED:
            pass


def test_arrays_that_change_behind_a_mesh_are_noticed():
    corners, points = np.uint32([0, 1, 2]), np.eye(3, dtype=np.float32)
    mesh = ts.Mesh(points, corners=corners, offsets=np.uint32([0, 3]))
    indices = np.uint32([0, 0, 0])
    mesh.properties["some"] = ts.Property([1.5], "corner", indices)
    for array, value in ((corners, 4_000_000_000), (points, np.nan), (indices, 7)):
        kept = array.flat[0]
        array.flat[0] = value
        with pytest.raises(ts.InvalidMesh):
            mesh.triangulate()
        array.flat[0] = kept
        assert mesh.triangulate().face_count == 1


@few
@given(weights=anything(), ids=anything(), origins=anything())
def test_cuts_of_anything(weights, ids, origins):
    mesh = ts.Mesh(np.eye(3), [[0, 1, 2]])
    mesh.properties["heat"] = ts.Property([0.0, 1.0, 2.0], "point")
    quads = ts.quads(mesh)
    for call in (lambda: ts.interpolate_to_cut_mesh(mesh, weights, [0.5] * 3, ids, origins, quads),
                 lambda: ts.interpolate_to_cut_mesh(mesh, [0.3] * 3, [0.5] * 3, range(7), origins, quads),
                 lambda: ts.interpolate_to_cut_mesh(mesh, [0.3] * 3, [0.5] * 3, ids, [0, 4, 8], quads)):
        try:
            call()
        except REFUSED:
            pass


@few
@given(array=anything())
def test_solvers_of_anything(array):
    solver = ts.Multicollider()
    for name in ("contact_directions", "contact_offsets", "displacements", "free_displacements", "inverse_masses",
                 "pair_scales", "pair_lambdas"):
        try:
            setattr(solver, name, array)
            solver.prepare_pairs()
            solver.solve()
        except REFUSED:
            pass
