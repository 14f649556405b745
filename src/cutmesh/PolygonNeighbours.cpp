#include "cutmesh/PolygonNeighbours.h"

#include <Tessary/Topology.h>

#include "base/FanTransfer.h"
#include "base/MeshLayout.h"
#include "base/ParallelLoop.h"

//   o+2 --- o+1                  of a fan's triangles, the edges at corner 1 all belong to the polygon,
//   | 1 .    |                   those at corner 0 and 2 only in the first and the last; the others are
//   |   . 0  |                   inner diagonals
//   o+3 ---- o

namespace Tessary {
namespace {

// Which edges of a fan's triangle belong to the polygon besides the middle one.
struct OuterEdges {
    bool hasFirst, hasLast;
};

Array<OuterEdges> outerEdgesOf(const Array<uint>& faceOffset, std::size_t triangleCount)
{
    Array<OuterEdges> outer(triangleCount, OuterEdges{false, false});
    OuterEdges* const out = outer.data();
    forEachFan(faceOffset, LoopContext::Isolated, [out](uint, Fan fan) {
        if (fan.begin == fan.end)
            return;
        out[fan.begin].hasFirst = true;
        out[fan.end - 1].hasLast = true;
    });
    return outer;
}

// The first corner of a triangle whose half-edge runs from `start` to `end`.
uint cornerOfHalfEdge(const uint* faceVertex, uint triangle, uint start, uint end)
{
    uint corner = 3 * triangle;
    while (corner < 3 * triangle + 2 &&
           !(faceVertex[corner] == start && faceVertex[nextCorner(corner, triangle)] == end))
        ++corner;
    return corner;
}

}  // namespace

Array<uint> polygonNeighbours(const Array<uint>& faceOffset, const Array<uint>& triFaceVertex,
                              const Array<uint>& dualOffset, const Array<uint>& dualCorner)
{
    Array<uint> neighbours;
    populateAdjacentTri(triFaceVertex, dualOffset, dualCorner, neighbours);
    const std::size_t triangleCount = triFaceVertex.size() / 3;
    const Array<OuterEdges> outer = outerEdgesOf(faceOffset, triangleCount);
    const uint* const points = triFaceVertex.data();
    uint* const out = neighbours.data();
    parallelForEach(static_cast<uint>(triangleCount), LoopContext::Isolated, [&](uint triangle) {
        for (uint corner = 3 * triangle; corner < 3 * triangle + 3; ++corner) {
            const uint other = out[corner];
            if (other >= triangleCount) {  // none, or the incomplete last triangle
                out[corner] = kNone;
                continue;
            }
            const uint opposite = cornerOfHalfEdge(
                points, other, points[nextCorner(corner, triangle)], points[corner]);
            const bool isInner = (opposite == 3 * other && !outer[other].hasFirst) ||
                                 (opposite == 3 * other + 2 && !outer[other].hasLast);
            out[corner] = isInner ? kNone : opposite;
        }
    });
    return neighbours;
}

}  // namespace Tessary
