#pragma once

#include "base/Host.h"

#include <cstddef>

namespace TessaryMesh {

/// The arrays of a mesh, shared with it. What the object lacks is as in a mesh without faces: a point
/// cloud has no arrays for them.
struct MeshArrays {
    explicit MeshArrays(const Object& mesh);

    std::size_t faceCount() const { return faceOffset->size() - 1; }

    Ptr<Array<float3>> points;
    Ptr<Array<uint>> faceOffset, faceVertex;
};

/// Throws InvalidMesh, with the first face, unless every face has three corners or more and the faces
/// together are all corners: the kernels trust their callers with the order of the offsets.
void requireFaces(const Array<uint>& faceOffset, std::size_t cornerCount);

/// The points of the corners of the fan triangles. Throws as requireFaces() does.
Array<uint> fanTriangles(const Array<uint>& faceOffset, const Array<uint>& faceVertex);

}  // namespace TessaryMesh
