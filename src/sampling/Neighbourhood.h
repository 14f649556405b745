#pragma once

#include "sampling/CandidateGrid.h"

#include <algorithm>
#include <vector>

#if defined(__SSE2__) && !defined(TESSARY_SCALAR_LANES)
#define TESSARY_PAIRS_SSE2 1
#include <emmintrin.h>
#else
#define TESSARY_PAIRS_SSE2 0
#endif

namespace Tessary {

/// A candidate that is paired with others, or a fixed point, which comes before all of them.
struct PairEnd {
    float a, b, c;  // offsets from the cell
    std::int32_t slotC;
    std::int32_t rank;
};

enum class Partners { Earlier, Later, All };

/// The candidates in the 27 cells around one, in blocks of four, and the test of all of them against a
/// point in that cell. The loops have no jumps that depend on where candidates lie: most of the time
/// would go into foreseeing those wrongly. The buffers are reused from cell to cell.
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
    static constexpr uint kBlocksAtOnce = 3;  // few runs are longer

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
        // Those that are too many are written over, or not read.
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

#if TESSARY_PAIRS_SSE2

template <Partners partners>
struct Neighbourhood::Test {
    const float* localA;
    const float* localB;
    const float* localC;
    const std::int32_t* slotC;
    const std::int32_t* rank;
    __m128 a, b, c;
    __m128i ownSlotC, ownRank;

    Test(const CandidateGrid& grid, const PairEnd& end)
        : localA(grid.localA()),
          localB(grid.localB()),
          localC(grid.localC()),
          slotC(grid.slotC()),
          rank(grid.rank()),
          a(_mm_set1_ps(end.a)),
          b(_mm_set1_ps(end.b)),
          c(_mm_set1_ps(end.c)),
          ownSlotC(_mm_set1_epi32(end.slotC)),
          ownRank(_mm_set1_epi32(end.rank))
    {}

    static __m128 difference(__m128 step, const float* other, __m128 own)
    {
        if (partners == Partners::Earlier)
            return _mm_sub_ps(_mm_sub_ps(own, step), _mm_loadu_ps(other));
        return _mm_sub_ps(_mm_add_ps(step, _mm_loadu_ps(other)), own);
    }

    static __m128i load(const std::int32_t* values)
    {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(values));
    }

    uint operator()(const Block& block) const
    {
        const std::size_t i = block.first;
        const __m128 stepC = _mm_cvtepi32_ps(_mm_sub_epi32(load(slotC + i), ownSlotC));
        const __m128 x = difference(_mm_set1_ps(block.stepA), localA + i, a);
        const __m128 y = difference(_mm_set1_ps(block.stepB), localB + i, b);
        const __m128 z = difference(stepC, localC + i, c);
        const __m128 square =
            _mm_add_ps(_mm_add_ps(_mm_mul_ps(y, y), _mm_mul_ps(x, x)), _mm_mul_ps(z, z));
        const __m128 isNear = _mm_cmple_ps(square, _mm_set1_ps(1.0f));
        if (partners == Partners::All)
            return static_cast<uint>(_mm_movemask_ps(isNear));
        const __m128i isPartner = partners == Partners::Later
                                      ? _mm_cmpgt_epi32(load(rank + i), ownRank)
                                      : _mm_cmplt_epi32(load(rank + i), ownRank);
        return static_cast<uint>(_mm_movemask_ps(_mm_and_ps(isNear, _mm_castsi128_ps(isPartner))));
    }
};

#else

template <Partners partners>
struct Neighbourhood::Test {
    const CandidateGrid& grid;
    PairEnd own;

    Test(const CandidateGrid& candidates, const PairEnd& end) : grid(candidates), own(end) {}

    static float difference(float step, float other, float own)
    {
        return partners == Partners::Earlier ? (own - step) - other : (step + other) - own;
    }

    bool isPartner(std::int32_t rank) const
    {
        if (partners == Partners::All)
            return true;
        return partners == Partners::Later ? rank > own.rank : rank < own.rank;
    }

    uint operator()(const Block& block) const
    {
        uint hits = 0;
        for (uint lane = 0; lane < kLanes; ++lane) {
            const std::size_t i = std::size_t{block.first} + lane;
            const std::int64_t stepC = std::int64_t{grid.slotC()[i]} - own.slotC;
            const float x = difference(block.stepA, grid.localA()[i], own.a);
            const float y = difference(block.stepB, grid.localB()[i], own.b);
            const float z = difference(static_cast<float>(stepC), grid.localC()[i], own.c);
            const bool isNear = 1.0f >= (y * y + x * x) + z * z;
            hits |= (isNear && isPartner(grid.rank()[i]) ? 1u : 0u) << lane;
        }
        return hits;
    }
};

#endif

}  // namespace Tessary
