#pragma once

#include <TessaryMesh/Errors.h>

#include <limits>

namespace TessaryMesh {

/// Throws ArgumentError unless cells of this size have a volume and floats can hold their corners.
inline void checkCellSize(double size)
{
    if (!(size > 0 && size <= double{std::numeric_limits<float>::max()}))
        throw ArgumentError("cellSize",
                            "the size of a cell is not a number above zero that floats can hold");
}

}  // namespace TessaryMesh
