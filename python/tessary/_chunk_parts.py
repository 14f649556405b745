"""A mesh whose arrays are read a range of rows at a time, and its faces in spans."""

from __future__ import annotations

from collections.abc import Iterator
from typing import NamedTuple

import numpy as np

from ._convert import Array
from ._errors import OutOfMemory
from ._rows import Rows

#: Of a kind of problem, in a report.
MOST_PLACES = 5
BYTES_PER_CORNER = 160  # of a span while its sides are sorted


class Parts(NamedTuple):
    """A mesh as it is read."""

    points: Rows
    corners: Rows
    offsets: Rows
    indices: dict[str, tuple[Rows, int]]  # by property, with the number of values

    @property
    def face_count(self) -> int:
        return max(0, len(self.offsets) - 1)


class FaceSpan(NamedTuple):
    """Faces, and the corners that all of them lie among."""

    first: int
    end: int
    first_corner: int
    end_corner: int


def face_spans(parts: Parts, most_corners: int) -> list[FaceSpan]:
    """All faces in spans of so many corners. Raises OutOfMemory for a face that has more."""
    spans: list[FaceSpan] = []
    for begin in range(0, parts.face_count, most_corners):
        end = min(begin + most_corners, parts.face_count)
        offsets = parts.offsets.read(begin, end + 1).astype(np.int64)
        spans += _split(offsets, begin, len(parts.corners), most_corners)
    return spans


def _split(offsets: Array, first: int, corner_count: int, most: int) -> Iterator[FaceSpan]:
    starts, ends, count = offsets[:-1], offsets[1:], len(offsets) - 1
    real = (starts <= ends) & (ends <= corner_count)
    low, high = (int(starts[real].min()), int(ends[real].max())) if real.any() else (0, 0)
    if high - low <= most:
        yield FaceSpan(first, first + count, low, high)
    elif count == 1:
        raise OutOfMemory(f"face {first} has {high - low} corners, more than max_memory has room for",
                          (high - low) * BYTES_PER_CORNER)
    else:
        middle = count // 2
        yield from _split(offsets[:middle + 1], first, corner_count, most)
        yield from _split(offsets[middle:], first + middle, corner_count, most)
