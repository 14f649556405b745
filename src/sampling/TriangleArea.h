#pragma once

#include "base/Host.h"

namespace Tessary {

/// The area of a triangle, accurate for slivers too.
float triangleArea(const float3& p0, const float3& p1, const float3& p2);

}  // namespace Tessary
