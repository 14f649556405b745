#pragma once

// A uniform grid over the candidates, cells of width 1 in scaled coordinates. The cells of one slot a
// are a slab, those of it with one slot b a row, sorted by slot c, that of z. The axes a and b are x
// and y, or exchanged where y spreads farther. Only cells that hold a candidate, bins, are stored:
//
//   slabs           | slot a = 4                        | slot a = 5
//   rows            | b = 1                 | b = 2     |
//   bins            | c = 7 | c = 8 | c = 9 | c = 3     | ...        m_firstBin: of each slab
//   candidates      | p p   | p     | p p p | p         | ...        m_binBegin: of each bin
//                     ids ascend in a bin
//
// The 27 cells around one of (4, 1, 8) are nine stretches of at most three cells along c, a row each.
// The candidates of such a stretch are contiguous: a run. The run of (4, 1) has 6 candidates here.

#include "base/CountingSort.h"
#include "base/Host.h"
#include "sampling/GridPlace.h"
#include "sampling/SlabSorter.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace Tessary {

/// Candidates sorted by cell, and the neighbours of every cell that holds one. Without isolated
/// candidates, which are within the distance of none: those with a coordinate that is not finite, and
/// those out of range along all axes, whose cell is no bin.
class CandidateGrid {
public:
    using Key = std::uint64_t;  // slots b and c

    static constexpr uint kRows = 9;
    static constexpr uint kPadding = 3;  // elements that may be read past the last candidate

    /// The bins of a cell's neighbourhood in row 3 (1 + slots along a) + (1 + slots along b): as many
    /// as count() says, from firstBin.
    struct Neighbours {
        uint firstBin[kRows];
        uint counts;  // two bits per row

        uint count(uint row) const { return counts >> 2 * row & 3; }
        void set(uint row, uint first, uint count)
        {
            firstBin[row] = first;
            counts |= count << 2 * row;
        }
    };

    struct Place {
        GridPlace a, b, c;
        bool isIsolated() const;
    };

    CandidateGrid(const Array<float3>& positions, float scale);

    uint binCount() const { return m_firstBin.back(); }
    const Neighbours& neighbours(uint bin) const { return m_neighbours[bin]; }

    /// The candidates of bin `bin` are those from begin(bin) up to begin(bin + 1), ids ascending.
    uint begin(uint bin) const { return m_binBegin[bin]; }

    // Per candidate: the offsets from its cell, its slot, and what orders as ids do.
    const float* localA() const { return m_local[0].data(); }
    const float* localB() const { return m_local[1].data(); }
    const float* localC() const { return m_local[2].data(); }
    const std::int32_t* slotC() const { return m_slotC.data(); }
    const std::int32_t* rank() const { return m_rank.data(); }
    uint id(std::size_t candidate) const { return static_cast<uint>(m_rank[candidate]) ^ kSign; }
    std::size_t candidateCount() const { return m_slabBegin.back(); }

    /// Per id 1, or 0 where it is isolated; moved out.
    Array<unsigned char> takeIsInGrid() { return std::move(m_isInGrid); }

    /// Where any point lies, and the bins around it, found by search.
    Place place(const float3& p) const;
    Neighbours neighboursOf(const Place& place) const;

private:
    static constexpr uint kSign = 0x80000000;

    // A candidate in its slab, with its position, so that slabs are read sequentially.
    struct InSlab {
        float3 position;
        uint id;
    };

    void chooseSlabs();
    void setSlabs(std::int32_t lowest, std::int32_t highest);
    std::size_t slabFrom(std::int64_t slot) const;
    bool isSlab(std::size_t slab, std::int64_t slot) const;
    template <class Visit>
    void forEachInGrid(Range ids, const Visit& visit) const;
    void scatterIntoSlabs();
    void sortSlabs();
    void collect(uint slab, std::vector<SlabSorter::Item>& items) const;
    uint store(uint slab, const std::vector<SlabSorter::Item>& items, Key* keys, uint* begins);
    void linkRow(uint slab, std::size_t other, uint row);
    void linkNeighbours();

    const Array<float3>& m_positions;
    float m_scale;
    float float3::*m_axisA = &float3::x;
    float float3::*m_axisB = &float3::y;
    bool m_hasIsolated = false;

    std::vector<std::int32_t> m_slotOfSlab;  // ascending
    std::vector<uint> m_slabBegin;           // per slab its first candidate, and the end
    std::vector<uint> m_firstBin;            // per slab its first bin, and the end
    Array<unsigned char> m_isInGrid;
    Array<InSlab> m_bySlab;
    Array<float> m_local[3];
    Array<std::int32_t> m_slotC;
    Array<std::int32_t> m_rank;
    Array<Key> m_binKey;
    Array<uint> m_binBegin;
    Array<Neighbours> m_neighbours;
};

}  // namespace Tessary
