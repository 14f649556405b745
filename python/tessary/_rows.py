"""Arrays that are read and written a range of rows at a time, and what is done with one range after the other."""

from __future__ import annotations

import mmap
import re
from collections.abc import Iterable, Iterator
from typing import Any, Callable, Optional, Union

import numpy as np

from ._convert import Array
from ._errors import ArgumentError

Span = tuple[int, int]
_UNITS = {"": 1, "k": 10**3, "m": 10**6, "g": 10**9, "t": 10**12,
          "ki": 2**10, "mi": 2**20, "gi": 2**30, "ti": 2**40}
_LEAST_MEMORY = 10**6


def memory(value: Union[int, str]) -> int:
    """Bytes: a number, or text such as "1 GB" or "512 MiB"."""
    found = re.fullmatch(r"([0-9.]+)\s*([kmgt]?i?)b?", str(value).strip().lower())
    try:
        size = int(float(found[1]) * _UNITS[found[2]]) if found else 0
    except (KeyError, ValueError):
        size = 0
    if size < _LEAST_MEMORY:
        raise ArgumentError(f'max_memory: bytes, or text such as "1 GB", of a megabyte at least are wanted, not '
                            f"{value!r}", "max_memory")
    return size


class Rows:
    """The rows of an array. Those of a memory-mapped one are read from its file, so that none of them stays resident,
    and it travels as the file's name.

    `convert` makes of each range what is worked with.
    """

    def __init__(self, array: Any, convert: Optional[Callable[[Array], Array]] = None):
        self._convert = convert
        given: Array = np.asanyarray(array)
        self.shape, self.dtype = given.shape, given.dtype
        place = _place_of(given)
        self._path, self._offset = place or ("", 0)
        self._array: Optional[Array] = None if place else given

    @classmethod
    def create(cls, path: str, dtype: Any, shape: tuple[int, ...]) -> Rows:
        """A .npy file, whose rows are then written in any order."""
        return cls(np.lib.format.open_memmap(path, "w+", dtype, shape))  # type: ignore[no-untyped-call]

    def __len__(self) -> int:
        return int(self.shape[0])

    @property
    def row_bytes(self) -> int:
        return int(self.dtype.itemsize * np.prod(self.shape[1:], dtype=np.int64))

    def read(self, begin: int, end: int) -> Array:
        if self._array is not None:
            rows = self._array[begin:end]
        else:
            count = (end - begin) * self.row_bytes // max(1, self.dtype.itemsize)
            rows = np.fromfile(self._path, self.dtype, count, offset=self._offset + begin * self.row_bytes)
            rows = rows.reshape((end - begin, *self.shape[1:]))
        return rows if self._convert is None else self._convert(rows)

    def write(self, begin: int, values: Array) -> None:
        with open(self._path, "r+b") as file:
            file.seek(self._offset + begin * self.row_bytes)
            np.ascontiguousarray(values, self.dtype).tofile(file)

    def spans(self, bytes_at_once: int) -> list[Span]:
        rows = max(1, bytes_at_once // max(1, self.row_bytes))
        return [(begin, min(begin + rows, len(self))) for begin in range(0, len(self), rows)]


def _place_of(array: Array) -> Optional[tuple[str, int]]:
    """The file that rows lie in, and where; None for what is only in memory, or changed there alone."""
    root: Any = array
    while isinstance(root, np.ndarray) and isinstance(root.base, np.ndarray):
        root = root.base
    if not (isinstance(root, np.memmap) and isinstance(root.base, mmap.mmap) and isinstance(root.filename, str) or
            isinstance(root, np.memmap) and hasattr(root.filename, "__fspath__")):
        return None
    if root.mode == "c" or not array.flags.c_contiguous:
        return None
    first = array.__array_interface__["data"][0] - root.__array_interface__["data"][0]
    return str(root.filename), int(root.offset + first)


def run(work: Callable[..., Any], arguments: Iterable[tuple[Any, ...]], client: Any = None) -> Iterator[Any]:
    """The results of work(*arguments), in order: one after the other here, or as tasks of a Dask client."""
    if client is None:
        for entry in arguments:
            yield work(*entry)
        return
    columns = list(zip(*arguments))
    futures = client.map(work, *columns, pure=False) if columns else []
    try:
        for future in futures:
            yield future.result()
    finally:
        client.cancel(futures)
