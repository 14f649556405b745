#pragma once

// Half-edges by their larger point, and as numbers that stand in the order of the edge table:
//
//   63                                                0
//   | place        | smaller point | corner | direction |
//     low bits of                             1 where it starts at the larger point;
//     the larger point                        no bit where the other fields take all 64
//
// Of keys in one bucket of a point, the higher fields alone tell edges apart, and the corner makes every
// key different: any sort of keys is stable.

#include "base/CountingSort.h"
#include "base/MeshLayout.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Tessary {

/// A half-edge by its ends, branchless: which is the larger is unpredictable, and mispredictions would
/// dominate the scatter.
struct Ends {
    uint larger;
    uint smaller;
    uint isDescending;  ///< whether the half-edge starts at its larger point

    Ends(uint start, uint end) : isDescending(start > end)
    {
        const uint swapped = (start ^ end) & (0u - isDescending);
        larger = end ^ swapped;
        smaller = start ^ swapped;
    }
};

/// The triangles of an edge table to be.
struct Triangles {
    const uint* faceVertex;
    std::size_t count;
    std::size_t pointCount;  ///< one more than the largest point

    std::size_t cornerCount() const { return 3 * count; }

    Ends ends(uint corner) const
    {
        return Ends(faceVertex[corner], faceVertex[nextCorner(corner)]);
    }
};

/// Calls `visit(ends, corner)` for the half-edges of a range of triangles.
template <class Visit>
void forEachHalfEdge(const Triangles& mesh, Range triangles, const Visit& visitor)
{
    const Visit visit = visitor;  // copies that registers can hold
    const uint* const faceVertex = mesh.faceVertex;
    for (std::size_t t = triangles.begin; t < triangles.end; ++t) {
        const uint* const point = faceVertex + 3 * t;
        for (uint k = 0; k < 3; ++k)
            visit(Ends(point[k], point[nextCorner(k)]), static_cast<uint>(3 * t) + k);
    }
}

using Key = std::uint64_t;

/// Packs half-edges into keys and reads them.
class HalfEdgeKeys {
public:
    /// `mesh.faceVertex` stays referred to.
    explicit HalfEdgeKeys(const Triangles& mesh) : m_faceVertex(mesh.faceVertex)
    {
        m_cornerBits = bitsOf(mesh.cornerCount() - 1);
        m_smallerBits = bitsOf(mesh.pointCount - 1);
        m_directionBits = m_cornerBits + m_smallerBits < 64 ? 1 : 0;
        m_cornerMask = (Key{1} << m_cornerBits) - 1;
        m_smallerUnit = Key{1} << (m_cornerBits + m_directionBits);
        m_placeUnit = m_smallerUnit << m_smallerBits;
    }

    /// How many of the larger point's low bits are in its place.
    uint placeBits() const { return 64 - m_smallerBits - m_cornerBits - m_directionBits; }

    Key make(Ends ends, uint corner) const
    {
        return ends.larger * m_placeUnit + ends.smaller * m_smallerUnit +
               (Key{corner} << m_directionBits) + (ends.isDescending & m_directionBits);
    }

    Key place(Key key) const { return key >> (m_cornerBits + m_directionBits) >> m_smallerBits; }
    uint corner(Key key) const { return static_cast<uint>(key >> m_directionBits & m_cornerMask); }

    /// Of two half-edges of one larger point: whether they share the smaller one, too.
    bool areOfOneEdge(Key a, Key b) const { return (a ^ b) < m_smallerUnit; }

    /// Of two half-edges of one edge.
    bool runTheSameWay(Key a, Key b) const
    {
        return m_directionBits ? ((a ^ b) & 1) == 0
                               : m_faceVertex[corner(a)] == m_faceVertex[corner(b)];
    }

private:
    static uint bitsOf(std::size_t value)
    {
        uint bits = 0;
        for (; value > 0; value >>= 1)
            ++bits;
        return bits;
    }

    const uint* m_faceVertex;
    uint m_cornerBits;
    uint m_smallerBits;
    uint m_directionBits;
    Key m_cornerMask;
    Key m_smallerUnit;
    Key m_placeUnit;
};

}  // namespace Tessary
