#pragma once

// The vocabulary of a mesh: point, corner, face, and the fan of triangles that a face splits into.
//
// Corner c of a mesh names the point faceVertex[c]; face f owns the corners faceOffset[f] up to
// faceOffset[f + 1]. In a triangle mesh, corner k of triangle t is 3t + k.

#include "base/Host.h"

#include <cstdint>

namespace Tessary {

/// No such element: no twin, no neighbour, an unfilled slot.
inline constexpr uint kNone = 0xFFFFFFFF;

/// The corner after `corner` in triangle `triangle`.
inline uint nextCorner(uint corner, uint triangle)
{
    return corner + 1 < 3 * triangle + 3 ? corner + 1 : 3 * triangle;
}

/// The corner after `corner` in its triangle; of 0, 1 and 2 also the number of it in any triangle.
inline uint nextCorner(uint corner)
{
    return nextCorner(corner, corner / 3);
}

/// The corner before `corner` in its triangle, likewise.
inline uint previousCorner(uint corner)
{
    return corner % 3 > 0 ? corner - 1 : corner + 2;
}

/// The first triangle of face `face` whose first corner is `offset`, if every face before it has two
/// corners or more.
inline uint firstFanTriangle(uint offset, uint face)
{
    return offset - 2 * face;
}

/// The triangles [begin, end) of one face's fan. Triangle `begin + k` has the corners
/// `firstCorner`, `firstCorner + k + 1` and `firstCorner + k + 2`.
struct Fan {
    uint firstCorner;
    uint begin;
    uint end;
};

/// The fan of face `face`; empty where the face has fewer than three corners, its offsets decrease, or
/// faces before it have so few corners that its first triangle would have a negative number.
inline Fan fanOf(const uint* faceOffset, uint face)
{
    const uint first = faceOffset[face];
    const uint last = faceOffset[face + 1];
    const uint begin = firstFanTriangle(first, face);
    const bool isPolygon = std::int64_t{last} - first >= 3 && first / 2 >= face;
    return isPolygon ? Fan{first, begin, last - 2 * face - 2} : Fan{first, 0, 0};
}

}  // namespace Tessary
