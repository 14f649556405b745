"""Geometry processing on meshes: numpy in, numpy out, nothing copied, the same bits on every machine.

>>> import tessary as ts
>>> mesh = ts.demo_mesh(64)                     # or ts.read("roof.obj"), or ts.Mesh(points, faces)
>>> print(ts.validate(mesh))
valid
>>> samples = mesh.triangulate().sample(distance="10%", seed=7)
>>> samples.properties["color"].values.dtype    # followed from the mesh
dtype('float32')
"""

from __future__ import annotations

from typing import Any

from . import arrays
from ._errors import (ArgumentError, ArrayError, Cancelled, Error, FileError, InvalidMesh, OutOfMemory)
from ._tessary import __version__
from .geometry import NONE, Geometry, Mesh, Parents, PointCloud, Properties, Property, QuadMesh, Samples
from .operations import (Adjacency, Dual, Edges, Format, Sphere, Voxels, adjacency, bounding_sphere, demo_mesh, dual,
                         edges, formats, info, interpolate_to_cut_mesh, overlap, quads, read, sample, triangulate,
                         validate, voxels)
from .pages import Page, view
from .report import Place, Problem, Report
from .solver import Multicollider

__all__ = ["Adjacency", "ArgumentError", "ArrayError", "Cancelled", "Dual", "Edges", "Error", "FileError", "Format",
           "Geometry", "InvalidMesh", "Mesh", "Multicollider", "NONE", "OutOfMemory", "Page", "Parents", "Place",
           "PointCloud", "Problem", "Properties", "Property", "QuadMesh", "Report", "Samples", "Sphere", "Voxels",
           "__version__", "adjacency", "arrays", "bounding_sphere", "demo_mesh", "dual", "edges", "formats",
           "from_open3d", "from_pyvista", "from_trimesh", "info", "interpolate_to_cut_mesh", "overlap", "quads",
           "read", "sample", "triangulate", "validate", "view", "voxels"]


def from_trimesh(mesh: Any, *, check: bool = True) -> Mesh:
    """A mesh of a trimesh.Trimesh: see `tessary.interop.from_trimesh`."""
    from .interop import from_trimesh
    return from_trimesh(mesh, check=check)


def from_open3d(mesh: Any, *, check: bool = True) -> Mesh:
    """A mesh of an open3d TriangleMesh: see `tessary.interop.from_open3d`."""
    from .interop import from_open3d
    return from_open3d(mesh, check=check)


def from_pyvista(mesh: Any, *, check: bool = True) -> Mesh:
    """A mesh of a pyvista.PolyData: see `tessary.interop.from_pyvista`."""
    from .interop import from_pyvista
    return from_pyvista(mesh, check=check)
