#pragma once

// What Simd.h describes, in the registers of AArch64, whose vectors round as its plain operations do.

#include "base/Host.h"

#include <cstdint>
#include <cstring>

#include <arm_neon.h>

namespace Tessary {

using Float4 = float32x4_t;
using Int4 = int32x4_t;
using Double2 = float64x2_t;
using Mask4 = uint32x4_t;

inline Float4 load3(const float3& v)
{
    float32x2_t xy;
    std::memcpy(&xy, &v, sizeof xy);
    return vcombine_f32(xy, vset_lane_f32(v.z, vdup_n_f32(0.0f), 0));
}

inline void store3(float3& v, Float4 a)
{
    const float32x2_t xy = vget_low_f32(a);
    std::memcpy(&v, &xy, sizeof xy);
    v.z = vgetq_lane_f32(a, 2);
}

inline Float4 load4(const float* p)
{
    return vld1q_f32(p);
}

inline Float4 splat(float value)
{
    return vdupq_n_f32(value);
}

inline Float4 add(Float4 a, Float4 b)
{
    return vaddq_f32(a, b);
}

inline Float4 sub(Float4 a, Float4 b)
{
    return vsubq_f32(a, b);
}

inline Float4 mul(Float4 a, Float4 b)
{
    return vmulq_f32(a, b);
}

// The instructions for minima and maxima would yield NaN.
inline Float4 lesserOr(Float4 a, Float4 b)
{
    return vbslq_f32(vcltq_f32(a, b), a, b);
}

inline Float4 greaterOr(Float4 a, Float4 b)
{
    return vbslq_f32(vcgtq_f32(a, b), a, b);
}

inline Float4 negated(Float4 a)
{
    return vnegq_f32(a);
}

inline Float4 absolute(Float4 a)
{
    return vabsq_f32(a);
}

inline uint32x4_t signBits()
{
    return vdupq_n_u32(0x80000000u);
}

inline Float4 timesSignOf(Float4 a, Float4 sign)
{
    const uint32x4_t flipped = vandq_u32(vreinterpretq_u32_f32(sign), signBits());
    return vreinterpretq_f32_u32(veorq_u32(vreinterpretq_u32_f32(a), flipped));
}

inline Float4 withSignOf(Float4 a, Float4 sign)
{
    return vbslq_f32(signBits(), sign, a);
}

inline Float4 zeroUnlessPositive(Float4 m, Float4 value)
{
    const uint32x4_t isZero = vcgeq_f32(vdupq_n_f32(0.0f), m);
    return vreinterpretq_f32_u32(vbicq_u32(vreinterpretq_u32_f32(value), isZero));
}

inline Float4 rotated(Float4 a)
{
    const Float4 up = vextq_f32(a, a, 1);  // lanes 1, 2, 3, 0
    return vcopyq_laneq_f32(vcopyq_laneq_f32(up, 2, a, 0), 3, a, 3);
}

template <int k>
Float4 lane(Float4 a)
{
    return vdupq_laneq_f32(a, k);
}

inline float firstOf(Float4 a)
{
    return vgetq_lane_f32(a, 0);
}

inline float sum3(Float4 a)
{
    return (vgetq_lane_f32(a, 0) + vgetq_lane_f32(a, 1)) + vgetq_lane_f32(a, 2);
}

inline Float4 splatSum3(Float4 a)
{
    return vaddq_f32(vaddq_f32(lane<0>(a), lane<1>(a)), lane<2>(a));
}

inline Mask4 less(Float4 a, Float4 b)
{
    return vcltq_f32(a, b);
}

inline Mask4 lessOrEqual(Float4 a, Float4 b)
{
    return vcleq_f32(a, b);
}

inline Mask4 equal(Float4 a, Float4 b)
{
    return vceqq_f32(a, b);
}

inline Mask4 notEqual(Float4 a, Float4 b)
{
    return vmvnq_u32(vceqq_f32(a, b));
}

inline Mask4 both(Mask4 a, Mask4 b)
{
    return vandq_u32(a, b);
}

inline Mask4 either(Mask4 a, Mask4 b)
{
    return vorrq_u32(a, b);
}

inline uint bitsOf(Mask4 a)
{
    const uint32x4_t bitOfLane = {1, 2, 4, 8};
    return vaddvq_u32(vandq_u32(a, bitOfLane));
}

inline Int4 load4(const std::int32_t* p)
{
    return vld1q_s32(p);
}

inline Int4 splat(std::int32_t value)
{
    return vdupq_n_s32(value);
}

inline Int4 sub(Int4 a, Int4 b)
{
    return vsubq_s32(a, b);
}

inline Mask4 less(Int4 a, Int4 b)
{
    return vcltq_s32(a, b);
}

inline Float4 toFloat(Int4 a)
{
    return vcvtq_f32_s32(a);
}

struct FourPoints {
    Float4 x, y, z;

    explicit FourPoints(const float3* p)
    {
        const float32x4x3_t transposed = vld3q_f32(&p->x);
        x = transposed.val[0];
        y = transposed.val[1];
        z = transposed.val[2];
    }
};

inline Double2 pair(double a, double b)
{
    return vcombine_f64(vdup_n_f64(a), vdup_n_f64(b));
}

inline Double2 load2(const float* p)
{
    return vcvt_f64_f32(vld1_f32(p));
}

inline Double2 add(Double2 a, Double2 b)
{
    return vaddq_f64(a, b);
}

inline Double2 sub(Double2 a, Double2 b)
{
    return vsubq_f64(a, b);
}

inline Double2 mul(Double2 a, Double2 b)
{
    return vmulq_f64(a, b);
}

inline Double2 greaterOr(Double2 a, Double2 b)
{
    return vbslq_f64(vcgtq_f64(a, b), a, b);
}

inline Double2 lowHigh(Double2 a, Double2 b)
{
    return vcopyq_laneq_f64(a, 1, b, 1);
}

inline Double2 highLow(Double2 a, Double2 b)
{
    return vextq_f64(a, b, 1);
}

inline double firstOf(Double2 a)
{
    return vgetq_lane_f64(a, 0);
}

}  // namespace Tessary
