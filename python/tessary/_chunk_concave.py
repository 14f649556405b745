"""Concave faces of a mesh whose arrays are read in pieces, in the words of `tessary.validate`.

Faces are looked at span by span, each as a small mesh of the points that it needs. These are read in blocks, so that a
span whose points lie close together reads little more than them, and one with points from everywhere all points once.
"""

from __future__ import annotations

from typing import Any

import numpy as np

from . import _tessary
from ._chunk_parts import MOST_PLACES, FaceSpan, Parts
from ._convert import Array
from ._rows import Rows, run
from .geometry import Mesh

_BLOCK = 4096  # points


def _take(points: Rows, wanted: Array) -> Array:
    """The rows with these rising numbers."""
    taken = np.empty((len(wanted), 3), np.float32)
    blocks = np.unique(wanted // _BLOCK) if len(wanted) else wanted
    starts = np.searchsorted(wanted, blocks * _BLOCK)
    for block, start, end in zip(blocks.tolist(), starts, [*starts[1:], len(wanted)]):
        rows = points.read(block * _BLOCK, min((block + 1) * _BLOCK, len(points)))
        taken[start:end] = rows[wanted[start:end] - block * _BLOCK]
    return taken


def _look(parts: Parts, span: FaceSpan) -> list[Any]:
    """The problems of a span's faces, counted from the mesh's first face."""
    offsets = parts.offsets.read(span.first, span.end + 1).astype(np.int64)
    sizes = np.diff(offsets)
    faces = np.flatnonzero(sizes > 3)
    if not len(faces):
        return []
    corners = parts.corners.read(span.first_corner, span.end_corner)[np.repeat(sizes > 3, sizes)]
    wanted, corners = np.unique(corners, return_inverse=True)
    mesh = Mesh(_take(parts.points, wanted.astype(np.int64)), corners=corners,
                offsets=np.append(0, np.cumsum(sizes[faces])), check=False)
    return [(*problem[:4], [_renamed(place, int(faces[place[2]]) + span.first) for place in problem[4]], problem[5])
            for problem in _tessary.concave_faces(mesh._data)]


def _renamed(place: tuple[str, str, int], face: int) -> tuple[str, str, int]:
    text, element, index = place
    return f"face {face}" + text[len(f"face {index}"):], element, face


def concave_faces(parts: Parts, spans: list[FaceSpan], client: Any) -> list[tuple[Any, ...]]:
    """Problems as the extension module tells them, of a mesh without errors."""
    total: dict[str, tuple[Any, ...]] = {}
    for problems in run(_look, ((parts, span) for span in spans), client):
        for severity, code, message, count, places, advice in problems:
            before = total.get(code, (severity, code, message, 0, [], advice))
            total[code] = (severity, code, message, before[3] + count, (before[4] + places)[:MOST_PLACES], advice)
    return [total[code] for code in ("concave-face", "self-crossing-face") if code in total]
