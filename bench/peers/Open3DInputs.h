#pragma once

#include "support/Inputs.h"

#include <open3d/geometry/TriangleMesh.h>

namespace Bench {

inline open3d::geometry::TriangleMesh open3dMesh(const Array<Korvane::Math::float3>& points,
                                                 const Array<uint>& faceVertex)
{
    open3d::geometry::TriangleMesh mesh;
    mesh.vertices_.reserve(points.size());
    for (const Korvane::Math::float3& p : points)
        mesh.vertices_.emplace_back(p.x, p.y, p.z);
    mesh.triangles_.reserve(faceVertex.size() / 3);
    for (std::size_t c = 0; c + 2 < faceVertex.size(); c += 3)
        mesh.triangles_.emplace_back(faceVertex[c], faceVertex[c + 1], faceVertex[c + 2]);
    return mesh;
}

}  // namespace Bench
