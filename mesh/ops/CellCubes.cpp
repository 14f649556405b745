#include <TessaryMesh/Operations.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "ops/CellSize.h"

namespace TessaryMesh {
namespace {

MutablePtr<Object> cubesOf(const Array<Cell>& cells, double cellSize)
{
    // Point 4 x + 2 y + z of a cube is the one at these ends of its axes.
    constexpr uint kFaces[6][4] = {{0, 1, 3, 2}, {4, 6, 7, 5}, {0, 4, 5, 1},
                                   {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 5, 7, 3}};
    checkCellSize(cellSize);
    if (cells.size() > 0xFFFFFFFFu / 24)
        throw ArgumentError("cells", "more cubes than a mesh of 32-bit indices holds");
    Array<float3> points(8 * cells.size());
    Array<uint> offsets(6 * cells.size() + 1);
    Array<uint> corners(24 * cells.size());
    const auto at = [cellSize](std::int32_t i, std::size_t end) {
        return static_cast<float>((static_cast<double>(i) + static_cast<double>(end)) * cellSize);
    };
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i % 65536 == 0)
            throwIfCancelled();
        const Cell& c = cells[i];
        for (std::size_t p = 0; p < 8; ++p)
            points[8 * i + p] = {at(c.x, p >> 2), at(c.y, p >> 1 & 1), at(c.z, p & 1)};
        for (std::size_t k = 0; k < 24; ++k)
            corners[24 * i + k] = static_cast<uint>(8 * i) + kFaces[k / 4][k % 4];
    }
    for (std::size_t f = 0; f < offsets.size(); ++f)
        offsets[f] = static_cast<uint>(4 * f);
    return Geometry::makeMesh(std::move(points), std::move(offsets), std::move(corners));
}

}  // namespace

MutablePtr<Object> makeCubes(const Array<Cell>& cells, double cellSize)
{
    return guarded([&] { return cubesOf(cells, cellSize); });
}

}  // namespace TessaryMesh
