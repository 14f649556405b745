#pragma once

#include "check/Orientation.h"

#include <vector>

namespace TessaryMesh {

/// Whether two sides of a polygon cross, both inside: exactly, whatever its coordinates. Sides that only
/// touch, as those of a seam that leads to a hole, do not.
///
/// cost  n log n
bool crossesItself(const std::vector<PlanePoint>& polygon);

}  // namespace TessaryMesh
