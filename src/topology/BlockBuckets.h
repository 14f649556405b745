#pragma once

#include "base/CountingSort.h"
#include "topology/KeyBuckets.h"

#include <vector>

namespace Tessary {

/// The half-edges of a mesh as keys, bucketed by the block of their larger point, and within a block by
/// point when it is loaded: a radix sort, most significant digit first. Neither of its two scatters
/// writes to more places at a time than a core's cache holds, whatever the order of the points.
class BlockBuckets {
public:
    /// Whether keys hold enough of the larger point for the second scatter.
    static bool canTake(const HalfEdgeKeys& keyOf) { return keyOf.placeBits() >= kBlockBits; }

    /// Scatters the keys, their low halves into `table`, which has room for them. All arguments stay
    /// referred to. 4 bytes per corner.
    BlockBuckets(const Triangles& mesh, const HalfEdgeKeys& keyOf, uint* table);

    /// Where each block of points begins in the table, and the end of the last.
    std::vector<std::size_t> blockBegins() const;

    /// Buckets the keys of a block by point.
    void load(uint block, KeyBuckets& buckets) const;

private:
    Range trianglesOf(uint piece) const;
    void count(uint piece);
    void scatter(uint piece);

    const Triangles& m_mesh;
    const HalfEdgeKeys& m_keyOf;
    uint* m_low;
    Array<uint> m_high;
    CountingSort m_sort;
};

}  // namespace Tessary
