"""The smallest sphere around points that are read in pieces: the kernel's steps, with its bits.

Welzl's smallest enclosing ball with Gaertner's pivots on a short list of points that proved to matter, as
src/primitives has it. A pass over the points only looks for the farthest one, and of equally far ones for the first,
so it does not matter how they are cut. All arithmetic is in the kernel's order: in double, and in float for the radius.
"""

from __future__ import annotations

from typing import Any, NamedTuple

import numpy as np

from ._convert import Array
from ._rows import Rows, Span, run

_Vector = tuple[float, float, float]
_LEAST_ORTHOGONAL = 2.0 ** -46
_BLOCK = 1 << 14  # points, within a core's cache
_MOST_SUPPORT = 4


class _Ball(NamedTuple):
    center: _Vector
    squared_radius: float

    def squared_distance(self, p: _Vector) -> float:
        return _squared_length(_minus(p, self.center))


def _minus(a: _Vector, b: _Vector) -> _Vector:
    return a[0] - b[0], a[1] - b[1], a[2] - b[2]


def _dot(a: _Vector, b: _Vector) -> float:
    return (a[0] * b[0] + a[1] * b[1]) + a[2] * b[2]


def _squared_length(v: _Vector) -> float:
    return _dot(v, v)


def _moved(start: _Vector, along: _Vector, by: float) -> _Vector:
    return start[0] + along[0] * by, start[1] + along[1] * by, start[2] + along[2] * by


def _quotient(a: float, b: float) -> float:
    with np.errstate(all="ignore"):
        return float(np.float64(a) / np.float64(b))


class _EnclosingBall:
    """The smallest ball around a short list of points, the latest that mattered first."""

    def __init__(self, entries: list[tuple[int, _Vector]]):
        self.entries = entries
        self.support_end = 0

    def move_to_front(self, index: int, point: _Vector) -> None:
        self.entries = [(index, point), *(entry for entry in self.entries if entry[0] != index)]

    def rebuilt(self) -> _Ball:
        self._ball = _Ball(self.entries[0][1], 0.0)
        self._levels: list[tuple[_Vector, float, _Ball]] = []
        self._enclose(len(self.entries))
        return self._ball

    def _push(self, point: _Vector) -> bool:
        if not self._levels:
            self._first = point
            level = ((0.0, 0.0, 0.0), 0.0, _Ball(point, 0.0))
        else:
            v = _minus(point, self._first)
            for _ in range(2):  # the second removes what rounding left
                for w, z, _ball in self._levels[1:]:
                    v = _moved(v, w, _quotient(-_dot(v, w), z))
            z = _squared_length(v)
            if not z >= _LEAST_ORTHOGONAL * self._ball.squared_radius:
                return False
            before = self._levels[-1][2]
            e = before.squared_distance(point) - before.squared_radius
            f = _quotient(e, 2.0 * z)
            level = (v, z, _Ball(_moved(before.center, v, f), before.squared_radius + e * f / 2.0))
        self._ball = level[2]
        self._levels.append(level)
        return True

    def _enclose(self, end: int) -> None:
        self.support_end = 0
        if len(self._levels) == _MOST_SUPPORT:
            return
        for i in range(end):
            point = self.entries[i][1]
            if not self._ball.squared_distance(point) > self._ball.squared_radius or not self._push(point):
                continue
            self._enclose(i)
            self._levels.pop()
            self.entries.insert(0, self.entries.pop(i))
            if i >= self.support_end:
                self.support_end += 1


def _farthest(points: Rows, begin: int, end: int, center: _Vector, at_least: float) -> tuple[int, float]:
    """The first of the farthest points that are farther than `at_least`, or -1. NaN is never found."""
    found, rows = -1, points.read(begin, end)
    with np.errstate(all="ignore"):
        for first in range(0, len(rows), _BLOCK):
            x, y, z = (rows[first:first + _BLOCK, axis].astype(np.float64) - center[axis] for axis in range(3))
            distances = (x * x + y * y) + z * z
            largest = float(np.fmax.reduce(distances))
            if largest > at_least:
                found, at_least = begin + first + int(np.argmax(distances == largest)), largest
    return found, at_least


def _largest(points: Rows, begin: int, end: int, center: Array) -> np.float32:
    largest, rows = np.float32(0), points.read(begin, end)
    with np.errstate(all="ignore"):
        for first in range(0, len(rows), _BLOCK):
            x, y, z = (rows[first:first + _BLOCK, axis] - center[axis] for axis in range(3))
            largest = np.fmax(largest, np.fmax.reduce((x * x + y * y) + z * z))
    return np.float32(largest)


def _point(points: Rows, index: int) -> _Vector:
    x, y, z = points.read(index, index + 1)[0].tolist()
    return x, y, z


def _pivot(entries: _EnclosingBall, ball: _Ball) -> tuple[_Ball, int, float]:
    """The entry farthest outside the ball, which is widened first where rounding left out what carries it."""
    radius = ball.squared_radius
    for _, point in entries.entries[:entries.support_end]:
        distance = ball.squared_distance(point)
        radius = distance if radius < distance else radius
    index, farthest = -1, radius
    for entry, point in entries.entries[entries.support_end:]:
        distance = ball.squared_distance(point)
        if distance > farthest:
            index, farthest = entry, distance
    return _Ball(ball.center, radius), index, farthest


def _center(points: Rows, spans: list[Span], client: Any) -> _Vector:
    ball = _Ball(_point(points, 0), 0.0)
    entries = _EnclosingBall([(0, ball.center), (1, _point(points, 1))])
    while True:
        before = ball
        ball, index, farthest = _pivot(entries, ball)
        passed = ((points, begin, end, ball.center, farthest) for begin, end in spans)
        for found, distance in run(_farthest, passed, client):
            if found >= 0 and distance > farthest:  # of equally far ones the first piece has the first
                index, farthest = found, distance
        if not farthest > ball.squared_radius:
            return ball.center
        entries.move_to_front(index, _point(points, index))
        ball = entries.rebuilt()
        if not ball.squared_radius > before.squared_radius:
            return before.center


def sphere(points: Rows, bytes_at_once: int, client: Any) -> tuple[Array, float]:
    if not len(points):
        return np.zeros(3, np.float32), 0.0
    spans = points.spans(bytes_at_once)
    with np.errstate(over="ignore"):
        middle = _center(points, spans, client) if len(points) > 1 else _point(points, 0)
        center = np.array(middle, np.float64).astype(np.float32)
    largest = max(run(_largest, ((points, begin, end, center) for begin, end in spans), client))
    return center, float(np.sqrt(largest))
