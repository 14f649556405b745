#include "ops/CutPoints.h"

#include "base/Host.h"

namespace TessaryMesh {
namespace {

// The codes' lowest two bits.
enum Kind : uint { AtCorner, OnLeavingEdge, InTriangle, OnArrivingEdge };

// The triangles that share a point agree on where it lies, so the first one speaks for all. The two
// points of a creased edge are named by the same triangle, so that they get equal values.
void nameByFirstCorner(const Array<uint>& quadFaceVertex, Array<uint>& origins)
{
    for (std::size_t entry = 0; entry < quadFaceVertex.size(); ++entry) {
        uint& origin = origins[quadFaceVertex[entry]];
        if (origin == kNone)
            origin = static_cast<uint>(entry);  // corner << 2 | kind is the entry's own number
    }
}

void nameUnusedPoints(std::size_t sourcePointCount, CutPoints& cut)
{
    for (std::size_t point = 0; point < sourcePointCount; ++point) {
        if (cut.origins[point] != kNone)
            continue;
        cut.origins[point] = static_cast<uint>(cut.cornerPoint.size() << 2) | AtCorner;
        cut.cornerPoint.push_back(static_cast<uint>(point));
    }
}

// Both half-edges of an edge name the same place.
Array<float> edgeWeightsOf(const Array<uint>& triFaceVertex, float lower)
{
    const float higher = 1.0f - lower;
    Array<float> weights(triFaceVertex.size());
    for (std::size_t corner = 0; corner < weights.size(); ++corner) {
        const std::size_t next = corner % 3 == 2 ? corner - 2 : corner + 1;
        weights[corner] = triFaceVertex[corner] < triFaceVertex[next] ? lower : higher;
    }
    return weights;
}

}  // namespace

CutPoints cutPointsOf(const Array<uint>& triFaceVertex, const Array<uint>& quadFaceVertex,
                      std::size_t sourcePointCount, std::size_t pointCount,
                      const QuadOptions& options)
{
    CutPoints cut{triFaceVertex, Array<uint>(pointCount, kNone),
                  edgeWeightsOf(triFaceVertex, options.edgeWeight),
                  Array<float>(triFaceVertex.size())};
    for (std::size_t corner = 0; corner < triFaceVertex.size(); ++corner)
        cut.triangleWeights[corner] = options.innerWeights[corner % 3];
    nameByFirstCorner(quadFaceVertex, cut.origins);
    nameUnusedPoints(sourcePointCount, cut);
    return cut;
}

}  // namespace TessaryMesh
