#pragma once

#include "topology/TriangleDual.h"

#include <algorithm>
#include <atomic>
#include <vector>

namespace Tessary {

/// The corner list of one point b, inverted: for each point that follows a corner of the list, the first
/// triangle there and the first other one, which serves the edges of the first.
///
///   list of b          | corner of t, followed by 7 | of u, by 5 | of v, by 7 | of w, by 8 |
///   points             5   6   7   8           direct where they are nearly a range, else sorted
///   first              u   -   t   w
///   other              -   -   v   -           only where any point follows twice
///
/// Takes O(n) time for n corners where the points are nearly a range, as around a fan, and O(n log n)
/// elsewhere. Parallel, never polled; at most 16 bytes per corner.
///
/// One sorted array of (next point, slot) in place of these forms was shorter by half and slower:
/// adjacency of a fan of 200,000 triangles 12 -> 48 ms, of a book of as many 28 -> 92 ms, of 10,000 hubs
/// of 100 triangles 115 -> 240 ms; hash buckets of (next point, triangle) 46, 72 and 183 ms.
class ListIndex {
public:
    ListIndex() = default;
    ListIndex(const TriangleDual& dual, uint point);

    /// The first triangle in the list, other than the edge's own, whose corner is followed by the
    /// edge's start; kNone if there is none.
    uint find(DirectedEdge edge) const
    {
        const std::size_t entry = entryOf(edge.start);
        if (entry >= m_first.size())
            return kNone;
        const uint first = m_first[entry].triangle();
        if (first != edge.triangle)
            return first;
        return m_other.empty() ? kNone : m_other[entry].triangle();
    }

private:
    class Entry {
    public:
        uint triangle() const { return m_triangle.load(std::memory_order_relaxed); }
        void set(uint triangle) { m_triangle.store(triangle, std::memory_order_relaxed); }
        bool isFree() const { return triangle() == kNone; }

    private:
        std::atomic<uint> m_triangle{kNone};
    };
    using Entries = std::vector<Entry>;

    std::size_t entryOf(uint point) const
    {
        if (m_points.empty())
            return std::size_t{point} - m_least;
        const auto found = std::lower_bound(m_points.begin(), m_points.end(), point);
        const bool isThere = found != m_points.end() && *found == point;
        return isThere ? static_cast<std::size_t>(found - m_points.begin()) : m_points.size();
    }

    void collectPoints(const TriangleDual& dual, uint point);
    std::size_t fillInAnyOrder(const TriangleDual& dual, uint point);
    void fillInOrder(const TriangleDual& dual, uint point);

    uint m_least = 0;
    std::vector<uint> m_points;  // sorted; none where entries stand for m_least and all behind it
    Entries m_first;             // the first triangle of each point
    Entries m_other;             // the first other one, if any point has two
};

/// The lists of all points that have too many corners to be walked for every edge.
class LongLists {
public:
    explicit LongLists(const TriangleDual& dual);

    /// 1 M triangles around points of 30 corners: 64 ms walked, 76 indexed; of 100 corners: 183 walked,
    /// 68 indexed.
    static bool isLong(const TriangleDual& dual, uint point) { return dual.listSize(point) > 64; }

    bool empty() const { return m_points.empty(); }

    /// As ListIndex::find, for an edge that ends in a point with a long list.
    uint find(DirectedEdge edge) const
    {
        const auto point = std::lower_bound(m_points.begin(), m_points.end(), edge.end);
        return m_indices[static_cast<std::size_t>(point - m_points.begin())].find(edge);
    }

private:
    std::vector<uint> m_points;  // sorted
    std::vector<ListIndex> m_indices;
};

}  // namespace Tessary
