#pragma once

#include "base/Host.h"
#include <TessaryMesh/Errors.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace TessaryMesh {

/// One side of a face, by the corner at which it starts.
struct EdgeSide {
    uint smaller;  ///< the edge's point of smaller index
    uint corner;
    bool isDescending;  ///< whether the face runs from the larger point to the smaller one

    bool operator<(const EdgeSide& other) const
    {
        return smaller != other.smaller ? smaller < other.smaller : corner < other.corner;
    }
};

/// An edge of polygons, with the sides of all faces that run along it, in corner order. Its points
/// are the same where a face names one point twice in a row.
struct PolygonEdge {
    uint smaller, larger;
    const EdgeSide* first;
    const EdgeSide* last;

    std::size_t faceCount() const { return static_cast<std::size_t>(last - first); }
    bool isLoop() const { return smaller == larger; }

    /// The first side that computeTriEdges gives up on, because the next one runs the same way; null
    /// where it does not. As there, a side after an opposite pair starts anew.
    const EdgeSide* firstSameDirection() const
    {
        for (const EdgeSide* side = first; last - side >= 2; side += 2)
            if (side[0].isDescending == side[1].isDescending)
                return side;
        return nullptr;
    }
};

/// The edges of a mesh without errors (see Validate.h), those of its polygons and not of the
/// triangles in them. A mesh without faces has none. Memory is 8 bytes per corner and 4 per point.
class PolygonEdges {
public:
    explicit PolygonEdges(const Object& mesh);
    PolygonEdges(Ptr<Array<uint>> faceOffset, Ptr<Array<uint>> faceVertex, std::size_t pointCount);

    const Array<uint>& faceVertex() const { return *m_faceVertex; }
    std::size_t faceCount() const { return m_faceOffset->size() - 1; }
    std::size_t pointCount() const { return m_sideOffset.size() - 1; }

    /// The next corner of the same face.
    uint next(uint corner) const { return m_next[corner]; }

    /// "corner 7 of face 2".
    std::string cornerName(uint corner) const;

    /// Calls visit(const PolygonEdge&) for every edge, by larger and then smaller point. Time is
    /// linear but for long lists of one point's edges, which are sorted. Throws std::runtime_error
    /// when the caller's job is cancelled.
    template <class Visit>
    void forEach(const Visit& visit) const
    {
        std::vector<EdgeSide> sides;
        for (std::size_t point = 0; point < pointCount(); ++point) {
            if (point % kPollEvery == 0)
                throwIfCancelled();
            sidesOf(static_cast<uint>(point), sides);
            const EdgeSide* const end = sides.data() + sides.size();
            for (const EdgeSide* side = sides.data(); side != end;) {
                const EdgeSide* const first = side;
                while (side != end && side->smaller == first->smaller)
                    ++side;
                visit(PolygonEdge{first->smaller, static_cast<uint>(point), first, side});
            }
        }
    }

private:
    static constexpr std::size_t kPollEvery = 1 << 16;  // points

    void sidesOf(uint larger, std::vector<EdgeSide>& sides) const;

    Ptr<Array<uint>> m_faceOffset, m_faceVertex;
    Array<uint> m_next;
    Array<uint> m_sideOffset, m_side;  // corners by the larger point of their side
};

}  // namespace TessaryMesh
