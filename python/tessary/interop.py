"""Meshes of other packages, where those are installed: they are imported when they are first asked for."""

from __future__ import annotations

import importlib
from typing import Any

import numpy as np

from ._errors import Error
from .geometry import Mesh

__all__ = ["from_open3d", "from_pyvista", "from_trimesh", "to_open3d", "to_pyvista", "to_trimesh"]


def _package(name: str) -> Any:
    try:
        return importlib.import_module(name)
    except ImportError as error:
        raise Error(f"the package {name} is not installed, and this needs it") from error


def _triangles(mesh: Mesh) -> Mesh:
    sizes = mesh.face_sizes
    return mesh if (sizes == 3).all() else mesh.triangulate()


def _plain_properties(mesh: Mesh, component: str) -> dict[str, Any]:
    """The properties of a component that need no indices, by name."""
    found = ((name, mesh.properties[name]) for name in mesh.properties)
    return {name: property.values for name, property in found
            if property.component == component and property.indices is None}


def to_trimesh(mesh: Mesh) -> Any:
    """A trimesh.Trimesh of the fan triangles, with values of points and faces as its attributes."""
    trimesh = _package("trimesh")
    triangles = _triangles(mesh)
    return trimesh.Trimesh(vertices=triangles.points, faces=triangles.faces, process=False,
                           vertex_attributes=_plain_properties(triangles, "point"),
                           face_attributes=_plain_properties(triangles, "face"))


def from_trimesh(mesh: Any, *, check: bool = True) -> Mesh:
    """A mesh of a trimesh.Trimesh, with its attributes of points and faces."""
    made = Mesh(np.asarray(mesh.vertices), np.asarray(mesh.faces), check=check)
    _take(made, mesh.vertex_attributes, "point")
    _take(made, mesh.face_attributes, "face")
    return made


def _take(mesh: Mesh, attributes: Any, component: str) -> None:
    from .geometry import Property
    for name in attributes.keys():
        mesh.properties[name] = Property(np.asarray(attributes[name]), component)


def to_open3d(mesh: Mesh) -> Any:
    """An open3d.t.geometry.TriangleMesh of the fan triangles, with values of points and triangles."""
    open3d = _package("open3d")
    triangles = _triangles(mesh)
    tensor = open3d.core.Tensor
    made = open3d.t.geometry.TriangleMesh(tensor(np.array(triangles.points)),
                                          tensor(triangles.faces.astype(np.int32)))
    for component, attributes in (("point", made.vertex), ("face", made.triangle)):
        for name, values in _plain_properties(triangles, component).items():
            if values.dtype.kind in "fiub" and name not in ("positions", "indices"):
                attributes[name] = tensor(np.array(values))
    return made


def from_open3d(mesh: Any, *, check: bool = True) -> Mesh:
    """A mesh of an open3d.t.geometry.TriangleMesh, with its attributes, or of an open3d.geometry.TriangleMesh."""
    if not hasattr(mesh, "vertex"):
        return Mesh(np.asarray(mesh.vertices), np.asarray(mesh.triangles), check=check)
    from .geometry import Property
    made = Mesh(mesh.vertex.positions.numpy(), mesh.triangle.indices.numpy(), check=check)
    for component, attributes in (("point", mesh.vertex), ("face", mesh.triangle)):
        for name, values in attributes.items():
            if name not in ("positions", "indices"):
                made.properties[name] = Property(values.numpy(), component)
    return made


def to_pyvista(mesh: Mesh) -> Any:
    """A pyvista.PolyData of the same polygons, with values of points and faces."""
    pyvista = _package("pyvista")
    sizes = mesh.face_sizes.astype(np.int64)
    made = pyvista.PolyData(np.array(mesh.points), np.insert(mesh.corners.astype(np.int64), mesh.offsets[:-1], sizes))
    for component, attributes in (("point", made.point_data), ("face", made.cell_data)):
        for name, values in _plain_properties(mesh, component).items():
            attributes[name] = values
    return made


def from_pyvista(mesh: Any, *, check: bool = True) -> Mesh:
    """A mesh of a pyvista.PolyData, with its values of points and faces."""
    from .geometry import Property
    flat = np.asarray(mesh.faces)
    offsets = np.zeros(mesh.n_faces + 1, np.int64)
    position = 0
    for face in range(mesh.n_faces):
        offsets[face + 1] = offsets[face] + flat[position]
        position += int(flat[position]) + 1
    starts = offsets[:-1] + np.arange(mesh.n_faces)
    made = Mesh(np.asarray(mesh.points), corners=np.delete(flat, starts), offsets=offsets, check=check)
    for component, attributes in (("point", mesh.point_data), ("face", mesh.cell_data)):
        for name in attributes.keys():
            made.properties[name] = Property(np.asarray(attributes[name]), component)
    return made
