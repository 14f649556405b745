#pragma once

// Closed surfaces to sample, and distances that leave a wanted number of samples on them.

#include "support/Inputs.h"

#include <Korvane/Object.h>
#include <reference/PoissonSample.h>

#include <cstdint>

namespace Bench {

using Surface = Reference::TriangleMesh;

/// About `triangleCount` triangles: the faces of a cube in squares, drawn out to a sphere.
Surface sphereSurface(uint triangleCount);

/// About `triangleCount` triangles of a torus grid.
Surface torusSurface(uint triangleCount);

Pelon::MutablePtr<Korvane::Object> objectOf(const Surface& surface);

float areaOf(const Surface& surface);

/// The distance at which about `samples` are left.
float distanceLeaving(std::uint64_t samples, float area);

std::uint64_t hashOfSamples(const Korvane::Object& cloud);

}  // namespace Bench
