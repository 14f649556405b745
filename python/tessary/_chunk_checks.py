"""What is wrong with a mesh whose arrays are read in pieces: the report of `tessary.validate`, word for word.

Offsets, corners, points and indices are looked at range by range, faces span by span. Edges are brought together by an
external sort: each span of faces leaves a sorted run of its sides in a scratch folder, and then ranges of keys that fit
into memory are gathered from all runs.

    key    larger point << 32 | smaller point
    value  corner << 2 | whether it lies inside a face << 1 | whether the side descends
"""

from __future__ import annotations

import os
import tempfile
from collections.abc import Iterable
from typing import Any, Optional

import numpy as np

from . import arrays
from ._chunk_concave import concave_faces
from ._chunk_parts import BYTES_PER_CORNER, MOST_PLACES, FaceSpan, Parts, face_spans
from ._convert import Array
from ._errors import OutOfMemory
from ._rows import Rows, Span, run
from .geometry import NONE
from .report import Report, make_report

_MOST_SIDES = 4
_PAIRWISE_FACE_SIZE = 8
_BYTES_PER_SIDE = 96  # of a range while its edges are looked at

#: How often something was found, and numbers about the first few.
_Found = tuple[int, list[tuple[Any, ...]]]


def _first(where: Array, *columns: Array) -> _Found:
    some = where[:MOST_PLACES]
    return len(where), list(zip(some.tolist(), *(column[:MOST_PLACES].tolist() for column in columns)))


def _total(found: Iterable[_Found]) -> _Found:
    count = 0
    places: list[tuple[Any, ...]] = []
    for more, some in found:
        count += more
        places += some[:MOST_PLACES - len(places)]
    return count, places


# What a task does: looks at one range, and returns _Found.

def _falling(offsets: Rows, begin: int, end: int) -> _Found:
    here = offsets.read(begin, end + 1)
    falls = np.flatnonzero(here[1:] < here[:-1])
    return _first(falls + begin, here[falls], here[falls + 1])


def _small(offsets: Rows, begin: int, end: int) -> _Found:
    sizes = np.diff(offsets.read(begin, end + 1).astype(np.int64))
    small = np.flatnonzero((sizes >= 0) & (sizes < 3))
    return _first(small + begin, sizes[small])


def _outside(indices: Rows, begin: int, end: int, count: int, none_is_allowed: bool) -> _Found:
    here = indices.read(begin, end)
    bad = here >= min(count, NONE)
    if none_is_allowed:
        bad &= here != NONE
    where = np.flatnonzero(bad)
    return _first(where + begin, here[where])


def _not_finite(points: Rows, begin: int, end: int) -> _Found:
    here = points.read(begin, end)
    where = np.flatnonzero(~np.isfinite(here).all(axis=1))
    return _first(where + begin, here[where])


def _repeated(parts: Parts, span: FaceSpan) -> _Found:
    corners = parts.corners.read(span.first_corner, span.end_corner)
    offsets = parts.offsets.read(span.first, span.end + 1).astype(np.int64)
    real = np.flatnonzero((offsets[:-1] <= offsets[1:]) & (offsets[1:] <= len(parts.corners)))
    starts, sizes = offsets[real] - span.first_corner, (offsets[1:] - offsets[:-1])[real]
    faces = np.repeat(np.arange(len(real)), sizes)
    places = np.arange(len(faces)) + np.repeat(starts - (np.cumsum(sizes) - sizes), sizes)
    points = corners[places]
    keys = faces.astype(np.uint64) << np.uint64(32) | points
    order = np.argsort(keys, kind="stable")
    again = np.sort(order[1:][keys[order[1:]] == keys[order[:-1]]])
    # In large faces the kernel's check passes over what names no point.
    again = again[(sizes[faces[again]] <= _PAIRWISE_FACE_SIZE) | (points[again] < len(parts.points))]
    return _first(places[again] + span.first_corner, real[faces[again]] + span.first, points[again])


class _Words:
    """Turns findings into problems as the extension module tells them."""

    def __init__(self) -> None:
        self.problems: list[tuple[Any, ...]] = []

    def add(self, severity: str, code: str, message: str, advice: str, count: int,
            places: list[tuple[str, str, int]]) -> None:
        if count:
            self.problems.append((severity, code, message, count, places[:MOST_PLACES], advice))


def _number_text(number: float) -> str:
    return f"-{abs(number):f}" if np.signbit(number) else f"{number:f}"


def _check_offsets(parts: Parts, spans: list[Span], client: Any, words: _Words) -> bool:
    count, falls = _total(run(_falling, ((parts.offsets, *span) for span in spans), client))
    sorted_, places = count == 0, []
    ends = [int(parts.offsets.read(at, at + 1)[0]) for at in (0, parts.face_count)] if len(parts.offsets) else []
    if not ends:
        places.append(("the list of offsets, which is empty and should hold a 0", "", 0))
    elif ends[0] != 0:
        places.append((f"face 0, which starts at corner {ends[0]}, not 0", "face", 0))
    count += len(places)
    places += [(f"face {face}, which starts at corner {start} and ends at {end}", "face", face)
               for face, start, end in falls]
    if ends and ends[1] != len(parts.corners):
        count += 1
        places.append((f"the end of the last face, which is {ends[1]} in a mesh of {len(parts.corners)} corners",
                       "", 0))
    words.add("error", "offset-order", "face offsets that are not a rising list of corners",
              "write the faces again, one after the other", count, places)
    return sorted_ and bool(ends) and len(parts.offsets) > 0


def _check_elements(parts: Parts, bytes_at_once: int, client: Any, words: _Words) -> None:
    spans = Rows.spans(parts.offsets, bytes_at_once // 8)
    faces = [(begin, min(end, parts.face_count)) for begin, end in spans if begin < parts.face_count]
    is_sorted = _check_offsets(parts, faces, client, words)
    count, small = _total(run(_small, ((parts.offsets, *span) for span in faces), client))
    words.add("error", "small-face", "faces of fewer than three corners", "remove them or give them three corners",
              count, [(f"face {face}, which has {size}", "face", face) for face, size in small])

    def name(corner: int) -> str:
        face = _face_of(parts.offsets, corner) if is_sorted else None
        return f"corner {corner}" if face is None else f"corner {corner} of face {face}"

    point_count = len(parts.points)
    count, wrong = _total(run(_outside, ((parts.corners, *span, point_count, False)
                                         for span in parts.corners.spans(bytes_at_once // 4)), client))
    words.add("error", "index-out-of-range", "corners that name no point",
              "add the missing points or correct the faces", count,
              [(f"{name(corner)}, which names point {point} of {point_count}", "corner", corner)
               for corner, point in wrong])
    count, wrong = _total(run(_not_finite, ((parts.points, *span)
                                            for span in parts.points.spans(bytes_at_once // 4)), client))
    words.add("error", "point-not-finite", "points that are not finite", "give every point three finite coordinates",
              count, [(f"point {point} ({' '.join(map(_number_text, place))})", "point", point)
                      for point, place in wrong])


def _face_of(offsets: Rows, corner: int, triangles: bool = False) -> Optional[int]:
    """The face that a corner, or a fan triangle, lies in."""
    def start(face: int) -> int:
        return int(offsets.read(face, face + 1)[0]) - (2 * face if triangles else 0)

    low, high = 0, len(offsets) - 1
    if not start(low) <= corner < start(high):
        return None
    while high - low > 1:
        middle = (low + high) // 2
        low, high = (middle, high) if start(middle) <= corner else (low, middle)
    return low


def _check_indices(parts: Parts, bytes_at_once: int, client: Any, words: _Words) -> None:
    count, places = 0, []
    for name, (indices, values) in parts.indices.items():
        more, wrong = _total(run(_outside, ((indices, *span, values, True)
                                            for span in indices.spans(bytes_at_once // 4)), client))
        count += more
        places += [(f'entry {entry} of "{name}_index", which names value {value} of {values} in "{name}"', "", 0)
                   for entry, value in wrong]
    words.add("error", "property-index", "indices outside the values of their property",
              "add the missing values or correct the indices", count, places)


def _is_too_large(parts: Parts, words: _Words) -> bool:
    points, corners, faces = len(parts.points), len(parts.corners), parts.face_count
    triangles = max(0, corners - 2 * faces)
    if max(points, corners, faces, 3 * triangles) < NONE:
        return False
    words.add("error", "too-large", "more corners than 32-bit indices can name", "split the mesh into parts", 1,
              [(f"a mesh of {points} points, {corners} corners and {faces} faces, which makes {triangles} triangles",
                "", 0)])
    return True


# Edges: runs of sorted sides, and ranges of keys out of all runs.

def _sides(parts: Parts, span: FaceSpan, triangles: bool) -> tuple[Array, Array]:
    corners = parts.corners.read(span.first_corner, span.end_corner)
    starts = parts.offsets.read(span.first, span.end + 1) - np.uint32(span.first_corner)
    if triangles:
        fans = arrays.triangulate(np.arange(len(corners), dtype=np.uint32), starts)
        start = corners[fans].reshape(-1)
        end = corners[np.roll(fans, -1, axis=1)].reshape(-1)
        first = 3 * (span.first_corner - 2 * span.first)
        is_inner = np.zeros(fans.shape, np.bool_)
        is_inner[:, 0] = fans[:, 1] != fans[:, 0] + 1
        last = np.append(fans[1:, 0] != fans[:-1, 0], True)
        is_inner[:, 2] = ~last
        inner = is_inner.reshape(-1)
    else:
        following = np.arange(1, len(corners) + 1)
        following[starts[1:] - np.uint32(1)] = starts[:-1]
        start, end, first, inner = corners, corners[following], span.first_corner, np.zeros(1, np.bool_)
    larger = np.maximum(start, end)
    keys = larger.astype(np.uint64) << np.uint64(32) | np.minimum(start, end)
    values = np.arange(first, first + len(start), dtype=np.uint64) << np.uint64(2)
    values |= inner.astype(np.uint64) << np.uint64(1)
    values |= start == larger
    return keys, values


def _leave_run(parts: Parts, span: FaceSpan, triangles: bool, path: str, step: int) -> tuple[str, Array]:
    """Writes the sorted sides of a span, keys and then values. Returns every so manieth key."""
    keys, values = _sides(parts, span, triangles)
    order = np.argsort(keys, kind="stable")
    keys = keys[order]
    with open(path, "wb") as file:
        keys.tofile(file)
        values[order].tofile(file)
    return path, keys[::step].copy()


def _gather(paths: list[str], low: int, high: int, most: int) -> tuple[Array, Array]:
    """The sides with keys from `low` until `high`, by key and then by corner."""
    parts: list[tuple[Array, Array]] = []
    for path in paths:
        count = os.path.getsize(path) // 16
        mapped = np.memmap(path, np.uint64, "r", shape=(count,))
        begin, end = (int(at) for at in np.searchsorted(mapped, np.array([low, high], np.uint64)))
        del mapped
        parts.append((np.fromfile(path, np.uint64, end - begin, offset=8 * begin),
                      np.fromfile(path, np.uint64, end - begin, offset=8 * (count + begin))))
        most -= end - begin
        if most < 0:
            raise OutOfMemory(f"edge {low & NONE}-{low >> 32} has more faces than max_memory has room for")
    keys, values = (np.concatenate([part[at] for part in parts]) for at in (0, 1))
    order = np.argsort(keys, kind="stable")
    return keys[order], values[order]


def _look_at_edges(paths: list[str], low: int, high: int, most: int, triangles: bool) -> tuple[_Found, _Found]:
    """Edges whose sides run the same way, and of more than two faces."""
    keys, values = _gather(paths, low, high, most)
    heads = np.flatnonzero(np.append(True, keys[1:] != keys[:-1])) if len(keys) else np.zeros(0, np.int64)
    counts = np.diff(np.append(heads, len(keys)))
    edge = np.repeat(np.arange(len(heads)), counts)
    odd = (np.arange(len(keys)) - heads[edge]) % 2
    pairs = np.flatnonzero((odd[:-1] == 0) & (edge[1:] == edge[:-1]) & ((values[1:] ^ values[:-1]) & np.uint64(1) == 0))
    firsts = pairs[np.unique(edge[pairs], return_index=True)[1]]
    if triangles:
        firsts = firsts[(values[firsts] | values[firsts + 1]) & np.uint64(2) != 0]
    smaller, larger = keys & np.uint64(NONE), keys >> np.uint64(32)
    corners = values >> np.uint64(2)
    same = _first(smaller[firsts], larger[firsts], corners[firsts], corners[firsts + 1])
    many = np.flatnonzero((counts > 2) & (smaller[heads] != larger[heads]))
    at = heads[many[:MOST_PLACES]]
    shown = np.stack([corners[np.minimum(at + side, at + counts[many[:MOST_PLACES]] - 1)]
                      for side in range(_MOST_SIDES)], axis=1) if len(at) else np.zeros((0, _MOST_SIDES))
    return same, (len(many), list(zip(smaller[at].tolist(), larger[at].tolist(),
                                      counts[many[:MOST_PLACES]].tolist(), shown.tolist())))


def _edges(parts: Parts, triangles: bool, max_memory: int, client: Any, scratch: str) -> tuple[_Found, _Found]:
    spans = face_spans(parts, max(1, max_memory // (BYTES_PER_CORNER * (3 if triangles else 1))))
    most = max_memory // _BYTES_PER_SIDE
    step = max(1, most // (8 * max(1, len(spans))))
    paths, samples = [], []
    leaves = ((parts, span, triangles, os.path.join(scratch, f"{triangles}-{number}"), step)
              for number, span in enumerate(spans))
    for path, some in run(_leave_run, leaves, client):
        paths.append(path)
        samples.append(some)
    if not spans:
        return (0, []), (0, [])
    keys = np.sort(np.concatenate(samples))
    bounds = [0, *np.unique(keys[most // (2 * step)::max(1, most // (2 * step))]).tolist(), 2**64 - 1]
    ranges = ((paths, low, high, most, triangles) for low, high in zip(bounds[:-1], bounds[1:]))
    found = list(run(_look_at_edges, ranges, client))
    for path in paths:
        os.unlink(path)
    return _total(same for same, _ in found), _total(many for _, many in found)


def _check_edges(parts: Parts, max_memory: int, client: Any, scratch: str, words: _Words) -> None:
    def name(corner: int) -> str:
        return f"corner {corner} of face {_face_of(parts.offsets, corner)}"

    def sides(count: int, corners: list[int]) -> str:
        more = f" and {count - _MOST_SIDES} more" if count > _MOST_SIDES else ""
        return ", ".join(map(name, corners[:count])) + more

    (count, same), (many_count, many) = _edges(parts, False, max_memory, client, scratch)
    words.add("warning", "same-direction", "edges along which two faces run in one direction", "", count,
              [(f"edge {a}-{b}: {name(one)} and {name(other)} run the same way", "corner", one)
               for a, b, one, other in same])
    words.add("warning", "non-manifold-edge", "edges of more than two faces",
              "give further faces points of their own; the edge table pairs two and takes what is left over for "
              "boundaries", many_count,
              [(f"edge {a}-{b}: {sides(faces, corners)}", "corner", corners[0]) for a, b, faces, corners in many])
    if len(parts.corners) == 3 * parts.face_count:
        return
    (count, diagonals), _ = _edges(parts, True, max_memory, client, scratch)
    faces = [(a, b, *(_face_of(parts.offsets, corner // 3, triangles=True) for corner in (one, other)))
             for a, b, one, other in diagonals]
    words.add("warning", "diagonal-direction",
              "inner edges of faces split into triangles that run as another edge does", "", count,
              [(f"edge {a}-{b}: face {one} and face {other} run the same way", "face", one or 0)
               for a, b, one, other in faces])


def check(parts: Parts, max_memory: int, client: Any, scratch: Optional[str], edges: bool = True) -> Report:
    """The report; without `edges` that of errors and repeated corners alone."""
    words = _Words()
    if _is_too_large(parts, words):
        return make_report(words.problems)
    _check_elements(parts, max_memory, client, words)
    _check_indices(parts, max_memory, client, words)
    spans = face_spans(parts, max(1, max_memory // BYTES_PER_CORNER))
    count, again = _total(run(_repeated, ((parts, span) for span in spans), client))
    has_errors = bool(words.problems)
    words.add("warning", "repeated-corner", "corners that repeat a point of their face",
              "nothing, if flat or pinched triangles are welcome", count,
              [(f"corner {corner} of face {face}, which names point {point} again", "corner", corner)
               for corner, face, point in again])
    if edges and not has_errors:
        with tempfile.TemporaryDirectory(dir=scratch) as folder:
            _check_edges(parts, max_memory, client, folder, words)
        words.problems += concave_faces(parts, spans, client)
    return make_report(words.problems)
