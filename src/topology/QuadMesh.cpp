#include <Tessary/Topology.h>

#include "host/MeshLayout.h"
#include "host/ParallelLoop.h"
#include "host/Prefetch.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace Tessary {
namespace {

bool isCrease(float weight)
{
    return weight < std::numeric_limits<float>::max();  // false for NaN, too
}

bool isCrease(bool flag)
{
    return flag;
}

// The corner after another in its triangle.
uint after(uint corner)
{
    return nextCorner(corner, corner / 3);
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
    quadFaceVertex[std::size_t{4} * after(corner) + 3] = arriving;
}

// Whether `other` runs along the edge of `corner` the opposite way.
bool isOpposite(const Array<uint>& triFaceVertex, uint corner, uint other)
{
    return triFaceVertex[other] == triFaceVertex[after(corner)] &&
           triFaceVertex[after(other)] == triFaceVertex[corner];
}

// Numbers the edge points from `next` on, marks the corners whose leaving edge is creased, and
// returns the next unused number.
template <class Crease>
uint numberEdgePoints(const Array<uint>& triFaceVertex, const Array<uint>& triEdges,
                      const Array<Crease>& creases, uint next, Array<bool>& isCreased,
                      Array<uint>& quadFaceVertex)
{
    // The table lists edges by point, so their quads may lie anywhere: they are asked for early.
    constexpr std::size_t kAhead = 64;  // entries
    for (std::size_t e = 0; e + 1 < triEdges.size(); e += 2) {
        for (const std::size_t i : {e + kAhead, e + kAhead + 1})
            if (i < triEdges.size() && triEdges[i] != kNone)
                TESSARY_PREFETCH(quadFaceVertex.data() + std::size_t{4} * triEdges[i]);
        const uint corner = triEdges[e];
        const uint other = triEdges[e + 1];
        const bool hasOther = other != kNone;
        const bool creased =
            isCrease(creases[corner]) ||
            (hasOther && isCrease(creases[other]) && isOpposite(triFaceVertex, corner, other));
        const uint first = next++;
        const uint second = creased ? next++ : first;
        setEdgePoints(corner, first, second, quadFaceVertex);
        if (hasOther)
            setEdgePoints(other, second, first, quadFaceVertex);
        if (creased)
            isCreased[corner] = true;
        if (creased && hasOther)
            isCreased[other] = true;
    }
    return next;
}

const InnerPoints& innerPointsOf(const Array<bool>& isCreased, std::size_t triangle)
{
    const bool* const mark = isCreased.data() + 3 * triangle;
    return kInnerPoints[mark[0] | mark[1] << 1 | mark[2] << 2];
}

// Sets the points at the corners, numbers the inner points from `next` on, and returns the next
// unused number. Blocks of triangles are counted first, so that each can number its own.
uint numberInnerPoints(const Array<uint>& triFaceVertex, const Array<bool>& isCreased, uint next,
                       Array<uint>& quadFaceVertex)
{
    constexpr std::size_t kBlock = 16384;
    const std::size_t triangleCount = triFaceVertex.size() / 3;
    const uint blockCount = static_cast<uint>((triangleCount + kBlock - 1) / kBlock);
    const auto endOf = [&](uint block) { return std::min((block + 1) * kBlock, triangleCount); };

    std::vector<uint> first(std::size_t{blockCount} + 1, next);
    parallelForEach(blockCount, LoopContext::Isolated, [&](uint block) {
        uint count = 0;
        for (std::size_t t = block * kBlock; t < endOf(block); ++t)
            count += innerPointsOf(isCreased, t).count;
        first[block + 1] = count;
    });
    for (uint block = 0; block < blockCount; ++block)
        first[block + 1] += first[block];

    parallelForEach(blockCount, LoopContext::Isolated, [&](uint block) {
        uint point = first[block];
        for (std::size_t t = block * kBlock; t < endOf(block); ++t) {
            const InnerPoints& inner = innerPointsOf(isCreased, t);
            for (std::size_t k = 0; k < 3; ++k) {
                uint* const quad = quadFaceVertex.data() + 4 * (3 * t + k);
                quad[0] = triFaceVertex[3 * t + k];
                quad[2] = point + inner.choice[k];
            }
            point += inner.count;
        }
    });
    return first[blockCount];
}

template <class Crease>
uint quadMesh(const Array<uint>& triFaceVertex, const Array<uint>& triEdges,
              const Array<Crease>& creases, uint firstIndex, Array<uint>& quadFaceVertex)
{
    quadFaceVertex.resize(4 * triFaceVertex.size());
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
    if (faceOffset.empty())
        return;
    const uint* const offsets = faceOffset.data();
    const uint* const in = faceValues.data();
    uint* const out = quadFaceValues.data();
    parallelForEach(static_cast<uint>(faceOffset.size() - 1), LoopContext::Isolated,
                    [=](uint face) {
                        const Fan fan = fanOf(offsets, face);
                        for (std::size_t t = fan.begin; t < fan.end; ++t)
                            out[3 * t] = out[3 * t + 1] = out[3 * t + 2] = in[face];
                    });
}

}  // namespace Tessary
