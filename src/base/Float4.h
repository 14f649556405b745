#pragma once

// Three or four floats in one vector register, for kernels whose arithmetic is the same per lane.
//
// Every operation is the rounding of the plain float operation, so that a kernel has the same bits
// with SSE2 and, where that is missing or TESSARY_SCALAR_LANES is defined, without.

#include "base/Host.h"

#include <cmath>
#include <cstring>

#if defined(__SSE2__) && !defined(TESSARY_SCALAR_LANES)
#define TESSARY_SSE2 1
#include <emmintrin.h>
#else
#define TESSARY_SSE2 0
#endif

namespace Tessary {

#if TESSARY_SSE2

using Float4 = __m128;

/// Lanes x, y, z and 0.
inline Float4 load3(const float3& v)
{
    double xy;
    std::memcpy(&xy, &v, sizeof xy);
    return _mm_movelh_ps(_mm_castpd_ps(_mm_set_sd(xy)), _mm_load_ss(&v.z));
}

inline void store3(float3& v, Float4 a)
{
    const double xy = _mm_cvtsd_f64(_mm_castps_pd(a));
    std::memcpy(&v, &xy, sizeof xy);
    _mm_store_ss(&v.z, _mm_movehl_ps(a, a));
}

inline Float4 splat(float value)
{
    return _mm_set1_ps(value);
}

inline Float4 add(Float4 a, Float4 b)
{
    return _mm_add_ps(a, b);
}

inline Float4 sub(Float4 a, Float4 b)
{
    return _mm_sub_ps(a, b);
}

inline Float4 mul(Float4 a, Float4 b)
{
    return _mm_mul_ps(a, b);
}

/// a where it is the smaller, else b: a NaN in either yields b.
inline Float4 lesserOr(Float4 a, Float4 b)
{
    return _mm_min_ps(a, b);
}

/// a where it is the greater, else b: a NaN in either yields b.
inline Float4 greaterOr(Float4 a, Float4 b)
{
    return _mm_max_ps(a, b);
}

inline Float4 negated(Float4 a)
{
    return _mm_xor_ps(a, _mm_set1_ps(-0.0f));
}

inline Float4 absolute(Float4 a)
{
    return _mm_andnot_ps(_mm_set1_ps(-0.0f), a);
}

/// a, negated where `sign` is negative (-0 too).
inline Float4 timesSignOf(Float4 a, Float4 sign)
{
    return _mm_xor_ps(a, _mm_and_ps(sign, _mm_set1_ps(-0.0f)));
}

/// Lanes y, z, x.
inline Float4 rotated(Float4 a)
{
    return _mm_shuffle_ps(a, a, _MM_SHUFFLE(3, 0, 2, 1));
}

/// Whether a > b in lane x, y or z.
inline bool anyGreater3(Float4 a, Float4 b)
{
    return (_mm_movemask_ps(_mm_cmpgt_ps(a, b)) & 7) != 0;
}

/// Whether a < b in lanes x, y and z.
inline bool allLess3(Float4 a, Float4 b)
{
    return (_mm_movemask_ps(_mm_cmplt_ps(a, b)) & 7) == 7;
}

/// (x + y) + z
inline float sum3(Float4 a)
{
    const Float4 y = _mm_shuffle_ps(a, a, _MM_SHUFFLE(1, 1, 1, 1));
    return _mm_cvtss_f32(_mm_add_ss(_mm_add_ss(a, y), _mm_movehl_ps(a, a)));
}

inline Float4 splatX(Float4 a)
{
    return _mm_shuffle_ps(a, a, _MM_SHUFFLE(0, 0, 0, 0));
}

inline Float4 splatY(Float4 a)
{
    return _mm_shuffle_ps(a, a, _MM_SHUFFLE(1, 1, 1, 1));
}

inline Float4 splatZ(Float4 a)
{
    return _mm_shuffle_ps(a, a, _MM_SHUFFLE(2, 2, 2, 2));
}

/// (x + y) + z in all lanes.
inline Float4 splatSum3(Float4 a)
{
    return _mm_add_ps(_mm_add_ps(splatX(a), splatY(a)), splatZ(a));
}

inline float firstOf(Float4 a)
{
    return _mm_cvtss_f32(a);
}

/// |a| with the sign of `sign`.
inline Float4 withSignOf(Float4 a, Float4 sign)
{
    const Float4 signBit = _mm_set1_ps(-0.0f);
    return _mm_or_ps(_mm_andnot_ps(signBit, a), _mm_and_ps(sign, signBit));
}

/// 0 where 0 >= m, else `value`; without a jump, which would be hard to foresee.
inline Float4 zeroUnlessPositive(Float4 m, Float4 value)
{
    return _mm_and_ps(value, _mm_cmpnge_ps(_mm_setzero_ps(), m));
}

/// Whether lanes x, y and z are numbers and not infinite.
inline bool areFinite3(Float4 a)
{
    return (_mm_movemask_ps(_mm_cmpeq_ps(_mm_sub_ps(a, a), _mm_setzero_ps())) & 7) == 7;
}

/// Points 0 to 3 at `p` as registers of x, of y and of z.
struct FourPoints {
    __m128 x, y, z;

    explicit FourPoints(const float3* p)
    {
        const float* const f = &p->x;
        const __m128 a = _mm_loadu_ps(f);                                   // x0 y0 z0 x1
        const __m128 b = _mm_loadu_ps(f + 4);                               // y1 z1 x2 y2
        const __m128 c = _mm_loadu_ps(f + 8);                               // z2 x3 y3 z3
        const __m128 xy23 = _mm_shuffle_ps(b, c, _MM_SHUFFLE(2, 1, 3, 2));  // x2 y2 x3 y3
        const __m128 yz01 = _mm_shuffle_ps(a, b, _MM_SHUFFLE(1, 0, 2, 1));  // y0 z0 y1 z1
        x = _mm_shuffle_ps(a, xy23, _MM_SHUFFLE(2, 0, 3, 0));
        y = _mm_shuffle_ps(yz01, xy23, _MM_SHUFFLE(3, 1, 2, 0));
        z = _mm_shuffle_ps(yz01, c, _MM_SHUFFLE(3, 0, 3, 1));
    }
};

#else

struct Float4 {
    float x, y, z;
};

inline Float4 load3(const float3& v)
{
    return {v.x, v.y, v.z};
}

inline void store3(float3& v, Float4 a)
{
    v = {a.x, a.y, a.z};
}

inline Float4 splat(float value)
{
    return {value, value, value};
}

inline Float4 add(Float4 a, Float4 b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

inline Float4 sub(Float4 a, Float4 b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline Float4 mul(Float4 a, Float4 b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}

inline Float4 lesserOr(Float4 a, Float4 b)
{
    return {a.x < b.x ? a.x : b.x, a.y < b.y ? a.y : b.y, a.z < b.z ? a.z : b.z};
}

inline Float4 greaterOr(Float4 a, Float4 b)
{
    return {a.x > b.x ? a.x : b.x, a.y > b.y ? a.y : b.y, a.z > b.z ? a.z : b.z};
}

inline Float4 negated(Float4 a)
{
    return {-a.x, -a.y, -a.z};
}

inline Float4 absolute(Float4 a)
{
    return {std::fabs(a.x), std::fabs(a.y), std::fabs(a.z)};
}

inline Float4 timesSignOf(Float4 a, Float4 sign)
{
    return {std::signbit(sign.x) ? -a.x : a.x, std::signbit(sign.y) ? -a.y : a.y,
            std::signbit(sign.z) ? -a.z : a.z};
}

inline Float4 rotated(Float4 a)
{
    return {a.y, a.z, a.x};
}

inline bool anyGreater3(Float4 a, Float4 b)
{
    return a.x > b.x || a.y > b.y || a.z > b.z;
}

inline bool allLess3(Float4 a, Float4 b)
{
    return a.x < b.x && a.y < b.y && a.z < b.z;
}

inline float sum3(Float4 a)
{
    return (a.x + a.y) + a.z;
}

inline Float4 splatSum3(Float4 a)
{
    return splat(sum3(a));
}

inline float firstOf(Float4 a)
{
    return a.x;
}

inline Float4 withSignOf(Float4 a, Float4 sign)
{
    return {std::copysign(a.x, sign.x), std::copysign(a.y, sign.y), std::copysign(a.z, sign.z)};
}

inline Float4 zeroUnlessPositive(Float4 m, Float4 value)
{
    return {0.0f >= m.x ? 0.0f : value.x, 0.0f >= m.y ? 0.0f : value.y,
            0.0f >= m.z ? 0.0f : value.z};
}

inline bool areFinite3(Float4 a)
{
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

#endif

}  // namespace Tessary
