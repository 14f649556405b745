#pragma once

#include "base/Host.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TessaryMesh {

struct QuadOptions {
    std::optional<double> creaseAngle;  ///< degrees, 0 to 180: see creasesByAngle
    std::string creaseProperty;         ///< empty for none: see creasesByProperty

    /// Where an edge is cut: the share of its lower-numbered point, 0 to 1.
    float edgeWeight = 0.5f;

    /// Where a triangle is cut: the shares of its three corners; they add up to 1.
    float innerWeights[3] = {1.0f / 3, 1.0f / 3, 1.0f / 3};

    /// How far the two points of a creased edge move apart, as a share of the edge, 0 to 1.
    float gap = 0;

    /// Whether edges along which two faces run in one direction are cut once for each face. Without
    /// it a mesh with such edges is refused.
    bool splitEdges = false;
};

struct QuadMesh {
    MutablePtr<Object> mesh;
    uint edges = 0, creasedEdges = 0;
    std::uint64_t splitEdges = 0;
    std::vector<std::string> warnings;  ///< one line per property that could not be carried
};

/// Splits the fan triangles of a mesh without errors (see Validate.h) into three quads each.
///
/// Points keep their order; new ones follow, on the edges and then inside the triangles, as
/// computeQuadMesh numbers them. A mesh without faces keeps its points. `mesh` is not changed.
///
/// The named properties follow as interpolatePropertiesToCutMesh says, at the same weights as the
/// positions, with two differences: index seams of corners are kept, and what lies between corners
/// of which one has no value (the index 0xFFFFFFFF) has none. Lists, properties of other components
/// and chains of indices have no rule; a warning says that they are left out. Values of the object
/// itself are always carried.
///
/// `name` stands for the mesh in messages. Throws InvalidMesh, with the first places, where two faces
/// run along an edge in one direction or the result is too large for its indices;
/// std::invalid_argument for a crease property that does not fit; std::runtime_error when the
/// caller's job is cancelled.
QuadMesh makeQuadMesh(const Object& mesh, const std::string& name,
                      const Array<String>& propertyNames, const QuadOptions& options);

}  // namespace TessaryMesh
