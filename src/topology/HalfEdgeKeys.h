#pragma once

// Half-edges by their larger point, and as numbers that stand in the order of the edge table.

#include "base/MeshLayout.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Tessary {

/// A half-edge by its ends, told apart without jumps: which is the larger is hard to foresee.
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

/// A triangle by its points. Two of its half-edges have the largest one for their larger end, the third
/// has the middle one.
struct SortedTriangle {
    uint largest;
    uint middle;
    uint corner;  ///< of the largest point
    uint next;
    uint previous;

    /// Jumps: where triangles follow each other in the order of their points, they can be foreseen.
    SortedTriangle(const uint* point, uint firstCorner)
    {
        const uint ofTwo = point[1] > point[0] ? 1 : 0;
        const uint k = point[2] > point[ofTwo] ? 2 : ofTwo;
        const uint after = nextCorner(k, 0);
        const uint before = k == 0 ? 2 : k - 1;
        largest = point[k];
        middle = std::max(point[after], point[before]);
        corner = firstCorner + k;
        next = firstCorner + after;
        previous = firstCorner + before;
    }
};

using Key = std::uint64_t;

/// Keys hold, from their highest bit on, as much of the larger point as there is room for (its place),
/// the smaller point, the corner, and the direction. Those of one larger point are ordered by smaller
/// point, then corner; the corner makes every key different, so that no order is left open.
class HalfEdgeKeys {
public:
    /// `faceVertex` stays referred to.
    HalfEdgeKeys(const uint* faceVertex, std::size_t cornerCount, std::size_t pointCount)
        : m_faceVertex(faceVertex),
          m_cornerBits(bitsOf(cornerCount - 1)),
          m_smallerBits(bitsOf(pointCount - 1)),
          m_directionBits(m_cornerBits + m_smallerBits < 64 ? 1 : 0),
          m_cornerMask((Key{1} << m_cornerBits) - 1),
          m_smallerUnit(Key{1} << (m_cornerBits + m_directionBits)),
          m_placeUnit(m_smallerUnit << m_smallerBits)
    {}

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
    uint m_directionBits;  // the largest meshes have no bit to spare
    Key m_cornerMask;
    Key m_smallerUnit;
    Key m_placeUnit;
};

}  // namespace Tessary
