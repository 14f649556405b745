#pragma once

#include "base/MeshLayout.h"

#include <cstddef>

namespace Tessary {

/// A triangle mesh with its dual table: for each point, the list of the corners that name it.
struct TriangleDual {
    const uint* faceVertex;
    std::size_t cornerCount;
    const uint* offset;  ///< one more than points, none beyond the corners of the lists
    std::size_t pointCount;
    const uint* corners;

    /// No corners where the offsets decrease.
    std::size_t listSize(uint point) const
    {
        const uint begin = offset[point];
        const uint end = offset[std::size_t{point} + 1];
        return end > begin ? end - begin : 0;
    }

    /// The point that follows a corner in its triangle; kNone where an incomplete last one lacks it.
    uint pointAfter(uint corner) const
    {
        const uint next = nextCorner(corner);
        return next < cornerCount ? faceVertex[next] : kNone;
    }
};

/// The half-edge of a triangle between two points.
struct DirectedEdge {
    uint triangle;
    uint start;
    uint end;
};

}  // namespace Tessary
