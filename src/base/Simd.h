#pragma once

// Four floats, four integers or two doubles at once: the one place that knows the machine's vector
// registers.
//
//   Float4, Int4, Double2   lanes 0 to 3, or 0 and 1; a point x, y, z has its numbers in lanes 0 to 2
//   Mask4                   what a comparison of lanes says; bitsOf() is one bit a lane, lane 0 lowest
//
// Every operation rounds each lane as the plain operation does, so kernels have the same bits with SSE2, with
// AArch64's vectors and, elsewhere or where TESSARY_SCALAR_LANES is defined, with SimdScalar.h:
//
//   load3(p), store3(p, a)        a point; lane 3 is loaded as 0. Neither touches what follows the point
//   load4(p)                      from memory of any alignment
//   splat(v)                      v in every lane
//   add, sub, mul                 integers wrap
//   lesserOr(a, b)                a < b ? a : b, so that a NaN in either yields b
//   greaterOr(a, b)               a > b ? a : b, likewise
//   absolute, negated             of the sign bit alone
//   timesSignOf(a, s)             a, negated where s has a sign bit (-0 too)
//   withSignOf(a, s)              |a| with the sign bit of s
//   zeroUnlessPositive(m, v)      0 >= m ? 0 : v, branchless: v where m is NaN
//   rotated(a)                    lanes 1, 2, 0
//   lane<k>(a)                    lane k in every lane
//   firstOf(a)                    lane 0
//   sum3(a), splatSum3(a)         (x + y) + z
//   less, lessOrEqual, equal      false on NaN
//   notEqual                      true on NaN
//   both, either                  of two masks
//   toFloat(i)                    rounded to nearest
//   FourPoints(p)                 points p[0] to p[3], transposed: four x, four y, four z
//   pair(a, b), load2(p)          two doubles; two floats from memory, widened
//   lowHigh(a, b), highLow(a, b)  (a0, b1); (a1, b0)

#include "base/Host.h"

#if defined(__SSE2__) && !defined(TESSARY_SCALAR_LANES)
#include "base/SimdSse2.h"
#elif defined(__aarch64__) && !defined(__AARCH64EB__) && !defined(TESSARY_SCALAR_LANES)
#include "base/SimdNeon.h"
#else
#include "base/SimdScalar.h"
#endif

namespace Tessary {

constexpr uint kXyz = 7;  // the bits of lanes x, y and z

inline bool anyGreater3(Float4 a, Float4 b)
{
    return (bitsOf(less(b, a)) & kXyz) != 0;
}

inline bool allLess3(Float4 a, Float4 b)
{
    return (bitsOf(less(a, b)) & kXyz) == kXyz;
}

/// Whether x, y and z are neither infinite nor NaN: only then a - a is 0.
inline bool areFinite3(Float4 a)
{
    return (bitsOf(equal(sub(a, a), splat(0.0f))) & kXyz) == kXyz;
}

}  // namespace Tessary
