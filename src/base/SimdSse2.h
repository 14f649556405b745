#pragma once

// What Simd.h describes, in SSE2 registers.

#include "base/Host.h"

#include <cstdint>
#include <cstring>

#include <emmintrin.h>

namespace Tessary {

using Float4 = __m128;
using Int4 = __m128i;
using Double2 = __m128d;
using Mask4 = __m128;

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

inline Float4 load4(const float* p)
{
    return _mm_loadu_ps(p);
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

inline Float4 lesserOr(Float4 a, Float4 b)
{
    return _mm_min_ps(a, b);
}

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

inline Float4 timesSignOf(Float4 a, Float4 sign)
{
    return _mm_xor_ps(a, _mm_and_ps(sign, _mm_set1_ps(-0.0f)));
}

inline Float4 withSignOf(Float4 a, Float4 sign)
{
    const Float4 signBit = _mm_set1_ps(-0.0f);
    return _mm_or_ps(_mm_andnot_ps(signBit, a), _mm_and_ps(sign, signBit));
}

inline Float4 zeroUnlessPositive(Float4 m, Float4 value)
{
    return _mm_and_ps(value, _mm_cmpnge_ps(_mm_setzero_ps(), m));
}

inline Float4 rotated(Float4 a)
{
    return _mm_shuffle_ps(a, a, _MM_SHUFFLE(3, 0, 2, 1));
}

template <int k>
Float4 lane(Float4 a)
{
    return _mm_shuffle_ps(a, a, _MM_SHUFFLE(k, k, k, k));
}

inline float firstOf(Float4 a)
{
    return _mm_cvtss_f32(a);
}

inline float sum3(Float4 a)
{
    return _mm_cvtss_f32(_mm_add_ss(_mm_add_ss(a, lane<1>(a)), _mm_movehl_ps(a, a)));
}

inline Float4 splatSum3(Float4 a)
{
    return _mm_add_ps(_mm_add_ps(lane<0>(a), lane<1>(a)), lane<2>(a));
}

inline Mask4 less(Float4 a, Float4 b)
{
    return _mm_cmplt_ps(a, b);
}

inline Mask4 lessOrEqual(Float4 a, Float4 b)
{
    return _mm_cmple_ps(a, b);
}

inline Mask4 equal(Float4 a, Float4 b)
{
    return _mm_cmpeq_ps(a, b);
}

inline Mask4 notEqual(Float4 a, Float4 b)
{
    return _mm_cmpneq_ps(a, b);
}

inline Mask4 both(Mask4 a, Mask4 b)
{
    return _mm_and_ps(a, b);
}

inline Mask4 either(Mask4 a, Mask4 b)
{
    return _mm_or_ps(a, b);
}

inline uint bitsOf(Mask4 a)
{
    return static_cast<uint>(_mm_movemask_ps(a));
}

inline Int4 load4(const std::int32_t* p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

inline Int4 splat(std::int32_t value)
{
    return _mm_set1_epi32(value);
}

inline Int4 sub(Int4 a, Int4 b)
{
    return _mm_sub_epi32(a, b);
}

inline Mask4 less(Int4 a, Int4 b)
{
    return _mm_castsi128_ps(_mm_cmplt_epi32(a, b));
}

inline Float4 toFloat(Int4 a)
{
    return _mm_cvtepi32_ps(a);
}

struct FourPoints {
    Float4 x, y, z;

    explicit FourPoints(const float3* p)
    {
        const float* const f = &p->x;
        const Float4 a = _mm_loadu_ps(f);                                   // x0 y0 z0 x1
        const Float4 b = _mm_loadu_ps(f + 4);                               // y1 z1 x2 y2
        const Float4 c = _mm_loadu_ps(f + 8);                               // z2 x3 y3 z3
        const Float4 xy23 = _mm_shuffle_ps(b, c, _MM_SHUFFLE(2, 1, 3, 2));  // x2 y2 x3 y3
        const Float4 yz01 = _mm_shuffle_ps(a, b, _MM_SHUFFLE(1, 0, 2, 1));  // y0 z0 y1 z1
        x = _mm_shuffle_ps(a, xy23, _MM_SHUFFLE(2, 0, 3, 0));
        y = _mm_shuffle_ps(yz01, xy23, _MM_SHUFFLE(3, 1, 2, 0));
        z = _mm_shuffle_ps(yz01, c, _MM_SHUFFLE(3, 0, 3, 1));
    }
};

inline Double2 pair(double a, double b)
{
    return _mm_set_pd(b, a);
}

inline Double2 load2(const float* p)
{
    double bits;
    std::memcpy(&bits, p, sizeof bits);
    return _mm_cvtps_pd(_mm_castpd_ps(_mm_set_sd(bits)));
}

inline Double2 add(Double2 a, Double2 b)
{
    return _mm_add_pd(a, b);
}

inline Double2 sub(Double2 a, Double2 b)
{
    return _mm_sub_pd(a, b);
}

inline Double2 mul(Double2 a, Double2 b)
{
    return _mm_mul_pd(a, b);
}

inline Double2 greaterOr(Double2 a, Double2 b)
{
    return _mm_max_pd(a, b);
}

inline Double2 lowHigh(Double2 a, Double2 b)
{
    return _mm_shuffle_pd(a, b, 2);
}

inline Double2 highLow(Double2 a, Double2 b)
{
    return _mm_shuffle_pd(a, b, 1);
}

inline double firstOf(Double2 a)
{
    return _mm_cvtsd_f64(a);
}

}  // namespace Tessary
