#pragma once

#include "base/Host.h"

namespace Tessary {

/// For each corner of the fan triangles of a polygon mesh, the corner at which findAdjacentHalfEdge
/// finds the opposite half-edge to start; kNone where there is none, or where that half-edge is an
/// inner diagonal of its polygon.
Array<uint> polygonNeighbours(const Array<uint>& faceOffset, const Array<uint>& triFaceVertex,
                              const Array<uint>& dualOffset, const Array<uint>& dualCorner);

}  // namespace Tessary
