"""Meshes, point clouds and their properties."""

from __future__ import annotations

import os
from collections.abc import Mapping
from typing import TYPE_CHECKING, Any, Callable, NamedTuple, Optional, TypeVar, Union

import numpy as np

from . import _convert, _tessary
from ._convert import Array
from ._errors import ArgumentError
from .properties import NONE, Properties, Property

if TYPE_CHECKING:
    from .report import Report
    from .results import Adjacency, Dual, Edges, Sphere, Voxels

__all__ = ["NONE", "Mesh", "Parents", "PointCloud", "Properties", "Property", "QuadMesh", "Samples"]

Progress = Callable[[int], object]
Names = Union[str, "list[str]", "tuple[str, ...]"]
_MOST_SHOWN_BYTES = 8_000_000  # of arrays, in a notebook
_G = TypeVar("_G", bound="Geometry")


class Parents(NamedTuple):
    """Where the elements of a result come from: uint32 indices into the source, or None where there are none.

    face      of each face or sample: the face that it lies on
    corner    of each corner (triangulate) or each face (quads): a corner
    triangle  of each face or sample: the triangle, counted through the fans of all faces
    """

    face: Optional[Array] = None
    corner: Optional[Array] = None
    triangle: Optional[Array] = None


class Geometry:
    """What meshes and point clouds have in common."""

    __slots__ = ("_data", "parents", "warnings", "__weakref__")

    def __init__(self, data: _tessary.Geometry, parents: Parents = Parents(), warnings: tuple[str, ...] = ()):
        self._data = data
        #: Where the elements come from, for the results of operations.
        self.parents = parents
        #: One line for each thing that a reader or an operation left out.
        self.warnings = warnings

    @property
    def points(self) -> Array:
        """The positions, (points, 3) float32, to be read only."""
        return self._data.points

    @property
    def point_count(self) -> int:
        return self._data.point_count

    @property
    def properties(self) -> Properties:
        return Properties(self)

    @property
    def metadata(self) -> dict[str, Any]:
        """Values of the object itself, such as the "material_library" of an OBJ file."""
        return _tessary.metadata(self._data)

    def save(self, path: Any, format: Optional[str] = None, *, overwrite: bool = False,
             threads: Optional[int] = None, progress: Optional[Progress] = None) -> tuple[str, ...]:
        """Writes a file, which appears under its name only when it is complete.

        Parameters
        ----------
        path : str, os.PathLike or a binary file
            "-" is standard output.
        format : str, optional
            One of `tessary.formats()`; by default that of the path's ending.
        overwrite : bool
            Whether a file that stands there is replaced; otherwise it is a FileError.

        Returns one line for each thing that the format cannot hold. Raises FileError, InvalidMesh.

        >>> import tempfile, pathlib, tessary as ts
        >>> folder = pathlib.Path(tempfile.mkdtemp())
        >>> ts.demo_mesh(8).save(folder / "demo.ply")[0]
        'face property "material" (string) cannot be held by PLY and is left out; write OBJ to keep it'
        """
        if hasattr(path, "write"):
            from .files import save_to_file
            return save_to_file(self, path, format, threads, progress)
        return tuple(_tessary.write(self._data, os.fsencode(path), format or "", overwrite,
                                    _convert.threads(threads), progress))

    def bounding_sphere(self, *, threads: Optional[int] = None) -> Sphere:
        """The smallest sphere around all points: see `tessary.bounding_sphere`."""
        return operations.bounding_sphere(self, threads=threads)

    def copy(self: _G) -> _G:
        """Another one of the same arrays, whose properties can be replaced without changing this one."""
        return self._rebuilt(self._data)

    def plot(self, **options: Any) -> Any:
        """A picture by matplotlib: see `tessary.plot.plot`."""
        from .plot import plot
        return plot(self, **options)

    def view(self, other: Any = None, path: Any = None, **options: Any) -> Any:
        """A page that shows this, alone or beside another one: see `tessary.view`."""
        from .pages import view
        return view(self, other, path, **options)

    def _repr_html_(self) -> str:
        """What a notebook shows: the page of `view`, or only what there is where that would swell the notebook."""
        import html
        text = html.escape(repr(self))
        if self._array_bytes() > _MOST_SHOWN_BYTES:
            return f"<pre>{text}\nlarge: view() shows it, view(path) writes a page to open beside the notebook</pre>"
        return f"{self.view()._repr_html_()}<pre>{text}</pre>"

    def _array_bytes(self) -> int:
        arrays = [self.points] + ([self._data.corners, self._data.offsets] if self._data.has_faces else [])
        arrays += [array for name in self.properties
                   for array in (self.properties[name].values, self.properties[name].indices) if array is not None]
        return sum(array.nbytes for array in arrays)

    def _rebuilt(self: _G, data: _tessary.Geometry) -> _G:
        made = object.__new__(type(self))
        Geometry.__init__(made, data, self.parents, self.warnings)
        for name in type(self)._figures():
            setattr(made, name, getattr(self, name))
        return made

    @classmethod
    def _figures(cls) -> tuple[str, ...]:
        return tuple(name for base in cls.__mro__ for name in base.__dict__.get("__slots__", ())
                     if base is not Geometry)

    def __copy__(self: _G) -> _G:
        return self.copy()

    def __deepcopy__(self: _G, memo: Any) -> _G:
        return _restore(type(self), _copied(_tessary.get_state(self._data)), *self._rest())

    def __reduce__(self) -> Any:
        return _restore, (type(self), _tessary.get_state(self._data), *self._rest())

    def _rest(self) -> tuple[Any, ...]:
        return self.parents, self.warnings, {name: getattr(self, name) for name in self._figures()}

    def _property_text(self) -> str:
        names = [name + (" (indexed)" if through else "")
                 for name, _, _, through in _tessary.property_facts(self._data)]
        return "; " + ", ".join(names) if names else ""


class PointCloud(Geometry):
    """Points with values.

    Parameters
    ----------
    points : (n, 3) numbers
        Used in place where they are float32, C-contiguous and aligned.

    >>> import tessary as ts
    >>> ts.PointCloud([[0, 0, 0], [1, 2, 3]])
    <PointCloud 2 points>
    """

    __slots__ = ()

    def __init__(self, points: Any):
        super().__init__(_tessary.make_cloud(_convert.reals(points, "points", (3,))))

    def __len__(self) -> int:
        return self.point_count

    def __repr__(self) -> str:
        return f"<{type(self).__name__} {self.point_count:,} points{self._property_text()}>"


class Samples(PointCloud):
    """What `tessary.sample` makes: points on a surface, with the mesh's values and where they lie.

    Properties "weight" (float32 (n, 3), the weights of the triangle's corners), "face_id", "triangle_id" and, where
    the mesh has no normals, "normal".
    """

    __slots__ = ("distance", "area", "seed", "rounding_share")

    #: No two samples are closer, in the mesh's units, up to rounding.
    distance: float
    #: The surface's.
    area: float
    seed: int
    #: The share of the distance that rounding of the coordinates may amount to.
    rounding_share: float

    def smallest_distance(self, *, threads: Optional[int] = None) -> Optional[float]:
        """The smallest distance of any two samples, exactly; None for fewer than two."""
        return _tessary.smallest_distance(self.points, self.distance, _convert.threads(threads))


class Mesh(Geometry):
    """Points, faces of any number of corners, and properties of all of them.

    Parameters
    ----------
    points : (n, 3) numbers
        Positions. float32, C-contiguous and aligned: used in place, and kept alive. float64 is rounded to
        float32; a number that would become infinite is refused.
    faces : (f, k) integers, or a list of lists
        The points of each face, at least three.
    corners, offsets : integers, in the place of faces
        Face f has the points corners[offsets[f]:offsets[f + 1]]; offsets has an entry more than there are faces. uint32
        and int32 are used in place; other integers are converted, and refused where they do not fit.
    check : bool
        Whether errors are looked for now. Without it a broken mesh can be made, to look at with `validate()`;
        operations refuse it all the same.

    Raises ArrayError for an array that cannot be used, InvalidMesh for a mesh with errors.

    To change an array that is used in place is to change the mesh, and what operations made of it. Arrays that can be
    written are looked at again before every operation, in a fraction of its time; flags.writeable = False spares it.

    >>> import numpy as np
    >>> import tessary as ts
    >>> square = ts.Mesh([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], [[0, 1, 2, 3]])
    >>> square
    <Mesh 1 face (4 corners), 4 points>
    >>> square.corners, square.offsets
    (array([0, 1, 2, 3], dtype=uint32), array([0, 4], dtype=uint32))
    """

    __slots__ = ()

    def __init__(self, points: Any, faces: Any = None, *, corners: Any = None, offsets: Any = None,
                 check: bool = True, threads: Optional[int] = None):
        size = 0
        if faces is not None and corners is None and offsets is None:
            corners, offsets, size = _convert.faces(faces)
        elif faces is None and corners is not None and offsets is not None:
            corners, offsets = _convert.indices(corners, "corners"), _convert.indices(offsets, "offsets")
        else:
            raise ArgumentError("faces: either faces or both corners and offsets are wanted", "faces")
        super().__init__(_tessary.make_mesh(_convert.reals(points, "points", (3,)), corners, offsets, size, check,
                                            _convert.threads(threads)))

    @property
    def corners(self) -> Array:
        """The point of each corner, face after face: (corners,) uint32, to be read only."""
        return self._data.corners

    @property
    def offsets(self) -> Array:
        """Where the corners of each face begin, and their end: (faces + 1,) uint32, to be read only."""
        return self._data.offsets

    @property
    def corner_count(self) -> int:
        return self._data.corner_count

    @property
    def face_count(self) -> int:
        return self._data.face_count

    @property
    def faces(self) -> Array:
        """The points of each face: (faces, k) uint32 where all have k corners. Raises ValueError for others."""
        sizes = self.face_sizes
        if len(sizes) and (sizes != sizes[0]).any():
            raise ValueError(f"faces have {sizes.min()} to {sizes.max()} corners, so there is no array of rows; "
                             "use corners and offsets, or triangulate()")
        return self.corners.reshape(len(sizes), int(sizes[0]) if len(sizes) else 3)

    @property
    def face_sizes(self) -> Array:
        """How many corners each face has: (faces,) uint32."""
        return np.diff(self.offsets)

    def face(self, index: int) -> Array:
        """The points of one face."""
        index = range(self.face_count)[index]
        offsets = self.offsets
        return self.corners[offsets[index]:offsets[index + 1]]

    def __repr__(self) -> str:
        sizes = self.face_sizes
        most = f"{sizes.min()} to {sizes.max()}" if len(sizes) and sizes.min() != sizes.max() else sizes[:1].sum()
        shape = f" ({most} corners)" if len(sizes) else ""
        faces = "face" if self.face_count == 1 else "faces"
        return (f"<{type(self).__name__} {self.face_count:,} {faces}{shape}, {self.point_count:,} points"
                f"{self._property_text()}>")

    def info(self, *, threads: Optional[int] = None, progress: Optional[Progress] = None) -> dict[str, Any]:
        """Facts about the mesh: see `tessary.info`."""
        return operations.info(self, threads=threads, progress=progress)

    def validate(self, *, threads: Optional[int] = None, progress: Optional[Progress] = None) -> Report:
        """What is wrong with the mesh: see `tessary.validate`."""
        return operations.validate(self, threads=threads, progress=progress)

    def triangulate(self, *, concave: str = "fan", properties: Names = "all", threads: Optional[int] = None,
                    progress: Optional[Progress] = None) -> Mesh:
        """Splits faces into triangles: see `tessary.triangulate`."""
        return operations.triangulate(self, concave=concave, properties=properties, threads=threads, progress=progress)

    def quads(self, **options: Any) -> QuadMesh:
        """Splits faces into quads: see `tessary.quads`."""
        return operations.quads(self, **options)

    def sample(self, **options: Any) -> Samples:
        """Scatters points over the surface: see `tessary.sample`."""
        return operations.sample(self, **options)

    def adjacency(self, **options: Any) -> Adjacency:
        """Triangles, their edges and neighbours: see `tessary.adjacency`."""
        return operations.adjacency(self, **options)

    def edges(self, **options: Any) -> Edges:
        """Edges of the triangles: see `tessary.edges`."""
        return operations.edges(self, **options)

    def dual(self, *, threads: Optional[int] = None) -> Dual:
        """The corners of each point: see `tessary.dual`."""
        return operations.dual(self, threads=threads)

    def voxels(self, cell_size: Union[float, str], *, threads: Optional[int] = None,
               progress: Optional[Progress] = None) -> Voxels:
        """The cells of a grid that the mesh touches: see `tessary.voxels`."""
        return operations.voxels(self, cell_size, threads=threads, progress=progress)

    def to_trimesh(self) -> Any:
        """See `tessary.interop.to_trimesh`."""
        from .interop import to_trimesh
        return to_trimesh(self)

    def to_open3d(self) -> Any:
        """See `tessary.interop.to_open3d`."""
        from .interop import to_open3d
        return to_open3d(self)

    def to_pyvista(self) -> Any:
        """See `tessary.interop.to_pyvista`."""
        from .interop import to_pyvista
        return to_pyvista(self)


class QuadMesh(Mesh):
    """What `tessary.quads` makes."""

    __slots__ = ("edge_count", "creased_edges", "split_edges")

    #: Edges of the fan triangles.
    edge_count: int
    #: Those of them that are creased.
    creased_edges: int
    #: Those that were cut once for each face.
    split_edges: int


def _unpickled(state: Any) -> Any:
    # Arrays that came out of a pickle belong to nobody else. Those out of a message lie wherever it ended before.
    if isinstance(state, np.ndarray):
        array = np.require(state, requirements=("C", "A"))
        array.flags.writeable = False
        return array
    return type(state)(map(_unpickled, state)) if isinstance(state, (list, tuple)) else state


def _copied(state: Any) -> Any:
    if isinstance(state, np.ndarray):
        return state.copy()
    return type(state)(map(_copied, state)) if isinstance(state, (list, tuple)) else state


def _restore(kind: type[_G], state: Any, parents: Parents, warnings: tuple[str, ...],
             figures: Mapping[str, Any]) -> _G:
    made = object.__new__(kind)
    Geometry.__init__(made, _tessary.from_state(_unpickled(state)), parents, warnings)
    for name, value in figures.items():
        setattr(made, name, value)
    return made


from . import operations  # noqa: E402  needs the classes above
