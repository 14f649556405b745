#pragma once

#include "base/Host.h"
#include "check/Validate.h"

#include <cstdint>
#include <optional>

namespace TessaryMesh {

/// What holds a mesh together: counts of its edges and of the pieces that they make.
///
/// An edge joins two points that follow each other in a face; a point that a face names twice in a
/// row makes none. Components are faces that hang together by common points. Points of no face
/// belong to nothing here.
struct MeshShape {
    std::uint64_t edges = 0;
    std::uint64_t boundaryEdges = 0;  ///< of one face
    Problem sameDirection;            ///< see EdgePlaces.h
    Problem nonManifold;
    std::uint64_t nonManifoldPoints = 0;  ///< at which faces meet that no edges there join
    std::uint64_t unusedPoints = 0;       ///< of no face
    std::uint64_t components = 0;
    std::int64_t eulerCharacteristic = 0;  ///< points of faces - edges + faces
    std::uint64_t least = 0, most = 0;     ///< edges at a point of a face
    bool isClosed = false;                 ///< there are edges, none of them a boundary
    std::optional<std::uint64_t> genus;    ///< of all components together; only of a closed and
                                           ///< consistently oriented manifold
};

/// Measures a mesh without errors (see Validate.h) in near linear time. Throws std::runtime_error
/// when the caller's job is cancelled.
MeshShape shapeOf(const Object& mesh);

}  // namespace TessaryMesh
