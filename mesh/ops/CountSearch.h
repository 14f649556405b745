#pragma once

#include <cstdint>
#include <functional>

namespace TessaryMesh {

/// Tries distances until `samplesAt` yields `wanted` within 2 %, or no further one promises more.
///
/// Begins at `guess` and never goes below `least`. More samples fit at smaller distances, with a
/// ripple, and by a power that depends on whether the surface is broad, long or in pieces; neither is
/// known beforehand.
void searchForCount(std::uint64_t wanted, double guess, double least,
                    const std::function<std::uint64_t(double)>& samplesAt);

}  // namespace TessaryMesh
