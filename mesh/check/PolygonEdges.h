#pragma once

#include "base/Host.h"
#include "base/ParallelBlocks.h"
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
        for (std::size_t block = 0; block < blockCount(); ++block) {
            throwIfCancelled();
            forEachOf(block, visit);
        }
    }

    /// The edges in that order, gathered on all threads: each block of them by `part.add(edge)` of a copy
    /// of `none`, which `whole.append(part)` takes in their order.
    template <class Part>
    void gather(const Part& none, Part& whole) const
    {
        std::vector<Part> parts(blockCount(), none);
        forEachBlock(parts.size(), [&](std::size_t block) {
            forEachOf(block, [&part = parts[block]](const PolygonEdge& edge) { part.add(edge); });
        });
        for (const Part& part : parts)
            whole.append(part);
    }

private:
    static constexpr std::size_t kBlock = 1 << 15;  // points

    std::size_t blockCount() const { return (pointCount() + kBlock - 1) / kBlock; }

    template <class Visit>
    void forEachOf(std::size_t block, const Visit& visit) const
    {
        std::vector<EdgeSide> sides;
        const std::size_t pointEnd = std::min((block + 1) * kBlock, pointCount());
        for (std::size_t point = block * kBlock; point < pointEnd; ++point) {
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

    void sidesOf(uint larger, std::vector<EdgeSide>& sides) const;

    Ptr<Array<uint>> m_faceOffset, m_faceVertex;
    Array<uint> m_next;
    Array<uint> m_sideOffset, m_side;  // corners by the larger point of their side
};

}  // namespace TessaryMesh
