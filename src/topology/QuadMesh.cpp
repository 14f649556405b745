#include <Tessary/Topology.h>

#include "host/Arrays.h"
#include "host/MeshLayout.h"
#include "host/ParallelLoop.h"

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

void setCornerPoints(const Array<uint>& triFaceVertex, Array<uint>& quadFaceVertex)
{
    const uint* const in = triFaceVertex.data();
    uint* const out = quadFaceVertex.data();
    parallelForEach(static_cast<uint>(triFaceVertex.size() / 3), LoopContext::Isolated,
                    [in, out](uint triangle) {
                        const std::size_t corner = std::size_t{3} * triangle;
                        for (std::size_t c = corner; c < corner + 3; ++c)
                            out[4 * c] = in[c];
                    });
}

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
    for (std::size_t e = 0; e + 1 < triEdges.size(); e += 2) {
        const uint corner = triEdges[e];
        const uint other = triEdges[e + 1];
        const bool creased =
            isCrease(creases[corner]) || (other != kNone && isCrease(creases[other]) &&
                                          isOpposite(triFaceVertex, corner, other));

        const uint first = next++;
        const uint second = creased ? next++ : first;
        isCreased[corner] |= creased;
        setEdgePoints(corner, first, second, quadFaceVertex);
        if (other != kNone) {
            isCreased[other] |= creased;
            setEdgePoints(other, second, first, quadFaceVertex);
        }
    }
    return next;
}

uint numberInnerPoints(const Array<bool>& isCreased, uint next, Array<uint>& quadFaceVertex)
{
    for (std::size_t corner = 0; corner + 2 < isCreased.size(); corner += 3) {
        const InnerPoints& inner = kInnerPoints[isCreased[corner] | isCreased[corner + 1] << 1 |
                                                isCreased[corner + 2] << 2];
        for (int k = 0; k < 3; ++k)
            quadFaceVertex[4 * (corner + k) + 2] = next + inner.choice[k];
        next += inner.count;
    }
    return next;
}

template <class Crease>
uint quadMesh(const Array<uint>& triFaceVertex, const Array<uint>& triEdges,
              const Array<Crease>& creases, uint firstIndex, Array<uint>& quadFaceVertex)
{
    quadFaceVertex.resize(4 * triFaceVertex.size());
    setCornerPoints(triFaceVertex, quadFaceVertex);
    Array<bool> isCreased(triFaceVertex.size());
    const uint next =
        numberEdgePoints(triFaceVertex, triEdges, creases, firstIndex, isCreased, quadFaceVertex);
    return numberInnerPoints(isCreased, next, quadFaceVertex);
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
