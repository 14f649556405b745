#include <Tessary/HalfEdge.h>

#include "base/Assert.h"
#include "base/MeshLayout.h"

#include <algorithm>

// The half-edges of a polygon f and of its fan; t is the fan's first triangle, offset[f] - 2 f:
//
//   the one at the first corner          corner 0 of triangle t
//   at the ith corner in between         corner 1 of triangle t + i - 1, which has it in the middle
//   at the last corner                   corner 2 of the fan's last triangle
//   none: an inner diagonal              corner 0 or 2 of any other triangle

namespace Tessary {
namespace {

// The last face whose first triangle is not after `triangle`; kNone where there is none.
uint faceOfTriangle(const Array<uint>& faceOffset, uint triangle)
{
    uint low = 0;
    uint high = faceOffset.size() > 1 ? static_cast<uint>(faceOffset.size()) - 1 : 0;
    while (low < high) {
        const uint middle = low + (high - low) / 2;
        if (firstFanTriangle(faceOffset[middle], middle) > triangle)
            high = middle;
        else
            low = middle + 1;
    }
    return low - 1;
}

}  // namespace

HalfEdge polyEdgeToTriEdge(const Array<uint>& faceOffset, HalfEdge polyEdge)
{
    const uint corner = polyEdge.faceVertex;
    const uint face = polyEdge.face;
    TESSARY_ASSERT(std::size_t{face} + 1 < faceOffset.size(),
                   "face " << face << " of " << faceOffset.size() - 1);

    if (corner == faceOffset[face]) {
        const uint triangle = corner - 2 * face;
        return {3 * triangle, triangle};
    }
    if (corner == faceOffset[face + 1] - 1) {
        const uint triangle = corner - 2 * face - 2;
        return {3 * triangle + 2, triangle};
    }
    const uint triangle = corner - 2 * face - 1;
    return {3 * triangle + 1, triangle};
}

HalfEdge triEdgeToPolyEdge(const Array<uint>& faceOffset, HalfEdge triEdge)
{
    const uint corner = triEdge.faceVertex;
    const uint triangle = triEdge.face;
    const uint face = faceOfTriangle(faceOffset, triangle);
    const uint k = corner - 3 * triangle;
    if (face == kNone)  // no faces, no offsets to look at
        return {k == 0 || k == 2 ? kNone : corner + 2 * (face - triangle), face};
    const bool isFirst = triangle == firstFanTriangle(faceOffset[face], face);
    const bool isLast = triangle == faceOffset[face + 1] - 2 * face - 3;
    if ((k == 0 && !isFirst) || (k == 2 && !isLast))
        return {kNone, face};
    return {corner + 2 * (face - triangle), face};
}

HalfEdge findAdjacentHalfEdge(const Array<uint>& triFaceVertex, const Array<uint>& dualFaceOffset,
                              const Array<uint>& dualFaceVertex, HalfEdge triEdge)
{
    // The corner after one of an incomplete last triangle may lie outside the array.
    const std::size_t cornerCount = triFaceVertex.size();
    const uint next = nextCorner(triEdge.faceVertex, triEdge.face);
    if (next >= cornerCount)
        return {kNone, kNone};

    TESSARY_ASSERT(triEdge.faceVertex < cornerCount,
                   "corner " << triEdge.faceVertex << " of " << cornerCount);
    const uint start = triFaceVertex[triEdge.faceVertex];
    const uint end = triFaceVertex[next];
    TESSARY_ASSERT(
        std::size_t{end} + 1 < dualFaceOffset.size(),
        "corner " << next << " names point " << end << " of " << dualFaceOffset.size() - 1);
    // A dual that was built twice has offsets beyond its corners.
    const std::size_t listEnd =
        std::min<std::size_t>(dualFaceOffset[std::size_t{end} + 1], dualFaceVertex.size());
    for (std::size_t slot = dualFaceOffset[end]; slot < listEnd; ++slot) {
        const uint corner = dualFaceVertex[slot];
        const uint triangle = corner / 3;
        const uint after = nextCorner(corner, triangle);
        if (triangle != triEdge.face && after < cornerCount && triFaceVertex[after] == start)
            return {corner, triangle};
    }
    return {kNone, kNone};
}

}  // namespace Tessary
