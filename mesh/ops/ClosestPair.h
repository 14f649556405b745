#pragma once

#include "base/Host.h"

#include <optional>

namespace TessaryMesh {

/// The smallest distance between two of the points; none for fewer than two.
///
/// Every pair that could be the nearest is measured, in double precision, so the result is exact up
/// to that rounding whatever `guess` is. A guess near the result finds it in linear time; one far
/// below it costs further passes, one far above it compares more pairs. Coordinates are finite.
/// Throws std::runtime_error when the caller's job is cancelled.
std::optional<double> smallestDistance(const Array<float3>& points, double guess);

}  // namespace TessaryMesh
