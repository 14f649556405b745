#pragma once

#include "base/Host.h"
#include "check/Orientation.h"

#include <vector>

namespace TessaryMesh {

/// Splits a polygon of the plane that runs counter-clockwise into triangles of its corners.
///
///   3-------2     an ear is a convex corner behind whose diagonal nothing of the polygon lies:
///    \     /      here 3, cut off as 2 3 0. Clipped are, first in first out, the corners that are ears
///     1   .       in their order, and then those that become ears beside the clipped ones, so
///      \ .        that a ring of ears is clipped every other one. What has no area, a corner on the
///       0         line between its neighbours, is clipped where no other ear is left.
///
/// out     triangles  three places in the polygon for each of polygon.size() - 2, counter-clockwise: every
///                    side of the polygon is a side of one of them
/// false   where the polygon crosses itself, as far as no such triangles exist
/// order   the same on every machine: only signs of exact determinants decide
/// cost    n log n for what people draw: a test looks up the corners that are not convex in a tree
bool clipEars(const std::vector<PlanePoint>& polygon, std::vector<uint>& triangles);

}  // namespace TessaryMesh
