#pragma once

#include "topology/HalfEdgeKeys.h"

#include <vector>

namespace Tessary {

/// The edge table is built block by block of 2^kBlockBits points; their keys take some 200 kB. With 10
/// or 14 bits 1 M triangles in random order take 3 % longer, 4 M the same.
inline constexpr uint kBlockBits = 12;

/// The half-edges of a block of points as keys, bucketed by larger point. The memory serves one block
/// after another.
struct KeyBuckets {
    std::vector<uint> end;  ///< of each point's bucket
    std::vector<Key> keys;  ///< may be more than there are in the buckets

    void makeRoom(std::size_t keyCount)
    {
        if (keys.size() < keyCount)
            keys.resize(keyCount);
    }
};

/// Sorts each bucket, pairs neighbours that run opposite ways, and writes all corners in that order.
/// `singles` receives where those without a partner stand. False where neighbours run the same way.
bool sortAndPair(KeyBuckets& buckets, HalfEdgeKeys keyOf, uint* corners,
                 std::vector<uint>& singles);

}  // namespace Tessary
