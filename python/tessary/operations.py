"""What is done with meshes. No operation changes what it is given."""

from __future__ import annotations

from collections.abc import Iterator
from typing import Any, Optional, Union

import numpy as np

from . import _convert, _tessary
from ._convert import Array
from ._errors import ArgumentError
from .files import Format, formats, read
from .geometry import Geometry, Mesh, Names, Parents, Progress, QuadMesh, Samples
from .report import Report, make_report
from .results import Adjacency, Dual, Edges, Sphere, Voxels, made

__all__ = ["Adjacency", "Dual", "Edges", "Format", "Sphere", "Voxels", "adjacency", "bounding_sphere", "demo_mesh",
           "dual", "edges", "formats", "info", "interpolate_to_cut_mesh", "overlap", "quads", "read", "sample",
           "triangulate", "validate", "voxels"]


def _carry(mesh: Mesh, properties: Names) -> Optional[list[str]]:
    if isinstance(properties, str):
        if properties == "all":
            return None
        properties = [] if properties == "none" else [properties]
    names = list(properties)
    known = _tessary.carried_names(mesh._data)
    for name in names:
        if name not in known:
            there = ", ".join(known) or "none"
            raise ArgumentError(f"properties: the mesh has no {name!r}; it has {there}", "properties")
    return names


def _mesh(value: Any, argument: str = "mesh") -> Mesh:
    if not isinstance(value, Mesh):
        raise ArgumentError(f"{argument}: a tessary.Mesh is wanted, not {type(value).__name__}", argument)
    return value


def demo_mesh(resolution: int = 64) -> Mesh:
    """A closed mesh that shows everything a mesh can carry: a lumpy torus with faces of 3 to 8 corners.

    resolution : 8 to 8192; hundreds of faces at 8, about a million at 512.

    >>> import tessary as ts
    >>> ts.demo_mesh(8)
    <Mesh 225 faces (3 to 8 corners), 256 points; color, material, face_id, texcoord (indexed), normal (indexed)>
    """
    return made(Mesh, _tessary.demo_mesh(_convert.integer(resolution, "resolution", 0, 2**32 - 1)))


def validate(mesh: Mesh, *, threads: Optional[int] = None, progress: Optional[Progress] = None) -> Report:
    """What is wrong with a mesh, or unusual about it: kinds, counts, first places, what to do.

    Returns a Report, which is true where there are no errors. Each kind of problem: docs/command-line.md, validate.

    >>> import tessary as ts
    >>> broken = ts.Mesh([[0, 0, 0], [1, 0, 0], [1, 1, 0]], [[0, 1, 7]], check=False)
    >>> report = ts.validate(broken)
    >>> bool(report), report.problems[0].code, report.problems[0].places[0].text
    (False, 'index-out-of-range', 'corner 2 of face 0, which names point 7 of 3')
    """
    return make_report(_tessary.validate(_mesh(mesh)._data, _convert.threads(threads), progress))


def info(mesh: Mesh, *, threads: Optional[int] = None, progress: Optional[Progress] = None) -> dict[str, Any]:
    """Facts about a mesh: edges, components, genus, area and more, by the names of `tessary info --json`.

    >>> import tessary as ts
    >>> facts = ts.info(ts.demo_mesh(8))
    >>> facts["edges"], facts["closed"], facts["genus"]
    (481, True, 1)
    """
    facts = _tessary.info(_mesh(mesh)._data, _convert.threads(threads), progress)
    points = mesh.points
    box = (points.min(axis=0), points.max(axis=0)) if len(points) else None
    return {"points": mesh.point_count, "corners": mesh.corner_count, "faces": mesh.face_count, **facts,
            "bounding_box": box}


def _splits(concave: str) -> bool:
    if concave not in ("fan", "split"):
        raise ArgumentError(f"concave: \"fan\" or \"split\" is wanted, not {concave!r}", "concave")
    return concave == "split"


def triangulate(mesh: Mesh, *, concave: str = "fan", properties: Names = "all", threads: Optional[int] = None,
                progress: Optional[Progress] = None) -> Mesh:
    """Splits every face into triangles: by default, a fan around its first corner.

    Parameters
    ----------
    mesh : Mesh
    concave : "fan" or "split"
        What becomes of concave faces which a fan leaves: a fan all the same, which a warning says, or triangles by
        clipping ears.
    properties : "all", "none", or names
        What is carried. Indexed properties, such as UVs, stay indexed and keep their seams.
    threads : int, optional
        At most so many, 1 to 1024. Results do not depend on it.
    progress : callable, optional
        Called with the percent that were done since the last call, about 40 times a second; the sum is 100. The
        `update` of a tqdm(total=100) fits. What it raises ends the work.

    Returns a Mesh of triangles with `parents.face` (of each triangle) and `parents.corner` (of each corner); points
    keep their order. Raises InvalidMesh, ArgumentError.

    >>> import tessary as ts
    >>> triangles = ts.triangulate(ts.demo_mesh(8))
    >>> triangles.faces.shape, triangles.parents.face[:4]
    ((512, 3), array([0, 0, 1, 1], dtype=uint32))
    """
    data, parents, warnings = _tessary.triangulate(_mesh(mesh)._data, _splits(concave), _carry(mesh, properties),
                                                   _convert.threads(threads), progress)
    return made(Mesh, data, Parents(*parents), warnings)


def quads(mesh: Mesh, *, crease_angle: Optional[float] = None, crease_property: str = "",
          edge_weight: float = 0.5, inner_weights: Any = (1, 1, 1), gap: float = 0, split_edges: bool = False,
          concave: str = "fan", properties: Names = "all", threads: Optional[int] = None,
          progress: Optional[Progress] = None) -> QuadMesh:
    """Splits the fan triangles of a mesh into three quads each, around an inner point.

    Parameters
    ----------
    crease_angle : degrees, 0 to 180
        Edges are creased at which the normals of two faces differ by more: they get two points, one for each end.
    crease_property : str
        Edges are creased that start at corners whose value is true, not 0, or a weight below the largest float.
    edge_weight : 0 to 1
        Edges are cut where their lower-numbered point has this share.
    inner_weights : three numbers
        Triangles are cut where their corners have shares in this ratio.
    gap : 0 to 1
        The two points of a creased edge move apart by this share of the edge. Needs creases.
    split_edges : bool
        Edges along which two faces run in one direction are cut once for each face; otherwise such a mesh is refused.
    concave, properties, threads, progress
        As for `triangulate`. Real values are blended, others picked.

    Returns a QuadMesh with `parents.face`, `parents.corner` and `parents.triangle` of each quad. Raises InvalidMesh,
    ArgumentError.

    >>> import tessary as ts
    >>> quads = ts.quads(ts.demo_mesh(8), crease_angle=30)
    >>> quads.faces.shape, quads.creased_edges > 0
    ((1536, 4), True)
    """
    angle = None if crease_angle is None else _convert.number(crease_angle, "crease_angle")
    try:
        data, parents, warnings, *figures = _tessary.quads(
            _mesh(mesh)._data, angle, crease_property, _convert.number(edge_weight, "edge_weight"),
            _ratio(inner_weights), _convert.number(gap, "gap"), split_edges, _splits(concave),
            _carry(mesh, properties), _convert.threads(threads), progress)
    except ArgumentError as error:
        raise _with_declaration(error, mesh, crease_property) from None
    result = made(QuadMesh, data, Parents(*parents), warnings)
    result.edge_count, result.creased_edges, result.split_edges = figures
    return result


def _with_declaration(error: ArgumentError, mesh: Mesh, name: str) -> ArgumentError:
    # A PLY file's list of each face is one of corners once the file's header says so.
    line = _tessary.corner_declaration(mesh._data, name) if error.argument == "crease_property" else ""
    advice = f" (the list becomes that behind the PLY header line \"{line}\")" if line else ""
    return ArgumentError(f"{error}{advice}", error.argument)


def _ratio(weights: Any) -> list[float]:
    shares = [_convert.number(weight, "inner_weights") for weight in weights]
    total = sum(shares)
    if len(shares) != 3 or min(shares) < 0 or not 0 < total < np.inf:
        raise ArgumentError("inner_weights: three numbers are wanted that are finite, not negative and not all 0",
                            "inner_weights")
    return [share / total for share in shares]


def sample(mesh: Mesh, *, distance: Union[float, str, None] = None, count: Optional[int] = None, seed: int = 0,
           concave: str = "fan", properties: Names = "all", threads: Optional[int] = None,
           progress: Optional[Progress] = None) -> Samples:
    """Scatters points over the surface, no two closer than a distance (Poisson-disk sampling).

    Parameters
    ----------
    distance : float or str
        In the mesh's units, or "2%" of the radius of the smallest sphere around the mesh.
    count : int
        In the place of a distance: the one for so many samples is looked for, until it is met within 2 %.
    seed : 0 to 4294967295
        Same mesh, same seed, same bits, on any machine and any number of threads.
    concave, properties, threads, progress
        As for `triangulate`. Real values of points and corners are blended, others picked from the nearest corner.

    Returns Samples. Raises ArgumentError, InvalidMesh, OutOfMemory.

    >>> import tessary as ts
    >>> samples = ts.sample(ts.demo_mesh(8), distance="10%", seed=7)
    >>> samples.properties["color"].values.shape == samples.points.shape
    True
    """
    if (distance is None) == (count is None):
        raise ArgumentError("distance: either a distance or a count is wanted", "distance")
    length, is_share = (0.0, False) if distance is None else _length(distance, "distance")
    data, parents, warnings, *figures = _tessary.sample(
        _mesh(mesh)._data, length, is_share, _count(count), _convert.integer(seed, "seed", 0, 2**32 - 1),
        _splits(concave), _carry(mesh, properties), _convert.threads(threads), progress)
    result = made(Samples, data, Parents(*parents), warnings)
    result.distance, result.area, result.rounding_share = figures
    result.seed = seed
    result.warnings += tuple(_doubts(result, count))
    return result


def _doubts(samples: Samples, count: Optional[int]) -> Iterator[str]:
    if count is not None and abs(len(samples) - count) * 50 > count:
        yield (f"{count} samples were asked for; the nearest found is {len(samples)}, at the distance "
               f"{samples.distance:.9g}")
    elif len(samples) == 0:
        yield "no sample at this distance (a smaller one gives some)"
    if samples.rounding_share > 0.01:
        yield (f"the mesh is so far from the origin that coordinates are rounded by "
               f"{min(100.0, 100 * samples.rounding_share):.0f} % of the distance (move it to the origin)")


def _length(given: Union[float, str], argument: str) -> tuple[float, bool]:
    is_share = isinstance(given, str) and given.endswith("%")
    number = given[:-1] if is_share and isinstance(given, str) else given
    length = _convert.number(number, argument)
    if not 0 < length < np.inf:
        raise ArgumentError(f"{argument}: a number above zero is wanted, or percent such as \"2%\", not {given!r}",
                            argument)
    return length / 100 if is_share else length, is_share


def _count(count: Optional[int]) -> int:
    return 0 if count is None else _convert.integer(count, "count", 1, 4_000_000_000)


def adjacency(mesh: Mesh, *, split_edges: bool = False, with_edges: bool = True, threads: Optional[int] = None,
              progress: Optional[Progress] = None) -> Adjacency:
    """Splits faces into fans of triangles and finds their edges, their neighbours and the corners of each point.

    Edges along which two faces run in one direction are in the edge table once for each face with
    `split_edges`; without it such a mesh raises InvalidMesh ("same-direction"). `with_edges=False` makes no edge
    table: neighbours need none. These run along their common edge in opposite directions; of several the
    one with the lowest corner counts.

    >>> import tessary as ts
    >>> square = ts.Mesh([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], [[0, 1, 2, 3]])
    >>> tables = ts.adjacency(square)
    >>> tables.face_vertex_adjacent_tri
    array([[4294967295, 4294967295,          1],
           [         0, 4294967295, 4294967295]], dtype=uint32)
    """
    corners, table, *others = _tessary.adjacency(_mesh(mesh)._data, split_edges, with_edges,
                                                 _convert.threads(threads), progress)
    return Adjacency(corners, np.empty((0, 2), np.uint32) if table is None else table, *others)


def edges(mesh: Mesh, *, split_edges: bool = False, threads: Optional[int] = None,
          progress: Optional[Progress] = None) -> Edges:
    """The edges of the fan triangles of a mesh, each once, in a defined order.

    `split_edges` and InvalidMesh are as of `adjacency`, which makes the table.

    >>> import tessary as ts
    >>> square = ts.Mesh([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], [[0, 1, 2, 3]])
    >>> edges = ts.edges(square)
    >>> edges.points.tolist(), edges.is_boundary.sum()
    ([[0, 1], [2, 0], [1, 2], [3, 0], [2, 3]], 4)
    """
    tables = adjacency(mesh, split_edges=split_edges, threads=threads, progress=progress)
    return Edges(tables.tri_edges, tables.face_vertex)


def dual(mesh: Mesh, *, threads: Optional[int] = None) -> Dual:
    """The corners of each point of a mesh, in ascending order.

    >>> import tessary as ts
    >>> square = ts.Mesh([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], [[0, 1, 2], [0, 2, 3]])
    >>> ts.dual(square).of(2)
    array([2, 4], dtype=uint32)
    """
    return Dual(*_tessary.array_dual(_mesh(mesh).corners, mesh.point_count, _convert.threads(threads)))


def bounding_sphere(points: Any, *, threads: Optional[int] = None,
                    progress: Optional[Progress] = None) -> Sphere:
    """The smallest sphere around points.

    points : a Mesh, a PointCloud, or (n, 3) numbers. All count, those that no face uses too; of none the sphere is the
    origin. A radius whose square overflows float32 is infinite.

    >>> import tessary as ts
    >>> ts.bounding_sphere([[-1, 0, 0], [1, 0, 0], [0, 0.5, 0]])
    Sphere(center=array([0., 0., 0.], dtype=float32), radius=1.0)
    """
    array = points.points if isinstance(points, Geometry) else _convert.reals(points, "points", (3,))
    return Sphere(*_tessary.bounding_sphere(array, _convert.threads(threads), progress))


def overlap(triangles: Any, boxes: Any, *, threads: Optional[int] = None,
            progress: Optional[Progress] = None) -> Array:
    """Whether solid triangles and axis-aligned boxes meet, pair by pair; touching counts.

    Parameters
    ----------
    triangles : (n, 3, 3) numbers, or (3, 3) for one against all boxes
        The points of each triangle.
    boxes : (n, 2, 3) numbers, or (2, 3) for one against all triangles
        The centre of each box, and half of its size along x, y and z.

    Returns (n,) bool. All arithmetic is float32 without tolerance. Raises ArrayError.

    >>> import tessary as ts
    >>> triangle = [[0, 0, 0], [1, 0, 0], [0, 1, 0]]
    >>> ts.overlap(triangle, [[[0, 0, 0], [0.1, 0.1, 0.1]], [[1, 1, 0], [0.1, 0.1, 0.1]]])
    array([ True, False])
    """
    return _tessary.overlap(_stack(triangles, "triangles", (3, 3)), _stack(boxes, "boxes", (2, 3)),
                            _convert.threads(threads), progress)


def _stack(value: Any, argument: str, shape: tuple[int, int]) -> Array:
    if np.ndim(value) == 2 and np.shape(value) == shape:
        value = np.asarray(value)[np.newaxis]
    return _convert.reals(value, argument, shape)


def voxels(mesh: Mesh, cell_size: Union[float, str], *, threads: Optional[int] = None,
           progress: Optional[Progress] = None) -> Voxels:
    """The cells of a grid of cubes that some face touches. Cell (x, y, z) reaches from x to x + 1 times the cell size.

    cell_size : float or str
        In the mesh's units, or "5%" of the radius of the smallest sphere around the mesh.

    Returns Voxels. Raises ArgumentError where the cells are too small for the mesh, InvalidMesh.

    >>> import tessary as ts
    >>> square = ts.Mesh([[0.1, 0.1, 0.5], [1.9, 0.1, 0.5], [1.9, 0.9, 0.5], [0.1, 0.9, 0.5]], [[0, 1, 2, 3]])
    >>> ts.voxels(square, 1).cells.tolist()
    [[0, 0, 0], [1, 0, 0]]
    """
    size, is_share = _length(cell_size, "cell_size")
    if is_share:
        size *= bounding_sphere(mesh, threads=threads).radius
    if not 1e-30 <= size <= 1e30:
        raise ArgumentError(f"cell_size: a number from 1e-30 to 1e30 is wanted, not {size}", "cell_size")
    return Voxels(_tessary.voxels(_mesh(mesh)._data, size, _convert.threads(threads), progress), size)


def interpolate_to_cut_mesh(source: Mesh, triangle_weights: Any, edge_weights: Any, cut_point_ids: Any,
                            cut_point_origins: Any, target: Mesh, *, threads: Optional[int] = None,
                            progress: Optional[Progress] = None) -> Mesh:
    """Carries the properties of a mesh over to the quads that its fan triangles are cut into.

    `quads` does all of it; this is for cuts of your own. Triangle j becomes the target's quads 3 j to 3 j + 2.

    Parameters
    ----------
    triangle_weights, edge_weights : (3 triangles,) numbers
        Of each corner: its weight inside the triangle, and on the edge that leaves it.
    cut_point_ids : (points of target,) integers
        An entry of cut_point_origins for each point of the target.
    cut_point_origins : integers
        4 c + kind, of corner c of the triangles: 0 at its point, 1 on the edge that leaves it, 2 inside its triangle,
        3 on the edge that arrives at it.
    target : Mesh
        Three quads for each triangle, with points.

    Returns the target with the source's properties. Raises ArrayError for arrays of other lengths and entries that name
    nothing, InvalidMesh.

    >>> import numpy as np
    >>> import tessary as ts
    >>> mesh = ts.Mesh([[0, 0, 0], [1, 0, 0], [0, 1, 0]], [[0, 1, 2]])
    >>> mesh.properties["heat"] = ts.Property(np.float32([0, 1, 2]), "point")
    >>> quads = ts.quads(mesh, properties="none")
    >>> origins = [0, 4, 8, 1, 9, 5, 2]
    >>> heat = ts.interpolate_to_cut_mesh(mesh, [1 / 3] * 3, [0.5] * 3, range(7), origins, quads).properties["heat"]
    >>> heat.values
    array([0. , 1. , 2. , 0.5, 1. , 1.5, 1. ], dtype=float32)
    """
    data = _tessary.interpolate_to_cut_mesh(
        _mesh(source, "source")._data, _convert.reals(triangle_weights, "triangle_weights", ()),
        _convert.reals(edge_weights, "edge_weights", ()), _convert.indices(cut_point_ids, "cut_point_ids"),
        _convert.indices(cut_point_origins, "cut_point_origins"), _mesh(target, "target")._data,
        _convert.threads(threads), progress)
    return made(Mesh, data)
