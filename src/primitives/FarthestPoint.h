#pragma once

#include "primitives/EnclosingBall.h"

namespace Tessary {

/// A point of an array, and its squared distance to a centre.
struct Farthest {
    static constexpr std::size_t kNone = ~std::size_t{0};

    std::size_t index;
    double squaredDistance;
};

/// The point farthest from `center`, of equally far ones the first, if it is farther than `atLeast`, a
/// squared distance; else kNone and `atLeast`. A point at a distance that is NaN is never found.
Farthest farthestFrom(const Vector3d& center, const Array<float3>& points, double atLeast);

/// The largest squared distance to `center` in float; 0 where there is none.
float largestFloatDistance(const float3& center, const Array<float3>& points);

}  // namespace Tessary
