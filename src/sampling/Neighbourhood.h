#pragma once

// Candidate c removes the later candidate e where e lies in one of the 27 cells around c's and
//
//   d = (step + l_e) - l_c      l  offset from the cell, scaled so that the distance is 1
//   1 >= (d_y^2 + d_x^2) + d_z^2    step  from c's cell to e's: -1, 0 or 1 along each axis
//
// The 27 cells are nine runs of contiguous candidates, cut into blocks of four lanes:
//
//   candidates   . . . | p p p p | p p . . | . . .       a run of six from index 3 on
//   blocks              first 3   first 7                 lanes 1111, 0011: lane 0 is the lowest bit

#include "base/Simd.h"
#include "sampling/CandidateGrid.h"

#include <algorithm>
#include <vector>

namespace Tessary {

/// A candidate that is paired with others, or a fixed point, which comes before all of them.
struct PairEnd {
    float a, b, c;  // offsets from the cell
    std::int32_t slotC;
    std::int32_t rank;
};

enum class Partners { Earlier, Later, All };

/// The candidates in the 27 cells around one, and the test of all of them against a point in that cell.
/// Branchless in what depends on where candidates lie: mispredictions would dominate. The buffers are
/// reused from cell to cell.
class Neighbourhood {
public:
    explicit Neighbourhood(const CandidateGrid& grid) : m_grid(grid) {}

    void set(const CandidateGrid::Neighbours& neighbours)
    {
        std::size_t most = 0;
        for (uint row = 0; row < CandidateGrid::kRows; ++row)
            most += blocksOf(length(neighbours, row)) + kBlocksAtOnce;
        if (most > m_blocks.size()) {
            m_blocks.resize(most);
            m_found.resize(kLanes * (most + 1));
        }
        m_count = 0;
        for (uint row = 0; row < CandidateGrid::kRows; ++row)
            append(row, m_grid.begin(neighbours.firstBin[row]), length(neighbours, row));
    }

    /// Finds the candidates that lie within a cell's width of `end`: those before it, those after it, or
    /// all of them, as if they came after it.
    ///
    /// Required: the earlier one of a pair is the centre, and the step from its cell to the other's is
    /// added to the offset of the other one before that of the centre is subtracted. Seen from the later
    /// one, that is another rounding.
    template <Partners partners>
    void find(const PairEnd& end)
    {
        const Test<partners> test(m_grid, end);
        uint* const found = m_found.data();
        std::size_t count = 0;
        for (std::size_t i = 0; i < m_count; ++i) {
            const Block& block = m_blocks[i];
            const uint hits = test(block) & block.lanes;
            for (uint lane = 0; lane < kLanes; ++lane) {
                found[count] = block.first + lane;
                count += hits >> lane & 1;
            }
        }
        m_foundCount = count;
    }

    const uint* begin() const { return m_found.data(); }
    const uint* end() const { return m_found.data() + m_foundCount; }

private:
    static constexpr uint kLanes = 4;

    // Few runs are longer. Sampling a torus, 20 thousand left, on one thread: 89 ms; 101 with 1 and with
    // 2, 91 with 4.
    static constexpr uint kBlocksAtOnce = 3;

    struct Block {
        uint first;
        uint lanes;          // a bit for each that belongs to the run
        float stepA, stepB;  // from the cell to that of the block
    };

    static uint blocksOf(uint length) { return (length + kLanes - 1) / kLanes; }

    uint length(const CandidateGrid::Neighbours& neighbours, uint row) const
    {
        const uint first = neighbours.firstBin[row];
        return m_grid.begin(first + neighbours.count(row)) - m_grid.begin(first);
    }

    void append(uint row, uint first, uint length)
    {
        const uint a = row / 3;
        const uint b = row % 3;
        const float stepA = static_cast<float>(a) - 1.0f;
        const float stepB = static_cast<float>(b) - 1.0f;
        const uint blocks = blocksOf(length);
        Block* const out = m_blocks.data() + m_count;
        // Branchless for most runs: blocks past the last one are overwritten, or never read.
        for (uint i = 0; i < kBlocksAtOnce; ++i)
            out[i] = {first + kLanes * i, 0xF, stepA, stepB};
        for (uint i = kBlocksAtOnce; i < blocks; ++i)
            out[i] = {first + kLanes * i, 0xF, stepA, stepB};
        if (blocks > 0)
            out[blocks - 1].lanes = 0xFu >> (kLanes * blocks - length);
        m_count += blocks;
    }

    template <Partners partners>
    struct Test;

    const CandidateGrid& m_grid;
    std::vector<Block> m_blocks;
    std::size_t m_count = 0;
    std::vector<uint> m_found;
    std::size_t m_foundCount = 0;
};

template <Partners partners>
struct Neighbourhood::Test {
    const CandidateGrid& grid;
    Float4 a, b, c;
    Int4 ownSlotC, ownRank;

    Test(const CandidateGrid& candidates, const PairEnd& end)
        : grid(candidates),
          a(splat(end.a)),
          b(splat(end.b)),
          c(splat(end.c)),
          ownSlotC(splat(end.slotC)),
          ownRank(splat(end.rank))
    {}

    static Float4 difference(Float4 step, Float4 other, Float4 own)
    {
        if (partners == Partners::Earlier)
            return sub(sub(own, step), other);
        return sub(add(step, other), own);
    }

    Mask4 isPartner(Int4 rank) const
    {
        return partners == Partners::Later ? less(ownRank, rank) : less(rank, ownRank);
    }

    uint operator()(const Block& block) const
    {
        const std::size_t i = block.first;
        const Float4 stepC = toFloat(sub(load4(grid.slotC() + i), ownSlotC));
        const Float4 x = difference(splat(block.stepA), load4(grid.localA() + i), a);
        const Float4 y = difference(splat(block.stepB), load4(grid.localB() + i), b);
        const Float4 z = difference(stepC, load4(grid.localC() + i), c);
        const Float4 square = add(add(mul(y, y), mul(x, x)), mul(z, z));
        const Mask4 isNear = lessOrEqual(square, splat(1.0f));
        if (partners == Partners::All)
            return bitsOf(isNear);
        return bitsOf(both(isNear, isPartner(load4(grid.rank() + i))));
    }
};

}  // namespace Tessary
