#pragma once

#include "base/CountingSort.h"
#include "topology/KeyBuckets.h"

#include <vector>

namespace Tessary {

/// The corners of a mesh in its edge table, bucketed by the larger point of their half-edges in one
/// scatter: fastest where triangles follow each other in the order of their points, so that a bucket's
/// line is still in the cache when the next corner arrives.
class PointBuckets {
public:
    /// Scatters the corners into `table`, which has room for them. All arguments stay referred to.
    PointBuckets(const Triangles& mesh, const HalfEdgeKeys& keyOf, uint* table);

    /// Where each block of points begins in the table, and the end of the last.
    std::vector<std::size_t> blockBegins() const;

    /// Makes the keys of a block.
    void load(uint block, KeyBuckets& buckets) const;

private:
    template <class Visit>
    void forEachTriangle(uint piece, const Visit& visit) const;
    void count(uint piece);
    void scatter(uint piece);

    const Triangles& m_mesh;
    const HalfEdgeKeys& m_keyOf;
    uint* m_table;
    CountingSort m_sort;
};

}  // namespace Tessary
