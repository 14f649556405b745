#pragma once

#include "base/Host.h"

#include <string>

/// Which half-edges of a mesh's triangles are creased, as computeQuadMesh takes it: a flag for
/// each corner of the triangles. The inner diagonals of polygons never are.
namespace TessaryMesh {

/// A polygon mesh without errors, with its triangles, those of fans or as many others, and their edge
/// table.
struct TriangulatedView {
    const Array<uint>& faceOffset;
    const Array<uint>& faceVertex;
    const Array<uint>& triFaceVertex;
    const Array<uint>& triEdges;
    const Array<uint>& triCorner;  ///< the polygon corner of each corner of a triangle
};

/// Creases the edges at which the normals of two faces differ by more than `degrees`. The normal of
/// a polygon is the mean over its area, so a face that is not planar or not convex has one, too. A
/// face without area has none and creases nothing; nor does a boundary.
Array<bool> creasesByAngle(const TriangulatedView& mesh, const Array<float3>& points,
                           double degrees);

/// Creases the half-edges whose polygon corner has the value true, a number other than 0 (uchar), or
/// a weight below the largest finite float. Throws ArgumentError, which says what was
/// expected, where `name` is no property of one of these types with a value for each corner.
Array<bool> creasesByProperty(const TriangulatedView& view, const Object& mesh,
                              const std::string& name);

}  // namespace TessaryMesh
