#include "meshio/Voxels.h"

#include <Korvane/Geometry.h>
#include <Tessary/Primitives.h>
#include <Tessary/Triangulation.h>

#include "meshio/Cancelled.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_sort.h>
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

namespace MeshIo {
namespace {

using Korvane::Object;
using Korvane::Math::float3;
using Pelon::Array;
using Pelon::uint;
namespace Geometry = Korvane::Geometry;

// Cells are sorted as numbers of 3 * 21 bits, counted from the grid's first cell.
constexpr int kAxisBits = 21;
constexpr std::int64_t kMostCells = std::int64_t{1} << kAxisBits;
constexpr double kFarthest = 1 << 30;

// Cells from `first` up to and with `last` along each axis.
struct CellBox {
    std::int64_t first[3];
    std::int64_t last[3];

    std::uint64_t length(int axis) const
    {
        return static_cast<std::uint64_t>(last[axis] - first[axis] + 1);
    }
};

class Voxelizer {
public:
    Voxelizer(const Array<float3>& points, const Array<uint>& corners, double cellSize)
        : m_points(points),
          m_corners(corners),
          m_size(cellSize),
          m_halfSize(static_cast<float>(cellSize / 2))
    {
        m_grid = boxOf(bounds(0, corners.size()));
        for (int k = 0; k < 3; ++k)
            if (m_grid.last[k] - m_grid.first[k] >= kMostCells)
                throw std::invalid_argument("the mesh is more than " + std::to_string(kMostCells) +
                                            " cells long; a larger cell makes fewer");
    }

    Array<Cell> cells()
    {
        const std::size_t triangles = m_corners.size() / 3;
        std::vector<std::uint64_t> rows(triangles + 1);
        for (std::size_t t = 0; t < triangles; ++t) {
            const CellBox box = boxOfTriangle(t);
            rows[t + 1] = rows[t] + box.length(0) * box.length(1);
        }
        std::vector<std::uint64_t> found = visit(rows);
        tbb::parallel_sort(found.begin(), found.end());
        found.erase(std::unique(found.begin(), found.end()), found.end());
        Array<Cell> cells(found.size());
        std::transform(found.begin(), found.end(), cells.begin(),
                       [this](std::uint64_t key) { return cellOf(key); });
        return cells;
    }

private:
    struct Bounds {
        float low[3];
        float high[3];
    };

    const float3& point(std::size_t corner) const { return m_points[m_corners[corner]]; }

    Bounds bounds(std::size_t begin, std::size_t end) const
    {
        const float3& p = point(begin);
        Bounds b = {{p.x, p.y, p.z}, {p.x, p.y, p.z}};
        for (std::size_t c = begin; c < end; ++c) {
            const float* const x = &point(c).x;
            for (int k = 0; k < 3; ++k) {
                b.low[k] = std::min(b.low[k], x[k]);
                b.high[k] = std::max(b.high[k], x[k]);
            }
        }
        return b;
    }

    // Cells are closed: where a bound lies between two, both count.
    CellBox boxOf(const Bounds& b) const
    {
        CellBox box{};
        for (int k = 0; k < 3; ++k) {
            const double first = std::ceil(b.low[k] / m_size) - 1;
            const double last = std::floor(b.high[k] / m_size);
            if (!(first >= -kFarthest && last <= kFarthest))
                throw std::invalid_argument(
                    "the mesh lies further than 2^30 cells from the origin; a larger cell makes "
                    "fewer");
            box.first[k] = static_cast<std::int64_t>(first);
            box.last[k] = static_cast<std::int64_t>(last);
        }
        return box;
    }

    CellBox boxOfTriangle(std::size_t t) const { return boxOf(bounds(3 * t, 3 * t + 3)); }

    // The rows along z of the cells around each triangle are the work, so that a few large triangles
    // occupy every thread, and leave off when told to, as well as many small ones. rows[t] counts
    // those before triangle t.
    std::vector<std::uint64_t> visit(const std::vector<std::uint64_t>& rows) const
    {
        constexpr std::uint64_t kPiece = 128, kRound = 512 * kPiece;
        std::vector<std::uint64_t> found;
        std::vector<std::vector<std::uint64_t>> parts;
        for (std::uint64_t begin = 0; begin < rows.back(); begin += kRound) {
            throwIfCancelled();
            const std::uint64_t end = std::min(begin + kRound, rows.back());
            parts.assign((end - begin + kPiece - 1) / kPiece, {});
            tbb::parallel_for(std::size_t{0}, parts.size(), [&](std::size_t i) {
                const std::uint64_t first = begin + i * kPiece;
                visitRows(rows, first, std::min(first + kPiece, end), parts[i]);
            });
            for (const std::vector<std::uint64_t>& part : parts)
                found.insert(found.end(), part.begin(), part.end());
        }
        return found;
    }

    void visitRows(const std::vector<std::uint64_t>& rows, std::uint64_t begin, std::uint64_t end,
                   std::vector<std::uint64_t>& found) const
    {
        auto t = static_cast<std::size_t>(std::upper_bound(rows.begin(), rows.end(), begin) -
                                          rows.begin() - 1);
        for (std::uint64_t row = begin; row < end; ++t) {
            const CellBox box = boxOfTriangle(t);
            for (; row < std::min(end, rows[t + 1]); ++row)
                visitRow(t, box, row - rows[t], found);
        }
    }

    void visitRow(std::size_t t, const CellBox& box, std::uint64_t row,
                  std::vector<std::uint64_t>& found) const
    {
        const float3 &a = point(3 * t), &b = point(3 * t + 1), &c = point(3 * t + 2);
        const float3 half = {m_halfSize, m_halfSize, m_halfSize};
        const std::int64_t x = box.first[0] + static_cast<std::int64_t>(row / box.length(1));
        const std::int64_t y = box.first[1] + static_cast<std::int64_t>(row % box.length(1));
        for (std::int64_t z = box.first[2]; z <= box.last[2]; ++z) {
            const float3 center = {middle(x), middle(y), middle(z)};
            if (Tessary::intersect_triangle_with_axis_aligned_box(a, b, c, center, half))
                found.push_back(keyOf(x, y, z));
        }
    }

    float middle(std::int64_t i) const
    {
        return static_cast<float>((static_cast<double>(i) + 0.5) * m_size);
    }

    std::uint64_t keyOf(std::int64_t x, std::int64_t y, std::int64_t z) const
    {
        const auto part = [this](std::int64_t i, int axis) {
            return static_cast<std::uint64_t>(i - m_grid.first[axis]);
        };
        return part(x, 0) << 2 * kAxisBits | part(y, 1) << kAxisBits | part(z, 2);
    }

    Cell cellOf(std::uint64_t key) const
    {
        const auto part = [this, key](int axis) {
            const std::uint64_t i = key >> (2 - axis) * kAxisBits & (kMostCells - 1);
            return static_cast<std::int32_t>(static_cast<std::int64_t>(i) + m_grid.first[axis]);
        };
        return {part(0), part(1), part(2)};
    }

    const Array<float3>& m_points;
    const Array<uint>& m_corners;
    double m_size;
    float m_halfSize;
    CellBox m_grid{};
};

}  // namespace

Array<Cell> touchedCells(const Object& mesh, double cellSize)
{
    const auto points = Geometry::dataArray<float3>(mesh, Geometry::sPointPosition);
    const auto offsets = Geometry::dataArray<uint>(mesh, Geometry::sFaceOffset);
    const auto corners = Geometry::dataArray<uint>(mesh, Geometry::sFaceVertex);
    if (!points || !offsets || !corners)
        return {};
    Array<uint> triangleOffsets, triangleCorners;
    if (!Tessary::computeTriangulation(*offsets, *corners, triangleOffsets, triangleCorners))
        throw std::invalid_argument("a face has fewer than three corners");
    if (triangleCorners.empty())
        return {};
    return Voxelizer(*points, triangleCorners, cellSize).cells();
}

Pelon::MutablePtr<Object> makeCubes(const Array<Cell>& cells, double cellSize)
{
    // Point 4 x + 2 y + z of a cube is the one at these ends of its axes.
    constexpr uint kFaces[6][4] = {{0, 1, 3, 2}, {4, 6, 7, 5}, {0, 4, 5, 1},
                                   {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 5, 7, 3}};
    if (cells.size() > 0xFFFFFFFFu / 24)
        throw std::invalid_argument("more cubes than a mesh of 32-bit indices holds");
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

}  // namespace MeshIo
