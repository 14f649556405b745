"""The kernels on plain arrays, for those who want no mesh object.

Indices are uint32 and used in place; other integers are converted with checks. What is returned is new and can be
written. `tessary.NONE` stands for none.
"""

from __future__ import annotations

from typing import Any, Optional

import numpy as np

from . import _convert, _tessary
from ._convert import Array
from .operations import Dual, bounding_sphere, overlap

__all__ = ["adjacency", "bounding_sphere", "dual", "edges", "overlap", "quad_face_values", "quads", "triangulate"]


def _triangles(corners: Any) -> Array:
    return _convert.indices(corners, "corners", (3,)).reshape(-1)


def _point_count(point_count: Optional[int]) -> Optional[int]:
    return None if point_count is None else _convert.integer(point_count, "point_count", 0, 2**32 - 1)


def triangulate(corners: Any, offsets: Any, *, threads: Optional[int] = None) -> Array:
    """The fan triangles of faces: (triangles, 3) points.

    corners : (c,) the points of the faces, one face after the other
    offsets : (faces + 1,) where they begin, and the end

    >>> from tessary import arrays
    >>> arrays.triangulate([0, 1, 2, 3, 2, 1, 4], [0, 4, 7]).tolist()
    [[0, 1, 2], [0, 2, 3], [2, 1, 4]]
    """
    return _tessary.array_triangulate(_convert.indices(offsets, "offsets"), _convert.indices(corners, "corners"),
                                      _convert.threads(threads))


def edges(corners: Any, *, threads: Optional[int] = None) -> Array:
    """The edges of triangles: (edges, 2) corners, the smaller one and the opposite one, or none on a boundary.

    corners : (triangles, 3) points; corner k of triangle t is 3 t + k

    Raises InvalidMesh where triangles run along an edge in one direction; the kernel then also says so on standard
    error.

    >>> from tessary import arrays
    >>> arrays.edges([[0, 1, 2], [2, 1, 3]])[2]
    array([1, 3], dtype=uint32)
    """
    return _tessary.array_edges(_triangles(corners), _convert.threads(threads))


def dual(corners: Any, point_count: Optional[int] = None, *, threads: Optional[int] = None) -> Dual:
    """The corners of each point.

    corners : integers of any shape, the points of corners
    point_count : how many points there are; without it the largest and 1

    >>> from tessary import arrays
    >>> arrays.dual([[0, 1, 2], [2, 1, 3]]).of(1)
    array([1, 4], dtype=uint32)
    """
    flat = _convert.indices(np.asarray(corners).reshape(-1), "corners")
    return Dual(*_tessary.array_dual(flat, _point_count(point_count), _convert.threads(threads)))


def adjacency(corners: Any, point_count: Optional[int] = None, *, dual: Optional[Dual] = None,
              threads: Optional[int] = None) -> Array:
    """The triangle on the other side of each edge: (triangles, 3), or none.

    corners : (triangles, 3) points
    dual : what `dual` makes of them, where it is there already

    >>> from tessary import arrays
    >>> arrays.adjacency([[0, 1, 2], [2, 1, 3]])[0, 1]
    1
    """
    flat = _triangles(corners)
    if dual is None:
        return _tessary.array_adjacency(flat, _point_count(point_count), _convert.threads(threads))
    offsets, lists = dual
    return _tessary.array_adjacency_by_dual(flat, _convert.indices(offsets, "dual_offsets"),
                                            _convert.indices(lists, "dual_corners"), _convert.threads(threads))


def quads(corners: Any, edges: Any, first_index: int, creased: Any = None, *,
          threads: Optional[int] = None) -> tuple[Array, int]:
    """Three quads for each triangle, as points, and the next unused point.

    corners : (triangles, 3) points
    edges : (edges, 2), what `edges` makes of them
    first_index : of the new points, usually the number of points
    creased : (triangles, 3) bool, whether the edge that starts at a corner is creased

    >>> from tessary import arrays
    >>> faces, next_index = arrays.quads([[0, 1, 2]], arrays.edges([[0, 1, 2]]), 3)
    >>> faces.tolist(), next_index
    ([[0, 3, 6, 4], [1, 5, 6, 3], [2, 4, 6, 5]], 7)
    """
    flat = _triangles(corners)
    flags = np.zeros(flat.shape, np.bool_) if creased is None else np.asarray(creased).reshape(-1)
    return _tessary.array_quads(flat, _convert.indices(edges, "edges", (2,)).reshape(-1),
                                _convert.flags(flags, "creased"),
                                _convert.integer(first_index, "first_index", 0, 2**32 - 1),
                                _convert.threads(threads))


def quad_face_values(offsets: Any, values: Any, *, threads: Optional[int] = None) -> Array:
    """Values of faces repeated on the quads that `quads` makes of their fan triangles, three for each triangle.

    >>> from tessary import arrays
    >>> arrays.quad_face_values([0, 3, 7], [5, 8])
    array([5, 5, 5, 8, 8, 8, 8, 8, 8], dtype=uint32)
    """
    return _tessary.array_quad_face_values(_convert.indices(offsets, "offsets"), _convert.indices(values, "values"),
                                           _convert.threads(threads))
