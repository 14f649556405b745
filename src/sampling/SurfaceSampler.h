#pragma once

#include "base/Host.h"
#include "sampling/AliasTable.h"

namespace Tessary {

struct TriangleMesh {
    const float3* points;
    std::size_t pointCount;
    const uint* faceVertex;
    uint triangleCount;

    const float3& point(uint triangle, uint corner) const
    {
        return points[faceVertex[std::size_t{3} * triangle + corner]];
    }
};

/// Draws candidates over the surface of a mesh and thins them out. They are appended to the caller's
/// arrays, one element of each (three of weights) per candidate.
class SurfaceSampler {
public:
    SurfaceSampler(const TriangleMesh& mesh, Array<float>& weights, Array<float3>& positions,
                   Array<uint>& faceIds)
        : m_mesh(mesh), m_weights(weights), m_positions(positions), m_faceIds(faceIds)
    {}

    /// Draws five candidates per disk of half the distance. A later call goes on with the same stream.
    void draw(float distance, uint seed);

    /// Removes candidates such that no two that are left are within `distance`.
    void eliminate(float distance);

    /// Whether each candidate is removed; empty where none was.
    const Array<unsigned char>& isRejected() const { return m_isRejected; }

private:
    void drawCandidate(std::size_t i, uint counter, uint seed);

    TriangleMesh m_mesh;
    AliasTable m_table;
    uint m_drawn = 0;  // feeds the hash
    Array<float>& m_weights;
    Array<float3>& m_positions;
    Array<uint>& m_faceIds;
    Array<unsigned char> m_isRejected;
};

}  // namespace Tessary
