#pragma once

#include "sampling/CandidateGrid.h"

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

/// Tells which candidates of one row of the neighbourhood of `end` lie within a cell's width of it: of
/// those before it, of those after it, or of all of them, which then count as after it.
///
/// Required: the earlier one of a pair is the centre, and the step from its cell to the other's is added
/// to the offset of the other one before that of the centre is subtracted. Seen from the later one,
/// that is another rounding.
template <Partners partners>
class PairTest {
public:
    static constexpr uint kLanes = 4;

    PairTest(const CandidateGrid& grid, const PairEnd& end, uint row)
        : m_grid(grid),
          m_end(end),
          m_stepA(static_cast<float>(row / 3) - 1.0f),
          m_stepB(static_cast<float>(row % 3) - 1.0f)
    {}

    /// A bit for each of the four candidates from `first`; those from `end` on are never set.
    uint operator()(std::size_t first, std::size_t end) const
    {
        const uint hits = test(first);
        return end - first < kLanes ? hits & ((1u << (end - first)) - 1) : hits;
    }

private:
#if TESSARY_PAIRS_SSE2
    static __m128 difference(__m128 step, const float* local, std::size_t first, float end)
    {
        const __m128 other = _mm_loadu_ps(local + first);
        if (partners == Partners::Earlier)
            return _mm_sub_ps(_mm_sub_ps(_mm_set1_ps(end), step), other);
        return _mm_sub_ps(_mm_add_ps(step, other), _mm_set1_ps(end));
    }

    static __m128i load(const std::int32_t* values)
    {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(values));
    }

    uint test(std::size_t first) const
    {
        const __m128 stepC = _mm_cvtepi32_ps(
            _mm_sub_epi32(load(m_grid.slotC() + first), _mm_set1_epi32(m_end.slotC)));
        const __m128 a = difference(_mm_set1_ps(m_stepA), m_grid.localA(), first, m_end.a);
        const __m128 b = difference(_mm_set1_ps(m_stepB), m_grid.localB(), first, m_end.b);
        const __m128 c = difference(stepC, m_grid.localC(), first, m_end.c);
        const __m128 square =
            _mm_add_ps(_mm_add_ps(_mm_mul_ps(b, b), _mm_mul_ps(a, a)), _mm_mul_ps(c, c));
        const __m128 isNear = _mm_cmple_ps(square, _mm_set1_ps(1.0f));
        if (partners == Partners::All)
            return static_cast<uint>(_mm_movemask_ps(isNear));
        const __m128i rank = load(m_grid.rank() + first);
        const __m128i own = _mm_set1_epi32(m_end.rank);
        const __m128i isOrdered =
            partners == Partners::Later ? _mm_cmpgt_epi32(rank, own) : _mm_cmplt_epi32(rank, own);
        return static_cast<uint>(_mm_movemask_ps(_mm_and_ps(isNear, _mm_castsi128_ps(isOrdered))));
    }
#else
    static float difference(float step, float other, float end)
    {
        return partners == Partners::Earlier ? (end - step) - other : (step + other) - end;
    }

    bool isOrdered(std::int32_t rank) const
    {
        if (partners == Partners::All)
            return true;
        return partners == Partners::Later ? rank > m_end.rank : rank < m_end.rank;
    }

    uint test(std::size_t first) const
    {
        uint hits = 0;
        for (uint lane = 0; lane < kLanes; ++lane) {
            const std::size_t i = first + lane;
            const std::int64_t stepC = std::int64_t{m_grid.slotC()[i]} - m_end.slotC;
            const float a = difference(m_stepA, m_grid.localA()[i], m_end.a);
            const float b = difference(m_stepB, m_grid.localB()[i], m_end.b);
            const float c = difference(static_cast<float>(stepC), m_grid.localC()[i], m_end.c);
            const bool isNear = 1.0f >= (b * b + a * a) + c * c;
            hits |= (isNear && isOrdered(m_grid.rank()[i]) ? 1u : 0u) << lane;
        }
        return hits;
    }
#endif

    const CandidateGrid& m_grid;
    const PairEnd& m_end;
    float m_stepA;
    float m_stepB;
};

}  // namespace Tessary
