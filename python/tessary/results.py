"""What operations return."""

from __future__ import annotations

from typing import Any, NamedTuple, Optional, TypeVar

import numpy as np

from . import _convert, _tessary
from ._convert import Array
from .geometry import NONE, Geometry, Mesh, Parents

__all__ = ["Adjacency", "Dual", "Edges", "Sphere", "Voxels", "made"]

_G = TypeVar("_G", bound=Geometry)


def made(kind: type[_G], data: _tessary.Geometry, parents: Parents = Parents(), warnings: Any = ()) -> _G:
    """An object of this class without what its constructor does."""
    result = object.__new__(kind)
    Geometry.__init__(result, data, parents, tuple(warnings))
    return result


class Sphere(NamedTuple):
    """`center` (3,) float32 and `radius`, in the units of the points."""

    center: Array
    radius: float


class Adjacency(NamedTuple):
    """The fan triangles of a mesh and what lies beside them; all uint32, and `tessary.NONE` for none.

    Corner k of triangle t is 3 t + k, and its edge runs to the next corner of t.
    """

    #: (triangles, 3) points
    face_vertex: Array
    #: (edges, 2) corners: the smaller one, then the opposite one, or none on a boundary; no rows
    #: without an edge table
    tri_edges: Array
    #: (triangles, 3) triangles: what lies across the edge of each corner
    face_vertex_adjacent_tri: Array
    #: (points + 1,) where the corners of each point begin in dual_face_vertex
    dual_face_offset: Array
    #: (corners,) the corners of each point
    dual_face_vertex: Array
    #: (triangles,) the face of each triangle
    face: Array


class Edges(NamedTuple):
    """The edges of fan triangles."""

    #: (edges, 2) corners: the smaller one, then the opposite one, or `tessary.NONE` on a boundary
    corners: Array
    #: (triangles, 3) points
    face_vertex: Array

    @property
    def points(self) -> Array:
        """(edges, 2) points, from the first corner of each edge to the one that follows it."""
        first = self.corners[:, 0]
        following = np.where(first % 3 == 2, first - 2, first + 1)
        flat = self.face_vertex.reshape(-1)
        return np.stack([flat[first], flat[following]], axis=1)

    @property
    def is_boundary(self) -> Array:
        """(edges,) bool: whether one triangle alone has the edge."""
        return np.equal(self.corners[:, 1], NONE)


class Dual(NamedTuple):
    """The corners of each point: those of point p are corners[offsets[p]:offsets[p + 1]], in ascending order."""

    offsets: Array
    corners: Array

    def of(self, point: int) -> Array:
        point = range(len(self.offsets) - 1)[point]
        return self.corners[self.offsets[point]:self.offsets[point + 1]]


class Voxels(NamedTuple):
    """Cells of a grid that begins at the origin: (cells, 3) int32 in ascending order, and the length of their edges."""

    cells: Array
    cell_size: float

    def mesh(self, *, threads: Optional[int] = None) -> Mesh:
        """A closed cube of six quads for each cell. Raises ArgumentError where 32-bit indices do not suffice."""
        return made(Mesh, _tessary.cubes(self.cells, self.cell_size, _convert.threads(threads)))
