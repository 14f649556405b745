"""Meshes and point clouds as a page for any browser: to be turned, coloured by any property and clicked."""

from __future__ import annotations

import html
import os
from typing import Any, Optional, Union

from . import _convert, _tessary
from ._errors import ArgumentError
from .geometry import Geometry, Progress

__all__ = ["Page", "view"]

Path = Union[str, "os.PathLike[str]"]


class Page:
    """A page that shows one or two meshes or point clouds. `view` makes it; a notebook shows it.

    It holds the arrays as they were when it was made. The file needs no network and no other file.
    """

    def __init__(self, models: list[tuple[str, _tessary.Geometry]], quantise: bool):
        self._models, self._quantise = models, quantise

    def save(self, path: Path, *, overwrite: bool = False, threads: Optional[int] = None,
             progress: Optional[Progress] = None) -> None:
        """Writes the page into a file. Raises FileError, also where a file stands there and overwrite is not set."""
        _tessary.write_page(self._models, os.fsencode(path), self._quantise, overwrite, _convert.threads(threads),
                            progress)

    def html(self, *, threads: Optional[int] = None, progress: Optional[Progress] = None) -> str:
        """The page as text, all ASCII."""
        return _tessary.make_page(self._models, self._quantise, _convert.threads(threads), progress)

    def show(self) -> str:
        """Opens the page in the browser of this machine, from a temporary file, whose path is returned."""
        import tempfile
        import webbrowser
        path = os.path.join(tempfile.mkdtemp(prefix="tessary-"), "page.html")
        self.save(path)
        webbrowser.open("file://" + path)
        return path

    def __repr__(self) -> str:
        return f"<Page {', '.join(name for name, _ in self._models)}>"

    def _repr_html_(self) -> str:
        """An element with the page in it, which can reach nothing of the notebook around it."""
        return (f'<iframe srcdoc="{html.escape(self.html())}" sandbox="allow-scripts" title="{html.escape(repr(self))}" '
                'style="width: 100%; height: 480px; border: 0"></iframe>')


def view(mesh: Geometry, other: Union[Geometry, Path, None] = None, path: Optional[Path] = None, *,
         names: Optional[tuple[str, ...]] = None, quantise: bool = False, overwrite: bool = False,
         threads: Optional[int] = None, progress: Optional[Progress] = None) -> Page:
    """Shows a mesh or a point cloud, or two side by side under one camera, in a browser or a notebook.

    Parameters
    ----------
    mesh, other : Mesh or PointCloud
        Also a mesh with errors: the page marks what `validate` finds.
    path : str or os.PathLike, optional
        Where to write the page; may take the place of `other`. Without it nothing is written: `show()` of the result
        opens a browser, and a notebook shows the result itself.
    names : tuple of str, optional
        What the models are called, one name for each.
    quantise : bool
        Whether real numbers are rounded to 16 bits over the range of their array, for a page of half the size.
    overwrite, threads, progress
        As for `Mesh.save`.

    Returns a Page. Raises FileError, ArgumentError, OutOfMemory.

    >>> import tempfile, tessary as ts
    >>> mesh = ts.demo_mesh(8)
    >>> ts.view(mesh, mesh.sample(count=20), tempfile.mkdtemp() + "/demo.html")
    <Page mesh, samples>
    """
    if isinstance(other, (str, os.PathLike)):
        if path is not None:
            raise ArgumentError(f"other: a mesh or a point cloud is wanted, not {other!r}", "other")
        other, path = None, other
    shown = [geometry for geometry in (mesh, other) if geometry is not None]
    page = Page(list(zip(_names(shown, names), (_data(geometry) for geometry in shown))), quantise)
    if path is not None:
        page.save(path, overwrite=overwrite, threads=threads, progress=progress)
    return page


def _data(geometry: Any) -> _tessary.Geometry:
    if not isinstance(geometry, Geometry):
        raise ArgumentError(f"mesh: a Mesh or a PointCloud is wanted, not {type(geometry).__name__}", "mesh")
    return geometry._data


def _names(shown: list[Geometry], names: Optional[tuple[str, ...]]) -> list[str]:
    if names is None:
        plain = [{"PointCloud": "points"}.get(type(geometry).__name__, type(geometry).__name__.lower())
                 for geometry in shown]
        return plain if len(set(plain)) == len(plain) else [f"{name} {k + 1}" for k, name in enumerate(plain)]
    if isinstance(names, str) or len(names) != len(shown):
        raise ArgumentError(f"names: {len(shown)} are wanted, one for each model, not {names!r}", "names")
    return [str(name) for name in names]
