#pragma once

#include "base/Host.h"

namespace Tessary {

/// Walks candidates in their order; each one that is left removes the later ones within `distance`.
///
/// A candidate lies in the cell floor(s p + 0.5), s = 1 / distance, at the offset s p - cell, and is
/// within the distance of another one where it lies in one of the 27 cells around it and the squares
/// of the differences add up to 1 at most. Cells that are no 32-bit integer are -2147483648, and a
/// candidate with three of those is isolated: it removes none and is never removed.
///
/// in     distance       above 1.1754944e-38
/// in     fixedPoints    remove candidates within the distance before the walk; may be null
/// out    (returned)     per candidate 1 if it was removed, else 0
/// cost   near linear; polls for cancellation where candidates lie near each other
Array<unsigned char> eliminate(const Array<float3>& positions, float distance,
                               const Array<float3>* fixedPoints = nullptr);

}  // namespace Tessary
