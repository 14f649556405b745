"""Mesh files."""

from __future__ import annotations

import os
from typing import Any, NamedTuple, Optional

from . import _convert, _tessary
from ._errors import ArgumentError, FileError
from .geometry import Geometry, Mesh, Progress
from .results import made

__all__ = ["Format", "formats", "read", "save_to_file"]


class Format(NamedTuple):
    name: str
    title: str
    ending: str
    reads_meshes: bool
    writes_meshes: bool
    writes_clouds: bool


def formats() -> tuple[Format, ...]:
    """The formats of files, and what can be read and written in each.

    >>> import tessary as ts
    >>> [format.ending for format in ts.formats() if format.reads_meshes and format.ending][:2]
    ['.obj', '.ply']
    """
    return tuple(Format(*facts) for facts in _tessary.formats())


def read(source: Any, *, check: bool = True, threads: Optional[int] = None,
         progress: Optional[Progress] = None) -> Mesh:
    """Reads a mesh file with every polygon and attribute.

    Parameters
    ----------
    source : str or os.PathLike, bytes, or a binary file
        A path ("-" is standard input), or the content of a file. The format is recognised by the content.
    check : bool
        Whether a mesh with errors is refused; otherwise it can be looked at with `validate()`.
    threads, progress
        As for `triangulate`.

    Returns a Mesh, whose `warnings` tell what the file has and the mesh has not. Raises FileError, InvalidMesh,
    OutOfMemory.

    >>> import tessary as ts
    >>> ts.read(b"v 0 0 0\\nv 1 0 0\\nv 1 1 0\\nf 1 2 3\\n")
    <Mesh 1 face (3 corners), 3 points>
    """
    if hasattr(source, "read"):
        source = source.read()
    if isinstance(source, (bytes, bytearray, memoryview)):
        return _read_content(source, check, threads, progress)
    data, _, warnings = _tessary.read(os.fsencode(source), check, _convert.threads(threads), progress)
    return made(Mesh, data, warnings=warnings)


def _read_content(content: Any, check: bool, threads: Optional[int], progress: Optional[Progress]) -> Mesh:
    import tempfile
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "content")
        with open(path, "wb") as file:
            file.write(content)
        try:
            return read(path, check=check, threads=threads, progress=progress)
        except FileError as error:
            error.args = (str(error).replace(path, "content"),)
            error.file = "content"
            raise


def save_to_file(geometry: Geometry, file: Any, format: Optional[str], threads: Optional[int],
                  progress: Optional[Progress]) -> tuple[str, ...]:
    """Writes into a binary file that is open."""
    if format is None:
        raise ArgumentError("format: a file object has no ending that tells a format; give it by name", "format")
    import shutil
    import tempfile
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "mesh")
        warnings = geometry.save(path, format, threads=threads, progress=progress)
        with open(path, "rb") as written:
            shutil.copyfileobj(written, file)
    return warnings
