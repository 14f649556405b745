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

/// Throws InvalidMesh for a mesh that has faces of fewer than three corners, with the first of them.
[[noreturn]] void rejectFaces(const Array<uint>& faceOffset);

/// The points of the corners of the fan triangles. Throws InvalidMesh where a face has fewer than
/// three corners.
Array<uint> fanTriangles(const Array<uint>& faceOffset, const Array<uint>& faceVertex);

}  // namespace TessaryMesh
