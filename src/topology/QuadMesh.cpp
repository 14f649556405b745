#include <Tessary/Topology.h>

#include "base/Assert.h"
#include "base/CountingSort.h"
#include "base/FanTransfer.h"
#include "base/MeshLayout.h"
#include "base/ParallelReduce.h"
#include "base/Prefetch.h"

#include <algorithm>
#include <limits>
#include <vector>

//            c
//          /   \            corner a of a triangle has the quad (a, ab, m, ca), b and c likewise.
//        ca     bc
//       /  \   /  \         ab, bc, ca: one new point per edge, two on a creased edge
//      /     m     \        m: one inner point, more where creases separate corners
//     a -----ab---- b
//
// The edge table lists edges by point, so the quads of one edge may lie anywhere: writes to them are
// scattered, and prefetched.

namespace Tessary {
namespace {

// 1 M triangles in random order: 75 ms without, 44 with, creased 116 and 90; 16 and 256 ahead within 5 %.
constexpr std::size_t kEntriesAhead = 64;

bool isCrease(float weight)
{
    return weight < std::numeric_limits<float>::max();  // false for NaN, too
}

bool isCrease(bool flag)
{
    return flag;
}

// How many inner points a triangle gets, and which of them the quad of each corner uses. The corner
// cut off between two creased edges takes the first.
struct InnerPoints {
    uint count;
    uint choice[3];
};

// By the creased marks of the edges that leave corners 0, 1 and 2, as bits 0, 1 and 2.
constexpr InnerPoints kInnerPoints[8] = {
    {1, {0, 0, 0}}, {1, {0, 0, 0}}, {1, {0, 0, 0}}, {2, {1, 0, 1}},
    {1, {0, 0, 0}}, {2, {0, 1, 1}}, {2, {1, 1, 0}}, {3, {0, 1, 2}},
};

// Gives the new points of one edge to the quads of its half-edge at `corner`: `leaving` next to the
// corner's own point, `arriving` next to the following corner's.
void setEdgePoints(uint corner, uint leaving, uint arriving, Array<uint>& quadFaceVertex)
{
    quadFaceVertex[std::size_t{4} * corner + 1] = leaving;
    quadFaceVertex[std::size_t{4} * nextCorner(corner) + 3] = arriving;
}

// Whether `other` runs along the edge of `corner` the opposite way.
bool isOpposite(const Array<uint>& triFaceVertex, uint corner, uint other)
{
    return triFaceVertex[other] == triFaceVertex[nextCorner(corner)] &&
           triFaceVertex[nextCorner(other)] == triFaceVertex[corner];
}

// Numbers new points in parallel as one pass over [0, size) would: `count(begin, end)` counts those of
// a block, an exclusive scan makes these the blocks' first numbers, and `number(begin, end, first)`
// numbers them. Returns the next unused number.
template <class Count, class Number>
uint numberInBlocks(std::size_t size, uint next, const Count& count, const Number& number)
{
    constexpr std::size_t kBlock = 16384;  // 2,048 and 131,072: within 3 %
    const uint blockCount = static_cast<uint>((size + kBlock - 1) / kBlock);
    const auto endOf = [size](uint block) { return std::min((block + 1) * kBlock, size); };

    std::vector<uint> first(blockCount);
    parallelForEachPiece(blockCount, LoopContext::Isolated,
                         [&](uint block) { first[block] = count(block * kBlock, endOf(block)); });
    const uint total = exclusiveScan(first.data(), first.size());
    parallelForEachPiece(blockCount, LoopContext::Isolated, [&](uint block) {
        number(block * kBlock, endOf(block), next + first[block]);
    });
    return next + total;
}

// Marks the corners whose leaving edge is creased, and numbers the edge points from `next` on. Every
// corner stands once in the table, so no two edges write to one place.
template <class Crease>
uint numberEdgePoints(const Array<uint>& triFaceVertex, const Array<uint>& triEdges,
                      const Array<Crease>& creases, uint next, Array<bool>& isCreased,
                      Array<uint>& quadFaceVertex)
{
    const auto markAndCount = [&](std::size_t begin, std::size_t end) {
        uint count = 0;
        for (std::size_t e = begin; e < end; ++e) {
            const uint corner = triEdges[2 * e];
            const uint other = triEdges[2 * e + 1];
            const bool hasOther = other != kNone;
            const bool creased =
                isCrease(creases[corner]) ||
                (hasOther && isCrease(creases[other]) && isOpposite(triFaceVertex, corner, other));
            if (creased)
                isCreased[corner] = true;
            if (creased && hasOther)
                isCreased[other] = true;
            count += creased ? 2 : 1;
        }
        return count;
    };
    const auto number = [&](std::size_t begin, std::size_t end, uint first) {
        for (std::size_t e = begin; e < end; ++e) {
            for (const std::size_t i : {2 * e + kEntriesAhead, 2 * e + kEntriesAhead + 1})
                if (i < triEdges.size() && triEdges[i] != kNone)
                    TESSARY_PREFETCH(quadFaceVertex.data() + std::size_t{4} * triEdges[i]);
            const uint corner = triEdges[2 * e];
            const uint other = triEdges[2 * e + 1];
            const uint second = first + (isCreased[corner] ? 1 : 0);
            setEdgePoints(corner, first, second, quadFaceVertex);
            if (other != kNone)
                setEdgePoints(other, second, first, quadFaceVertex);
            first = second + 1;
        }
    };
    return numberInBlocks(triEdges.size() / 2, next, markAndCount, number);
}

const InnerPoints& innerPointsOf(const Array<bool>& isCreased, std::size_t triangle)
{
    const bool* const mark = isCreased.data() + 3 * triangle;
    return kInnerPoints[mark[0] | mark[1] << 1 | mark[2] << 2];
}

// Sets the points at the corners and numbers the inner points from `next` on.
uint numberInnerPoints(const Array<uint>& triFaceVertex, const Array<bool>& isCreased, uint next,
                       Array<uint>& quadFaceVertex)
{
    const auto count = [&](std::size_t begin, std::size_t end) {
        uint sum = 0;
        for (std::size_t t = begin; t < end; ++t)
            sum += innerPointsOf(isCreased, t).count;
        return sum;
    };
    const auto number = [&](std::size_t begin, std::size_t end, uint first) {
        for (std::size_t t = begin; t < end; ++t) {
            const InnerPoints& inner = innerPointsOf(isCreased, t);
            for (std::size_t k = 0; k < 3; ++k) {
                uint* const quad = quadFaceVertex.data() + 4 * (3 * t + k);
                quad[0] = triFaceVertex[3 * t + k];
                quad[2] = first + inner.choice[k];
            }
            first += inner.count;
        }
    };
    return numberInBlocks(triFaceVertex.size() / 3, next, count, number);
}

[[maybe_unused]] bool namesCornersAtMostOnce(const Array<uint>& triEdges, std::size_t cornerCount)
{
    std::vector<bool> isNamed(cornerCount);
    for (std::size_t i = 0; i < triEdges.size() / 2 * 2; ++i) {
        const uint corner = triEdges[i];
        if (corner == kNone && i % 2 == 1)
            continue;
        if (corner >= cornerCount || isNamed[corner])
            return false;
        isNamed[corner] = true;
    }
    return true;
}

template <class Crease>
bool hasCrease(const Array<Crease>& creases)
{
    const Crease* const values = creases.data();
    return parallelAny(creases.size(), [values](std::size_t i) { return isCrease(values[i]); });
}

// Whether the table names all corners of the triangles, each of which it names at most once.
bool namesEveryCorner(const Array<uint>& triEdges, std::size_t triangleCount)
{
    const std::size_t edgeCount = triEdges.size() / 2;
    const uint* const edges = triEdges.data();
    const uint paired =
        parallelCount(edgeCount, [edges](std::size_t e) { return edges[2 * e + 1] != kNone; });
    return edgeCount + paired == 3 * triangleCount;
}

// Calls `visit(t)` for every triangle, in parallel, where it reads entries 9 n + 3 t of an array and
// writes 12 t up to 12 t + 11. A round ends where it would write what it has yet to read:
//
//   | q0 q1 q2 ...                          | e0 e1 e2 ... |        n = 8
//     round 1: 6 triangles ---------------->                        12 * 6 = 9 * 8
//                                            round 2: 1, then 1     3/4 of what is left each time
template <class Visit>
void forEachTriangleBeforeItsTwelve(uint triangleCount, const Visit& visit)
{
    for (uint begin = 0; begin < triangleCount;) {
        const uint left = triangleCount - begin;
        const uint round = std::max(left - left / 4 - (left % 4 > 0 ? 1 : 0), 1u);
        parallelForEach(round, LoopContext::Isolated, [=](uint i) { visit(begin + i); });
        begin += round;
    }
}

void setEdgePoint(uint corner, uint point, uint* edgePoints)
{
    if (corner != kNone)
        edgePoints[corner] = point;
}

// The quads where every edge has one point. The points are first scattered by corner into the last
// quarter of the quads, which is needed last: a scatter of 4 bytes per corner instead of two per edge
// into four times the memory.
uint smoothQuadMesh(const Array<uint>& triFaceVertex, const Array<uint>& triEdges, uint firstIndex,
                    Array<uint>& quadFaceVertex)
{
    const auto edgeCount = static_cast<uint>(triEdges.size() / 2);
    const auto triangleCount = static_cast<uint>(triFaceVertex.size() / 3);
    uint* const quads = quadFaceVertex.data();
    uint* const edgePoints = quads + std::size_t{9} * triangleCount;
    const auto scatter = [edgePoints, firstIndex, edgeCount, &triEdges](uint begin, uint end) {
        const uint* const entry = triEdges.data();
        // Caches hold what belongs to few edges: 1,000 triangles 7.6 us, with prefetches 9.2.
        const std::size_t endOfAhead =
            edgeCount > kFewIndices ? triEdges.size() - kEntriesAhead : 0;
        std::size_t i = std::size_t{2} * begin;
        for (; i < std::min<std::size_t>(std::size_t{2} * end, endOfAhead); ++i) {
            if (entry[i + kEntriesAhead] != kNone)
                TESSARY_PREFETCH(edgePoints + entry[i + kEntriesAhead]);
            setEdgePoint(entry[i], firstIndex + static_cast<uint>(i / 2), edgePoints);
        }
        for (; i < std::size_t{2} * end; ++i)
            setEdgePoint(entry[i], firstIndex + static_cast<uint>(i / 2), edgePoints);
    };
    parallelLoop(0, edgeCount, 1, LoopContext::Isolated, scatter, kFewIndices);
    const uint firstInner = firstIndex + edgeCount;
    forEachTriangleBeforeItsTwelve(triangleCount, [=, &triFaceVertex](uint t) {
        const uint* const from = edgePoints + std::size_t{3} * t;
        const uint edgePoint[3] = {from[0], from[1], from[2]};
        uint* const quad = quads + std::size_t{12} * t;
        for (std::size_t k = 0; k < 3; ++k) {
            quad[4 * k] = triFaceVertex[std::size_t{3} * t + k];
            quad[4 * k + 1] = edgePoint[k];
            quad[4 * k + 2] = firstInner + t;
            quad[4 * k + 3] = edgePoint[previousCorner(static_cast<uint>(k))];
        }
    });
    return firstInner + triangleCount;
}

template <class Crease>
uint quadMesh(const Array<uint>& triFaceVertex, const Array<uint>& triEdges,
              const Array<Crease>& creases, uint firstIndex, Array<uint>& quadFaceVertex)
{
    quadFaceVertex.resize(4 * triFaceVertex.size());
    TESSARY_ASSERT(
        namesCornersAtMostOnce(triEdges, triFaceVertex.size()),
        "a corner stands twice in the table of edges, or beyond all " << triFaceVertex.size());
    TESSARY_ASSERT(
        triEdges.size() < 2 || triFaceVertex.size() <= creases.size(),
        "creases for " << creases.size() << " of " << triFaceVertex.size() << " corners");
    if (!hasCrease(creases) && namesEveryCorner(triEdges, triFaceVertex.size() / 3))
        return smoothQuadMesh(triFaceVertex, triEdges, firstIndex, quadFaceVertex);
    Array<bool> isCreased(triFaceVertex.size());
    const uint next =
        numberEdgePoints(triFaceVertex, triEdges, creases, firstIndex, isCreased, quadFaceVertex);
    return numberInnerPoints(triFaceVertex, isCreased, next, quadFaceVertex);
}

}  // namespace

uint computeQuadMesh(const Array<uint>& triFaceVertex, const Array<uint>& triEdges,
                     const Array<float>& creaseWeights, uint firstIndex,
                     Array<uint>& quadFaceVertex)
{
    return quadMesh(triFaceVertex, triEdges, creaseWeights, firstIndex, quadFaceVertex);
}

uint computeQuadMesh(const Array<uint>& triFaceVertex, const Array<uint>& triEdges,
                     const Array<bool>& creaseFlags, uint firstIndex, Array<uint>& quadFaceVertex)
{
    return quadMesh(triFaceVertex, triEdges, creaseFlags, firstIndex, quadFaceVertex);
}

void quadFaceIndexedInterpolation(const Array<uint>& faceOffset, const Array<uint>& faceValues,
                                  Array<uint>& quadFaceValues)
{
    const uint* const in = faceValues.data();
    uint* const out = quadFaceValues.data();
    forEachFan(faceOffset, LoopContext::Isolated, [&, in, out](uint face, Fan fan) {
        TESSARY_ASSERT(fan.begin == fan.end || (face < faceValues.size() &&
                                                std::size_t{3} * fan.end <= quadFaceValues.size()),
                       "face " << face << " of " << faceValues.size() << ", triangle " << fan.end
                               << " of " << quadFaceValues.size() / 3);
        for (std::size_t t = fan.begin; t < fan.end; ++t)
            out[3 * t] = out[3 * t + 1] = out[3 * t + 2] = in[face];
    });
}

}  // namespace Tessary
