#pragma once

// What Simd.h describes, lane after lane.

#include "base/Host.h"

#include <cmath>
#include <cstdint>

namespace Tessary {

template <class T, int count>
struct Lanes {
    T lane[count];
};

using Float4 = Lanes<float, 4>;
using Int4 = Lanes<std::int32_t, 4>;
using Double2 = Lanes<double, 2>;

struct Mask4 {
    uint bits;
};

template <class T, int count, class Operation>
Lanes<T, count> perLane(Lanes<T, count> a, Lanes<T, count> b, const Operation& operation)
{
    Lanes<T, count> result;
    for (int k = 0; k < count; ++k)
        result.lane[k] = operation(a.lane[k], b.lane[k]);
    return result;
}

template <class T, class Comparison>
Mask4 comparison(Lanes<T, 4> a, Lanes<T, 4> b, const Comparison& comparison)
{
    Mask4 result = {0};
    for (int k = 0; k < 4; ++k)
        result.bits |= (comparison(a.lane[k], b.lane[k]) ? 1u : 0u) << k;
    return result;
}

inline Float4 load3(const float3& v)
{
    return {{v.x, v.y, v.z, 0.0f}};
}

inline void store3(float3& v, Float4 a)
{
    v = {a.lane[0], a.lane[1], a.lane[2]};
}

template <class T>
Lanes<T, 4> load4(const T* p)
{
    return {{p[0], p[1], p[2], p[3]}};
}

template <class T>
Lanes<T, 4> splat(T value)
{
    return {{value, value, value, value}};
}

template <class T, int count>
Lanes<T, count> add(Lanes<T, count> a, Lanes<T, count> b)
{
    return perLane(a, b, [](T x, T y) { return x + y; });
}

template <class T, int count>
Lanes<T, count> sub(Lanes<T, count> a, Lanes<T, count> b)
{
    return perLane(a, b, [](T x, T y) { return x - y; });
}

inline Int4 sub(Int4 a, Int4 b)
{
    return perLane(a, b, [](std::int32_t x, std::int32_t y) {
        return static_cast<std::int32_t>(static_cast<uint>(x) - static_cast<uint>(y));
    });
}

template <class T, int count>
Lanes<T, count> mul(Lanes<T, count> a, Lanes<T, count> b)
{
    return perLane(a, b, [](T x, T y) { return x * y; });
}

inline Float4 lesserOr(Float4 a, Float4 b)
{
    return perLane(a, b, [](float x, float y) { return x < y ? x : y; });
}

template <class T, int count>
Lanes<T, count> greaterOr(Lanes<T, count> a, Lanes<T, count> b)
{
    return perLane(a, b, [](T x, T y) { return x > y ? x : y; });
}

inline Float4 timesSignOf(Float4 a, Float4 sign)
{
    return perLane(a, sign, [](float x, float s) { return std::signbit(s) ? -x : x; });
}

inline Float4 withSignOf(Float4 a, Float4 sign)
{
    return perLane(a, sign, [](float x, float s) { return std::copysign(x, s); });
}

inline Float4 negated(Float4 a)
{
    return timesSignOf(a, splat(-0.0f));
}

inline Float4 absolute(Float4 a)
{
    return withSignOf(a, splat(0.0f));
}

inline Float4 zeroUnlessPositive(Float4 m, Float4 value)
{
    return perLane(m, value, [](float x, float y) { return 0.0f >= x ? 0.0f : y; });
}

inline Float4 rotated(Float4 a)
{
    return {{a.lane[1], a.lane[2], a.lane[0], a.lane[3]}};
}

template <int k>
Float4 lane(Float4 a)
{
    return splat(a.lane[k]);
}

template <class T, int count>
T firstOf(Lanes<T, count> a)
{
    return a.lane[0];
}

inline float sum3(Float4 a)
{
    return (a.lane[0] + a.lane[1]) + a.lane[2];
}

inline Float4 splatSum3(Float4 a)
{
    return splat(sum3(a));
}

template <class T>
Mask4 less(Lanes<T, 4> a, Lanes<T, 4> b)
{
    return comparison(a, b, [](T x, T y) { return x < y; });
}

inline Mask4 lessOrEqual(Float4 a, Float4 b)
{
    return comparison(a, b, [](float x, float y) { return x <= y; });
}

inline Mask4 equal(Float4 a, Float4 b)
{
    return comparison(a, b, [](float x, float y) { return x == y; });
}

inline Mask4 notEqual(Float4 a, Float4 b)
{
    return comparison(a, b, [](float x, float y) { return x != y; });
}

inline Mask4 both(Mask4 a, Mask4 b)
{
    return {a.bits & b.bits};
}

inline Mask4 either(Mask4 a, Mask4 b)
{
    return {a.bits | b.bits};
}

inline uint bitsOf(Mask4 a)
{
    return a.bits;
}

inline Float4 toFloat(Int4 a)
{
    Float4 result;
    for (int k = 0; k < 4; ++k)
        result.lane[k] = static_cast<float>(a.lane[k]);
    return result;
}

struct FourPoints {
    Float4 x, y, z;

    explicit FourPoints(const float3* p)
        : x{{p[0].x, p[1].x, p[2].x, p[3].x}},
          y{{p[0].y, p[1].y, p[2].y, p[3].y}},
          z{{p[0].z, p[1].z, p[2].z, p[3].z}}
    {}
};

inline Double2 pair(double a, double b)
{
    return {{a, b}};
}

inline Double2 load2(const float* p)
{
    return {{p[0], p[1]}};
}

inline Double2 lowHigh(Double2 a, Double2 b)
{
    return {{a.lane[0], b.lane[1]}};
}

inline Double2 highLow(Double2 a, Double2 b)
{
    return {{a.lane[1], b.lane[0]}};
}

}  // namespace Tessary
