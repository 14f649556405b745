#pragma once

// Three or four floats in one vector register, for kernels whose arithmetic is the same per lane.
//
// Every operation is the rounding of the plain float operation, so that a kernel has the same bits
// with SSE2 and, where that is missing or TESSARY_SCALAR_LANES is defined, without.

#include "host/Host.h"

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

/// a, negated in all lanes where `sign` is negative (-0 too).
inline Float4 timesSignOf(Float4 a, float sign)
{
    return _mm_xor_ps(a, _mm_and_ps(_mm_set1_ps(sign), _mm_set1_ps(-0.0f)));
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

/// 0 where 0 >= m, else `value`; without a jump, which would be hard to foresee.
inline float zeroUnlessPositive(float m, float value)
{
    const Float4 keep = _mm_cmpnge_ss(_mm_setzero_ps(), _mm_set_ss(m));
    return _mm_cvtss_f32(_mm_and_ps(_mm_set_ss(value), keep));
}

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

inline Float4 timesSignOf(Float4 a, float sign)
{
    return std::signbit(sign) ? negated(a) : a;
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

inline float zeroUnlessPositive(float m, float value)
{
    return 0.0f >= m ? 0.0f : value;
}

#endif

}  // namespace Tessary
