#pragma once

#include "primitives/EnclosingBall.h"

namespace Tessary {

/// The largest squared distance of `count` points to the ball's centre, at least its squared radius.
/// Every distance is computed by itself, with the same bits however many are computed at once; one
/// that is NaN does not count.
double largestDistance(const float3* points, std::size_t count, const Ball& ball);

/// The same in float, at least 0.
float largestDistance(const float3* points, std::size_t count, const float3& center);

}  // namespace Tessary
