#pragma once

// A value between two or three others: blended where the type is a real one, else picked.
//
//                                            blended                   picked
//   on an edge from a to b                   t a + (1 - t) b           a where t >= 1/2, else b
//   in a triangle of corners a, b, c         w0 a + w1 b + w2 c        the one of the largest weight
//
// Weights are floats, widened first where the values are doubles.

#include "base/Host.h"
#include "base/MeshLayout.h"
#include "cutmesh/OriginCode.h"

namespace Tessary {

/// How many components of a type are blended; none of a type that is picked.
template <class T>
inline constexpr int kBlendedComponents = 0;
template <>
inline constexpr int kBlendedComponents<float> = 1;
template <>
inline constexpr int kBlendedComponents<double> = 1;
template <>
inline constexpr int kBlendedComponents<Korvane::Math::float2> = 2;
template <>
inline constexpr int kBlendedComponents<Korvane::Math::float3> = 3;
template <>
inline constexpr int kBlendedComponents<Korvane::Math::float4> = 4;
template <>
inline constexpr int kBlendedComponents<Korvane::Math::double2> = 2;
template <>
inline constexpr int kBlendedComponents<Korvane::Math::double3> = 3;
template <>
inline constexpr int kBlendedComponents<Korvane::Math::double4> = 4;

/// `f` of each component of the values.
template <class T, class F, class... V>
T componentwise(const F& f, const V&... v)
{
    if constexpr (kBlendedComponents<T> == 1)
        return f(v...);
    else if constexpr (kBlendedComponents<T> == 2)
        return {f(v.x...), f(v.y...)};
    else if constexpr (kBlendedComponents<T> == 3)
        return {f(v.x...), f(v.y...), f(v.z...)};
    else
        return {f(v.x...), f(v.y...), f(v.z...), f(v.w...)};
}

template <class T>
T betweenTwo(float t, const T& a, const T& b)
{
    if constexpr (kBlendedComponents<T> == 0)
        return t >= 0.5f ? a : b;
    else
        return componentwise<T>(
            [t](auto start, auto end) {
                const decltype(start) s = t;
                return s * start + (1 - s) * end;
            },
            a, b);
}

/// The corner of the largest weight, tested in this order; not-a-number makes it the later corner.
inline int heaviestCorner(const float* w)
{
    if (w[0] >= w[2])
        return w[0] >= w[1] ? 0 : w[0] < w[1] ? 1 : 2;
    return w[0] < w[2] && w[1] >= w[2] ? 1 : 2;
}

template <class T>
T amongThree(const float* w, const T& a, const T& b, const T& c)
{
    if constexpr (kBlendedComponents<T> == 0) {
        const int corner = heaviestCorner(w);
        return corner == 0 ? a : corner == 1 ? b : c;
    } else {
        return componentwise<T>(
            [w](auto va, auto vb, auto vc) {
                using S = decltype(va);
                return S{w[0]} * va + S{w[1]} * vb + S{w[2]} * vc;
            },
            a, b, c);
    }
}

/// t of the edge that leaves each corner of the triangles, and w of each corner.
struct CutWeights {
    const float* edge;
    const float* triangle;
};

/// The value at a cut point, from `valueAt(corner)`, which must not return temporaries.
template <class T, class ValueAt>
T valueAtOrigin(uint code, CutWeights weights, const ValueAt& valueAt)
{
    const uint corner = cornerOf(code);
    const uint first = corner - corner % 3;
    const auto onEdge = [&](uint start) {
        return betweenTwo<T>(weights.edge[start], valueAt(start), valueAt(nextCorner(start)));
    };
    switch (kindOf(code)) {
        case CutKind::AtCorner:
            return valueAt(corner);
        case CutKind::OnLeavingEdge:
            return onEdge(corner);
        case CutKind::OnArrivingEdge:
            return onEdge(previousCorner(corner));
        default:
            break;
    }
    return amongThree<T>(weights.triangle + first, valueAt(first), valueAt(first + 1),
                         valueAt(first + 2));
}

}  // namespace Tessary
