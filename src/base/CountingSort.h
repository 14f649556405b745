#pragma once

// A counting sort on several threads: every piece of the items counts them for each bin, the counts
// are scanned, and every piece scatters its items to the slots that the scan gave it.
//
//   items       | b a b | a a c |
//
//                  a b c  exclusiveScan()  a b c
//   counters  0    1 2 0  -------------->  0 3 5     bin by bin, and in a bin piece by piece
//             1    2 0 1                   1 5 5
//
//   sorted      | a a a | b b | c |                  piece 1 scatters its first a to slot 1

#include "base/Host.h"

#include <cstddef>

namespace Tessary {

/// The items [begin, end) of an array.
struct Range {
    std::size_t begin;
    std::size_t end;
};

/// Part `i` of `count` nearly equal parts of [0, size).
inline Range partOf(std::size_t size, uint i, uint count)
{
    return {size * i / count, size * (i + 1) / count};
}

/// Replaces every count by the sum of those before it. Returns the sum of all.
uint exclusiveScan(uint* counts, std::size_t size);

/// The counters of a counting sort in pieces. A piece counts its items in counters(piece); after
/// exclusiveScan() these are its cursors, which it counts up while it scatters the same items. The sort
/// is stable: items of a bin stay in the order of their pieces, and in a piece as it visits them.
class CountingSort {
public:
    /// All counters zero. 4 bytes per piece and bin.
    CountingSort(uint pieceCount, std::size_t binCount)
        : m_pieceCount(pieceCount), m_binCount(binCount), m_counters(pieceCount * binCount)
    {}

    uint pieceCount() const { return m_pieceCount; }
    std::size_t binCount() const { return m_binCount; }
    uint* counters(uint piece) { return m_counters.data() + piece * m_binCount; }

    /// Turns counts into cursors, in parallel, isolated. Returns the number of items.
    uint exclusiveScan();

    /// The end of each bin, once all items are scattered.
    const uint* binEnds() const { return m_counters.data() + (m_pieceCount - 1) * m_binCount; }

private:
    uint m_pieceCount;
    std::size_t m_binCount;
    Array<uint> m_counters;
};

}  // namespace Tessary
