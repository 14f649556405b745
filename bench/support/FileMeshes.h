#pragma once

// Meshes that are no grids: the demo mesh, and the bunny of the package glmark2-data.

#include "support/Inputs.h"

#include <Korvane/Object.h>

namespace Bench {

/// About a million faces of 3 to 8 corners at 512; see TessaryMesh::makeDemoMesh.
Polygons demoPolygons(uint resolution);

/// The fan triangles of polygons.
Triangles trianglesOf(const Polygons& mesh);

bool hasBunny();
Polygons bunny();

/// The topology of a mesh object.
Polygons polygonsOf(const Korvane::Object& mesh);

}  // namespace Bench
