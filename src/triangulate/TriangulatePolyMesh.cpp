#include <Tessary/Triangulation.h>

#include "base/ParallelLoop.h"
#include "base/PropertyAccess.h"

#include <algorithm>

namespace Tessary {
namespace {

// The target's own positions; copied in parallel, which is where fresh memory costs least.
MutablePtr<Array<float3>> copyOfPoints(const Array<float3>& points)
{
    MutablePtr<Array<float3>> copy = makeMutable<Array<float3>>(points.size());
    const float3* const in = points.data();
    float3* const out = copy->data();
    parallelLoop(
        0, static_cast<uint>(points.size()), 1, LoopContext::Isolated,
        [in, out](uint begin, uint end) { std::copy(in + begin, in + end, out + begin); },
        kFewCopies);
    return copy;
}

}  // namespace

bool triangulatePolyMesh(const Object& source, const Array<String>& propertyNames, Object& target)
{
    Geometry::populateMesh(target);
    if (Geometry::getElementCount(source, Geometry::sFaceComp) == 0)
        return true;

    const auto faceOffsets = getDataArray<uint>(source, Geometry::sFaceOffset);
    const auto points = getDataArray<float3>(source, Geometry::sPointPosition);
    const auto faceVertices = getDataArray<uint>(source, Geometry::sFaceVertex);
    if (!faceOffsets || !points || !faceVertices)
        return false;

    const auto triangleFaceOffsets = makeMutable<Array<uint>>();
    const auto triangleVertices = makeMutable<Array<uint>>();
    if (!computeTriangulation(*faceOffsets, *faceVertices, *triangleFaceOffsets, *triangleVertices))
        return false;

    const auto countOf = [](const auto& array) { return static_cast<uint>(array->size()); };
    const uint triangleCount = triangleFaceOffsets->empty() ? 0 : countOf(triangleFaceOffsets) - 1;
    Geometry::setElementCount(Geometry::sFaceComp, triangleCount, target);
    Geometry::setElementCount(Geometry::sFaceVertexComp, countOf(triangleVertices), target);
    Geometry::setElementCount(Geometry::sPointComp, countOf(points), target);
    setDataArray(Geometry::sFaceOffset, triangleFaceOffsets, target);
    setDataArray(Geometry::sPointPosition, copyOfPoints(*points), target);
    setDataArray(Geometry::sFaceVertex, triangleVertices, target);

    copyPropertiesToTriangulatedMesh(source, propertyNames, target);
    return true;
}

}  // namespace Tessary
