#pragma once

#include "base/Host.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace TessaryMesh {

/// The points as a format wants them that has values of points only: a point is there once for each
/// combination of values that its corners have.
struct GltfVertices {
    Array<uint> point;  ///< of each vertex, ascending
    Array<uint>
        corner;  ///< of each vertex the first one that has its values; kNone for points of no face
    Array<uint> ofCorner;  ///< the vertex of each corner

    /// Negative, zero, positive: how the values of two corners compare, in any fixed order.
    using Compare = std::function<int(uint cornerA, uint cornerB)>;

    /// Points keep their order; vertices of one point are in the order of their first corners.
    static GltfVertices find(std::size_t pointCount, const Array<uint>& faceVertex,
                             const std::vector<Compare>& comparisons);
};

}  // namespace TessaryMesh
