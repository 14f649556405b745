#pragma once

#include "base/Host.h"

#include <cstdint>

namespace TessaryMesh {

/// A cell of a grid of cubes of size h: [x h, (x + 1) h] and the same for y and z.
struct Cell {
    std::int32_t x, y, z;
};

/// The cells that a mesh's faces touch, by the overlap test of triangles and boxes, once each, in
/// ascending order of x, then y, then z; the same for any number of threads.
///
/// Faces count as the fans of triangles that they split into. The grid begins at the origin, so that
/// the cells of several meshes fit together. A face that just touches a cell counts, as far as
/// rounding in float goes.
///
/// Throws std::invalid_argument, with what to do, where the grid would be more than 2,097,152 cells
/// long on a side or begin further than 2^30 cells from the origin; std::runtime_error when the
/// caller's job is cancelled.
Array<Cell> touchedCells(const Object& mesh, double cellSize);

/// A mesh of a closed cube for each cell, faces turned outwards.
///
/// Throws std::invalid_argument where 32-bit indices cannot name the corners.
MutablePtr<Object> makeCubes(const Array<Cell>& cells, double cellSize);

}  // namespace TessaryMesh
