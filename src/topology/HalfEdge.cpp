#include <Tessary/HalfEdge.h>

#include "base/MeshLayout.h"

#include <algorithm>

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

    if (corner == faceOffset[face]) {  // corner 0 of the first triangle
        const uint triangle = corner - 2 * face;
        return {3 * triangle, triangle};
    }
    if (corner == faceOffset[face + 1] - 1) {  // corner 2 of the last triangle
        const uint triangle = corner - 2 * face - 2;
        return {3 * triangle + 2, triangle};
    }
    const uint triangle = corner - 2 * face - 1;  // the triangle that has it in the middle
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

    const uint start = triFaceVertex[triEdge.faceVertex];
    const uint end = triFaceVertex[next];
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
