"""What callers give as the arrays that the libraries take: as it is where it fits, else converted with checks."""

from __future__ import annotations

import operator
from itertools import chain
from typing import Any, NoReturn, Optional, Union

import numpy as np

from ._errors import ArgumentError, ArrayError

F32 = np.dtype(np.float32)
F64 = np.dtype(np.float64)
U32 = np.dtype(np.uint32)
I32 = np.dtype(np.int32)
BOOL = np.dtype(np.bool_)

Array = np.ndarray[Any, Any]

_KINDS = {"b": "bool", "c": "complex numbers", "O": "objects", "U": "text", "S": "bytes", "M": "dates",
          "m": "times", "V": "records"}


def _refuse(argument: str, came: str, wanted: str, code: str = "type") -> NoReturn:
    raise ArrayError(f"{argument}: {wanted}, not {came}", argument, code)


def _kind(array: Array) -> str:
    kind = _KINDS.get(array.dtype.kind)
    return f"{kind} ({array.dtype})" if kind else str(array.dtype)


def _asarray(value: Any, argument: str, wanted: str) -> Array:
    if isinstance(value, np.ma.MaskedArray) and value.mask.any():
        _refuse(argument, "an array with masked entries", wanted)
    try:
        return np.asarray(value)
    except (ValueError, TypeError, OverflowError) as error:
        raise ArrayError(f"{argument}: {wanted}; what came is no array ({error})", argument, "type") from error


def _in_place(array: Array, dtype: Any) -> Array:
    """The array in order, aligned and of the machine's byte order, copied only where it is not."""
    return np.require(array, dtype, ("C", "A"))


def _refuse_entry(argument: str, array: Array, bad: Array, what: str) -> NoReturn:
    element = int(np.argmax(bad))
    value = array.reshape(-1)[element]
    raise ArrayError(f"{argument}: entry {element} is {value}; {what}", argument, "value", element, str(value))


def reals(value: Any, argument: str, shape: tuple[int, ...], dtype: Any = F32,
          wanted: str = "") -> Array:
    """Numbers of shape (n, *shape) as `dtype`; a finite one that becomes infinite is refused."""
    if type(value) is np.ndarray and value.dtype == dtype and value.shape[1:] == shape and value.ndim > 0:
        flags = value.flags
        if flags.c_contiguous and flags.aligned:
            return value
    dims = "".join(f", {n}" for n in shape) or ","
    wanted = wanted or f"numbers of shape (n{dims}) are wanted"
    array = _asarray(value, argument, wanted)
    if array.dtype.kind not in "fiu":
        _refuse(argument, _kind(array), wanted)
    if array.size == 0 and array.ndim <= 1:
        array = array.reshape((0, *shape))
    if array.ndim != len(shape) + 1 or array.shape[1:] != shape:
        _refuse(argument, f"shape {array.shape}", wanted, "length")
    return _narrowed(array, argument, dtype)


def _narrowed(array: Array, argument: str, dtype: Any) -> Array:
    with np.errstate(over="ignore", under="ignore", invalid="ignore"):
        result = _in_place(array, dtype)
    if array.dtype.kind == "f" and array.dtype.itemsize > result.dtype.itemsize:
        bad = np.isinf(result) & np.isfinite(array)
        if bad.any():
            _refuse_entry(argument, array, bad, f"the largest {result.dtype} is {np.finfo(result.dtype).max}")
    return result


def indices(value: Any, argument: str, shape: tuple[int, ...] = ()) -> Array:
    """Whole numbers from 0 to 4294967295 of shape (n, *shape), as 32-bit unsigned integers."""
    if type(value) is np.ndarray and value.dtype == U32 and value.ndim == 1 + len(shape):
        flags = value.flags
        if flags.c_contiguous and flags.aligned and value.shape[1:] == shape:
            return value
    dims = "".join(f", {n}" for n in shape) or ","
    wanted = f"indices, whole numbers of shape (n{dims}), are wanted"
    array = _asarray(value, argument, wanted)
    if array.size == 0 and array.dtype.kind in "fiu":
        array = array.astype(U32)
        if array.ndim <= 1:
            array = array.reshape((0, *shape))
    if array.dtype.kind not in "iu":
        _refuse(argument, _kind(array), wanted)
    if array.ndim != len(shape) + 1 or array.shape[1:] != shape:
        _refuse(argument, f"shape {array.shape}", wanted, "length")
    return whole(array, argument, U32)


def whole(array: Array, argument: str, dtype: Any) -> Array:
    """Integers as integers of another type, none of which may wrap."""
    if array.dtype == dtype or array.size == 0:
        return _in_place(array, dtype)
    least, most = np.iinfo(dtype).min, np.iinfo(dtype).max
    if int(array.min()) < least or int(array.max()) > most:
        bad = (array < least) | (array > most) if array.dtype.kind == "i" else array > np.uint64(most)
        _refuse_entry(argument, array, bad.reshape(-1), f"it has to be {least} to {most}")
    if array.dtype == I32 and dtype == U32:
        return _in_place(array, I32).view(U32)
    return _in_place(array, dtype)


def faces(value: Any, argument: str = "faces") -> tuple[Array, Optional[Array], int]:
    """Corners, offsets and size of faces: an array with a row for each face, or a list of lists."""
    wanted = "an array of shape (faces, corners of each) or a list of lists of points is wanted"
    if isinstance(value, np.ndarray) and value.dtype.kind != "O":
        if value.ndim != 2:
            _refuse(argument, f"shape {value.shape}", wanted + " (a flat one is corners=, with offsets=)",
                    "length")
        return indices(value.reshape(-1), argument), None, value.shape[1]
    try:
        rows = [row if hasattr(row, "__len__") else list(row) for row in value]
        sizes = np.fromiter(map(len, rows), np.int64, len(rows))
    except TypeError as error:
        raise ArrayError(f"{argument}: {wanted}, not {value!r:.60}", argument, "type") from error
    flat = indices(list(chain.from_iterable(rows)), argument)
    offsets = np.zeros(len(rows) + 1, np.int64)
    np.cumsum(sizes, out=offsets[1:])
    return flat, indices(offsets, argument), 0


_SHAPES = {"f": ((), (2,), (3,), (4,), (2, 2), (2, 3), (3, 3), (4, 4)), "i": ((), (2,), (3,), (2, 2), (2, 3))}
_WANTED = ("one value for each element is wanted: bool, text, numbers, rows of 2 to 4 numbers, or matrices of "
           "2x2, 2x3, 3x3 or 4x4")


def _texts(array: Array, argument: str) -> list[str]:
    texts: list[str] = array.tolist()
    if array.ndim != 1 or not all(isinstance(text, str) for text in texts):
        _refuse(argument, f"{_kind(array)} of shape {array.shape}", _WANTED)
    return texts


def attribute(value: Any, argument: str) -> Union[Array, list[str]]:
    """Values of a property, as an array of elements that the host has, or texts."""
    array = _asarray(value, argument, _WANTED)
    kind, shape = array.dtype.kind, array.shape[1:]
    if array.ndim == 0:
        _refuse(argument, "a single value", _WANTED, "length")
    if kind in "UO":
        return _texts(array, argument)
    if kind == "b" and not shape:
        return _in_place(array, BOOL)
    if kind == "f" and shape in _SHAPES["f"]:
        if array.dtype.itemsize > 8:
            return _narrowed(array, argument, F64)
        return _in_place(array, F64 if array.dtype.itemsize == 8 else F32)
    if kind in "iu" and not shape:
        return _in_place(array, array.dtype.newbyteorder("="))
    if array.dtype == np.uint8 and shape in ((3,), (4,)):
        return _in_place(array, np.uint8)
    if kind in "iu" and shape in _SHAPES["i"]:
        return whole(array, argument, np.dtype(np.int16) if array.dtype.itemsize == 2 and kind == "i" else I32)
    _refuse(argument, f"{_kind(array)} of shape {array.shape}", _WANTED)


def threads(value: Optional[int]) -> int:
    """A number of threads, 0 for as many as there are."""
    if value is None:
        return 0
    count = integer(value, "threads")
    if not 1 <= count <= 1024:
        raise ArgumentError(f"threads: 1 to 1024 are possible, or None for all; {count} is not", "threads")
    return count


def integer(value: Any, argument: str, least: int = 0, most: int = 2**64 - 1) -> int:
    try:
        number = operator.index(value)
    except TypeError:
        raise ArgumentError(f"{argument}: a whole number is wanted, not {value!r:.60}", argument) from None
    if not least <= number <= most:
        raise ArgumentError(f"{argument}: {least} to {most} is possible; {number} is not", argument)
    return number


def number(value: Any, argument: str) -> float:
    try:
        return float(value)
    except (TypeError, ValueError, OverflowError):
        raise ArgumentError(f"{argument}: a number is wanted, not {value!r:.60}", argument) from None


def flags(value: Any, argument: str) -> Array:
    array = _asarray(value, argument, "an array of bool is wanted")
    if array.dtype.kind != "b" or array.ndim != 1:
        _refuse(argument, f"{_kind(array)} of shape {array.shape}", "an array of bool is wanted")
    return _in_place(array, BOOL)


def vector(value: Any, argument: str) -> list[float]:
    """Three numbers."""
    array = reals(value, argument, (), F32, "three numbers are wanted")
    if len(array) != 3:
        _refuse(argument, f"shape {array.shape}", "three numbers are wanted", "length")
    numbers: list[float] = array.tolist()
    return numbers
