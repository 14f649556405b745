#pragma once

#include <Korvane/Math.h>

namespace Reference {

/// The overlap test by thirteen tests one after the other, nothing left out, in scalars.
bool triangleOverlapsBox(const Korvane::Math::float3& a, const Korvane::Math::float3& b,
                         const Korvane::Math::float3& c, const Korvane::Math::float3& center,
                         const Korvane::Math::float3& half);

}  // namespace Reference
