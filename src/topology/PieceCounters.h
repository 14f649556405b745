#pragma once

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

/// The counters of a counting sort that runs piece by piece of its items, on several threads at once.
/// A piece counts its items for each bin; after turnIntoStarts() its counters are the places of its
/// first items, which it counts up while it places them. Items of a bin stay in the order of pieces.
class PieceCounters {
public:
    /// All zero. 4 bytes per piece and bin.
    PieceCounters(uint pieceCount, std::size_t binCount)
        : m_pieceCount(pieceCount), m_binCount(binCount), m_counters(pieceCount * binCount)
    {}

    uint pieceCount() const { return m_pieceCount; }
    std::size_t binCount() const { return m_binCount; }
    uint* of(uint piece) { return m_counters.data() + piece * m_binCount; }

    /// In parallel, isolated.
    void turnIntoStarts();

    /// The end of each bin, once all items are placed.
    const uint* binEnds() const { return m_counters.data() + (m_pieceCount - 1) * m_binCount; }

private:
    uint m_pieceCount;
    std::size_t m_binCount;
    Array<uint> m_counters;
};

}  // namespace Tessary
