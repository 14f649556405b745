"""Meshes that do not fit into memory: triangulation, validation, spheres and overlap in pieces, with the same bytes.

Arrays lie in files, memory-mapped by NumPy. They are read and written in pieces, so that what a call adds to the memory
that the process holds stays below `max_memory`. With `client=`, a dask.distributed.Client, the pieces are tasks; its
workers see the files under the same paths, and each task stays below `max_memory`.

>>> import tempfile, tessary as ts
>>> from tessary import chunks
>>> folder = tempfile.mkdtemp()
>>> stored = chunks.store(ts.demo_mesh(64), folder + "/mesh")          # or StoredMesh(np.load(..., mmap_mode="r"), ...)
>>> chunks.validate(stored, max_memory="8 MB").valid
True
>>> triangles = chunks.triangulate(stored, folder + "/triangles", max_memory="8 MB")
>>> triangles
<StoredMesh 32,768 faces, 16,384 points; color, material, face_id, texcoord (indexed), normal (indexed)>
>>> chunks.bounding_sphere(triangles).radius == ts.bounding_sphere(triangles.mesh()).radius
True
"""

from __future__ import annotations

import functools
import json
import os
from collections.abc import Mapping
from typing import Any, Optional, Union

import numpy as np

from . import _convert, arrays, operations
from ._chunk_checks import check
from ._chunk_parts import FaceSpan, Parts, face_spans
from ._chunk_sphere import sphere
from ._convert import Array
from ._errors import ArgumentError, ArrayError, FileError, InvalidMesh
from ._rows import Rows, memory, run
from .geometry import Mesh, Names, Parents, Property
from .operations import Sphere
from .report import Report

__all__ = ["StoredMesh", "bounding_sphere", "load", "overlap", "store", "triangulate", "validate"]

Memory = Union[int, str]
_CONTENT = "mesh.json"
_points = functools.partial(_convert.reals, argument="points", shape=(3,))


class StoredMesh:
    """Arrays of a mesh that need not be in memory.

    Parameters
    ----------
    points : (n, 3) numbers
    corners, offsets : integers
        As for `tessary.Mesh`. float32 and uint32 are used in place; of other numbers each piece is converted when it
        is read. Memory-mapped arrays are read from their files: flush what was written to them.
    properties : dict of str to tessary.Property, optional
        Each with its component.
    parents : Parents
        Where the elements come from, for results.
    """

    def __init__(self, points: Any, corners: Any, offsets: Any, properties: Optional[Mapping[str, Property]] = None,
                 parents: Parents = Parents()):
        self.points, self.corners, self.offsets = points, corners, offsets
        self.properties = dict(properties or {})
        self.parents = parents
        for name, property in self.properties.items():
            self._check_length(name, property)

    @property
    def point_count(self) -> int:
        return len(self.points)

    @property
    def corner_count(self) -> int:
        return len(self.corners)

    @property
    def face_count(self) -> int:
        return max(0, len(self.offsets) - 1)

    def mesh(self, *, check: bool = True) -> Mesh:
        """A mesh of the same arrays, which are used in place, for all other operations."""
        made = Mesh(self.points, corners=self.corners, offsets=self.offsets, check=check)
        for name, property in self.properties.items():
            made.properties[name] = property
        made.parents = self.parents
        return made

    def __repr__(self) -> str:
        names = [name + (" (indexed)" if property.indices is not None else "")
                 for name, property in self.properties.items()]
        return (f"<StoredMesh {self.face_count:,} faces, {self.point_count:,} points"
                f"{'; ' + ', '.join(names) if names else ''}>")

    def _check_length(self, name: str, property: Property) -> None:
        counts = {"point": self.point_count, "corner": self.corner_count, "face": self.face_count}
        if property.component not in counts:
            raise ArgumentError(f"component: one of {tuple(counts)} is possible; {property.component!r} is not",
                                "component")
        if len(property) != counts[property.component]:
            raise ArrayError(f"{name}: {len(property)} values for the {counts[property.component]} "
                             f"{property.component}s of the mesh", name, "length")

    def _parts(self) -> Parts:
        indices = {name: (Rows(property.indices), len(property.values))
                   for name, property in self.properties.items() if property.indices is not None}
        return Parts(Rows(self.points, _points), _index_rows(self.corners, "corners"),
                     _index_rows(self.offsets, "offsets"), indices)


def _index_rows(array: Any, name: str) -> Rows:
    return Rows(array, functools.partial(_convert.indices, argument=name))


def store(mesh: Union[Mesh, StoredMesh], folder: Any, *, max_memory: Memory = "1 GB") -> StoredMesh:
    """Writes arrays into a new folder, a .npy file each, and loads them. Raises FileError where a mesh is there."""
    folder, at_once = _new_folder(folder), memory(max_memory) // 4
    target = _Target(folder)
    for name, converted in (("points", _points), ("corners", None), ("offsets", None)):
        array = getattr(mesh, name)
        target.take(name, Rows(array, converted) if converted else _index_rows(array, name), at_once,
                    np.float32 if converted else np.uint32)
    for name, property in mesh.properties.items():
        target.take_property(name, property, at_once)
    for name, array in zip(Parents._fields, mesh.parents):
        if array is not None:
            target.take(f"parents-{name}", Rows(array), at_once)
    return target.finished()


def load(folder: Any) -> StoredMesh:
    """The mesh that `store` or `triangulate` left in a folder. Only what is looked at is read."""
    folder = os.fspath(folder)
    try:
        with open(os.path.join(folder, _CONTENT), encoding="utf-8") as file:
            content = json.load(file)
    except FileNotFoundError:
        raise FileError(f"{folder}: there is no {_CONTENT}, so no finished mesh", "not-found", folder) from None

    def array(name: str) -> Array:
        return np.load(os.path.join(folder, name + ".npy"), mmap_mode="r")  # type: ignore[no-any-return]

    properties = {}
    for number, facts in enumerate(content["properties"]):
        indices = array(f"indices-{number}") if facts["indexed"] else None
        properties[facts["name"]] = Property(array(f"values-{number}"), facts["component"], indices,
                                             facts["interpolation"], facts["default"])
    parents = Parents(*(array(f"parents-{name}") if name in content["parents"] else None
                        for name in Parents._fields))
    return StoredMesh(array("points"), array("corners"), array("offsets"), properties, parents)


class _Target:
    """A folder that a mesh is written into; without its list of content it is not finished."""

    def __init__(self, folder: str):
        self.folder = folder
        self._properties: list[dict[str, Any]] = []
        self._parents: list[str] = []

    def create(self, name: str, dtype: Any, shape: tuple[int, ...]) -> Rows:
        if name.startswith("parents-"):
            self._parents.append(name[len("parents-"):])
        return Rows.create(os.path.join(self.folder, name + ".npy"), dtype, shape)

    def take(self, name: str, rows: Rows, at_once: int, dtype: Any = None) -> None:
        target = self.create(name, dtype or rows.dtype, rows.shape)
        for begin, end in rows.spans(at_once // 4):
            target.write(begin, rows.read(begin, end))

    def take_values(self, name: str, property: Property, at_once: int, mode: str = "") -> None:
        self.take(f"values-{self._add(name, property, mode)}", _value_rows(name, property), at_once)

    def take_property(self, name: str, property: Property, at_once: int, mode: str = "") -> None:
        self.take_values(name, property, at_once, mode)
        if property.indices is not None:
            self.take(f"indices-{self.number}", Rows(property.indices), at_once)

    def create_values(self, name: str, property: Property, count: int) -> Rows:
        rows = _value_rows(name, property)
        return self.create(f"values-{self._add(name, property)}", rows.dtype, (count, *rows.shape[1:]))

    @property
    def number(self) -> int:
        return len(self._properties) - 1

    def finished(self) -> StoredMesh:
        with open(os.path.join(self.folder, _CONTENT), "w", encoding="utf-8") as file:
            json.dump({"properties": self._properties, "parents": self._parents}, file, indent=1)
        return load(self.folder)

    def _add(self, name: str, property: Property, mode: str = "") -> int:
        default = None if property.default is None else np.asarray(property.default).tolist()
        self._properties.append({"name": name, "component": property.component, "default": default,
                                 "indexed": property.indices is not None,
                                 "interpolation": mode or property.interpolation})
        return self.number


def _value_rows(name: str, property: Property) -> Rows:
    values = property.values
    if values.dtype.kind == "O":
        if any(text.endswith("\0") for text in values):
            raise ArrayError(f"{name}: a text ends with a zero character, which a file of texts drops", name, "value")
        values = values.astype(np.str_)
    return Rows(values)


def _new_folder(folder: Any) -> str:
    path = os.fspath(folder)
    os.makedirs(path, exist_ok=True)
    if os.path.exists(os.path.join(path, _CONTENT)):
        raise FileError(f"{path}: there is a mesh already", "exists", path)
    return str(path)


def validate(mesh: StoredMesh, *, max_memory: Memory = "1 GB", client: Any = None,
             scratch: Optional[str] = None) -> Report:
    """What is wrong with a mesh: the report of `tessary.validate`.

    scratch : a folder for sorted edges, about 32 bytes a corner (48 more where faces are no triangles); by default that
    of temporary files. Raises OutOfMemory where a single face or edge is larger than max_memory has room for.
    """
    return check(mesh._parts(), memory(max_memory), client, scratch)


def bounding_sphere(points: Any, *, max_memory: Memory = "1 GB", client: Any = None) -> Sphere:
    """The smallest sphere around points, with the bits of `tessary.bounding_sphere`.

    points : a StoredMesh, or (n, 3) numbers, memory-mapped or not. They are read 3 to 15 times.
    """
    array = points.points if isinstance(points, StoredMesh) else points
    return Sphere(*sphere(Rows(array, _points), memory(max_memory) // 4, client))


def overlap(triangles: Any, boxes: Any, *, output: Any = None, max_memory: Memory = "1 GB",
            client: Any = None) -> Array:
    """Whether triangles and boxes meet, pair by pair: see `tessary.overlap`.

    triangles, boxes : (n, 3, 3) and (n, 2, 3) numbers, memory-mapped or not
    output : a .npy file for the result, which is returned memory-mapped; without it the n bytes are in memory

    >>> import numpy as np
    >>> from tessary import chunks
    >>> chunks.overlap(np.zeros((2, 3, 3)), np.float32([[[0, 0, 0], [1, 1, 1]], [[2, 2, 2], [1, 1, 1]]]))
    array([ True, False])
    """
    left, right = Rows(triangles), Rows(boxes)
    if left.shape[1:] != (3, 3) or right.shape[1:] != (2, 3) or len(left) != len(right):
        raise ArrayError(f"boxes: (n, 3, 3) triangles and (n, 2, 3) boxes are wanted, not {left.shape} and "
                         f"{right.shape}", "boxes", "length")
    target = Rows.create(os.fspath(output), np.bool_, (len(left),)) if output else None
    spans = left.spans(memory(max_memory) // 8)
    found = list(run(_overlap, ((left, right, target, *span) for span in spans), client))
    if target:
        return np.load(os.fspath(output), mmap_mode="r")  # type: ignore[no-any-return]
    return np.concatenate(found) if found else np.zeros(0, np.bool_)


def _overlap(triangles: Rows, boxes: Rows, target: Optional[Rows], begin: int, end: int) -> Optional[Array]:
    found = operations.overlap(triangles.read(begin, end), boxes.read(begin, end))
    if not target:
        return found
    target.write(begin, found)
    return None


def triangulate(mesh: StoredMesh, output: Any, *, properties: Names = "all", max_memory: Memory = "1 GB",
                client: Any = None) -> StoredMesh:
    """Splits every face into a fan of triangles, in a new folder: the arrays that `tessary.triangulate` makes.

    output : the folder
    properties : "all", "none", or names, as for `tessary.triangulate`

    Values of points and of indexed properties are copied, those of corners and faces follow, and so do indices. Returns
    the mesh of the folder, with `parents.face` and `parents.corner`. Raises InvalidMesh, FileError, OutOfMemory.
    """
    limit = memory(max_memory)
    report = check(mesh._parts(), limit, client, None, edges=False)
    if not report:
        raise InvalidMesh(report.errors[0].line(), report)
    carried = _chosen(mesh, properties)
    target = _Target(_new_folder(output))
    target.take("points", Rows(mesh.points, _points), limit // 4, np.float32)
    count = mesh.corner_count - 2 * mesh.face_count
    work = _Triangles(mesh._parts(), target, count)
    for name, property in carried.items():
        work.carry(name, property, limit // 4)
    spans = face_spans(mesh._parts(), max(1, limit // work.bytes_per_corner))
    for _ in run(work, ((span,) for span in spans), client):
        pass
    return target.finished()


def _chosen(mesh: StoredMesh, properties: Names) -> dict[str, Property]:
    if properties == "all":
        return mesh.properties
    names = [properties] if isinstance(properties, str) else list(properties)
    names = [] if properties == "none" else names
    for name in names:
        if name not in mesh.properties:
            raise ArgumentError(f"properties: the mesh has no {name!r}; it has "
                                f"{', '.join(mesh.properties) or 'none'}", "properties")
    return {name: property for name, property in mesh.properties.items() if name in names}


class _Triangles:
    """Triangulates a span of faces and writes what comes of it where it belongs."""

    def __init__(self, parts: Parts, target: _Target, count: int):
        self._parts, self._target, self._count = parts, target, count
        self._corners = target.create("corners", np.uint32, (3 * count,))
        self._offsets = target.create("offsets", np.uint32, (count + 1,))
        self._parents = [target.create("parents-face", np.uint32, (count,)),
                         target.create("parents-corner", np.uint32, (3 * count,))]
        self._carried: list[tuple[str, Rows, Rows]] = []
        self._widest = 4

    def __getstate__(self) -> dict[str, Any]:
        return {**self.__dict__, "_target": None}

    @property
    def bytes_per_corner(self) -> int:
        """Of a span: its corners, triangles, indices in 64 bits, and one property before and after."""
        return 96 + 8 * self._widest

    def carry(self, name: str, property: Property, at_once: int) -> None:
        if property.component == "point":
            # Required: the kernel shares plain values of points, and calls what it shares linear.
            mode = "linear" if property.indices is None else property.interpolation
            self._target.take_property(name, property, at_once, mode)
            return
        count = self._count * (3 if property.component == "corner" else 1)
        if property.indices is None:
            source, made = _value_rows(name, property), self._target.create_values(name, property, count)
        else:
            self._target.take_values(name, property, at_once)
            source = Rows(property.indices)
            made = self._target.create(f"indices-{self._target.number}", np.uint32, (count,))
        self._widest = max(self._widest, source.row_bytes)
        self._carried.append((property.component, source, made))

    def __call__(self, span: FaceSpan) -> None:
        offsets = self._parts.offsets.read(span.first, span.end + 1) - np.uint32(span.first_corner)
        corners = self._parts.corners.read(span.first_corner, span.end_corner)
        corner = arrays.triangulate(np.arange(len(corners), dtype=np.uint32), offsets).reshape(-1)
        face = np.repeat(np.arange(span.end - span.first, dtype=np.uint32), np.diff(offsets) - np.uint32(2))
        first = span.first_corner - 2 * span.first
        self._corners.write(3 * first, corners[corner])
        self._offsets.write(first, np.arange(first, first + len(face) + 1, dtype=np.uint32) * np.uint32(3))
        self._parents[0].write(first, face + np.uint32(span.first))
        self._parents[1].write(3 * first, corner + np.uint32(span.first_corner))
        for component, source, made in self._carried:
            if component == "corner":
                made.write(3 * first, source.read(span.first_corner, span.end_corner)[corner])
            else:
                made.write(first, source.read(span.first, span.end)[face])
