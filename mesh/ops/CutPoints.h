#pragma once

#include "base/Host.h"
#include <TessaryMesh/Operations.h>

namespace TessaryMesh {

/// Where each point of a quad mesh lies on the triangles that it was made of, in the codes and
/// weights of interpolatePropertiesToCutMesh.
struct CutPoints {
    /// The triangles' corners, and one more for each point that no triangle uses: a code can only
    /// name a point by a corner.
    Array<uint> cornerPoint;
    Array<uint> origins;           ///< a code for each point
    Array<float> edgeWeights;      ///< for each corner of the triangles
    Array<float> triangleWeights;  ///< the same
};

/// `quadFaceVertex` and `pointCount` are the result of computeQuadMesh for the triangles; the first
/// `sourcePointCount` points are the triangles' own.
CutPoints cutPointsOf(const Array<uint>& triFaceVertex, const Array<uint>& quadFaceVertex,
                      std::size_t sourcePointCount, std::size_t pointCount,
                      const QuadOptions& options);

}  // namespace TessaryMesh
