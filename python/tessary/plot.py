"""Pictures of meshes by matplotlib, which is imported when the first one is made."""

from __future__ import annotations

import importlib
from typing import Any, Optional

import numpy as np

from ._convert import Array
from ._errors import ArgumentError, Error
from .geometry import Geometry, Mesh

__all__ = ["plot"]


def plot(geometry: Geometry, *, color: Optional[str] = None, edges: bool = True, ax: Any = None,
         most_faces: int = 20000) -> Any:
    """Draws a mesh or a point cloud in three dimensions.

    Parameters
    ----------
    color : str, optional
        A property. Numbers are mapped to colours, rows of three or four are colours; of corners, faces get the mean.
    edges : bool
        Whether the edges of faces are drawn.
    ax : optional
        matplotlib axes with projection="3d"; new ones without.
    most_faces : int
        matplotlib is slow: of more faces or points every second (third, ...) is drawn.

    Returns the axes. Raises Error where matplotlib is not installed, ArgumentError for a color that there is not.

    >>> import tessary as ts
    >>> axes = ts.demo_mesh(8).plot(color="color")
    """
    if ax is None:
        ax = _axes()
    ax.set_box_aspect(np.maximum(np.ptp(geometry.points, axis=0), 1e-9) if geometry.point_count else (1, 1, 1))
    if isinstance(geometry, Mesh) and geometry.face_count:
        _draw_faces(ax, geometry, color, edges, most_faces)
    else:
        _draw_points(ax, geometry, color, most_faces)
    return ax


def _axes() -> Any:
    try:
        pyplot = importlib.import_module("matplotlib.pyplot")
    except ImportError as error:
        raise Error("the package matplotlib is not installed, and pictures need it") from error
    return pyplot.figure().add_subplot(projection="3d")


def _draw_faces(ax: Any, mesh: Mesh, color: Optional[str], edges: bool, most_faces: int) -> None:
    art3d = importlib.import_module("mpl_toolkits.mplot3d.art3d")
    step = -(-mesh.face_count // most_faces)
    shown = np.arange(0, mesh.face_count, step)
    points, corners, offsets = mesh.points, mesh.corners, mesh.offsets
    polygons = [points[corners[offsets[face]:offsets[face + 1]]] for face in shown]
    collection = art3d.Poly3DCollection(polygons, edgecolors="k" if edges else "none", linewidths=0.2)
    _paint(collection, None if color is None else _of_faces(mesh, color)[shown])
    ax.add_collection3d(collection)
    ax.auto_scale_xyz(*points.T)


def _draw_points(ax: Any, geometry: Geometry, color: Optional[str], most: int) -> None:
    step = max(1, -(-geometry.point_count // most))
    shown = geometry.points[::step]
    collection = ax.scatter(*shown.T, s=2)
    if color is not None:
        _paint(collection, _numbers(geometry, color)[::step])


def _numbers(geometry: Geometry, name: str) -> Array:
    if name not in geometry.properties:
        raise ArgumentError(f"color: there is no property {name!r}; there are "
                            f"{', '.join(geometry.properties) or 'none'}", "color")
    values = geometry.properties[name].per_element()
    if values.dtype.kind in "UO":
        values = np.unique(values, return_inverse=True)[1]
    scale = 255.0 if values.dtype == np.uint8 and values.ndim == 2 else 1.0
    numbers = values.astype(np.float64) / scale
    return numbers if numbers.ndim == 1 or numbers.shape[1:] in ((3,), (4,)) else numbers.reshape(len(numbers), -1)[:, 0]


def _of_faces(mesh: Mesh, name: str) -> Array:
    values = _numbers(mesh, name)
    component = mesh.properties[name].component
    if component == "face":
        return values
    at_corners = values if component == "corner" else values[mesh.corners]
    sizes = np.maximum(mesh.face_sizes, 1)
    sums = np.add.reduceat(at_corners, mesh.offsets[:-1], axis=0)
    return np.divide(sums, sizes if sums.ndim == 1 else sizes[:, np.newaxis])


def _paint(collection: Any, values: Optional[Array]) -> None:
    if values is None:
        return
    if values.ndim == 1:
        collection.set_array(values)
    else:
        low, high = min(0.0, float(values.min(initial=0))), max(1.0, float(values.max(initial=1)))
        collection.set_facecolor((values - low) / (high - low))
