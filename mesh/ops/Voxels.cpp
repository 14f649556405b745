#include <TessaryMesh/Operations.h>

#include <Tessary/Primitives.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MachineMemory.h"
#include "base/MeshArrays.h"
#include "base/Vectors.h"
#include "ops/CellSize.h"
#include "ops/RowBounds.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_sort.h>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace TessaryMesh {
namespace {

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
          m_scale(std::ldexp(1.0, -std::ilogb(cellSize))),
          m_size(cellSize * m_scale),
          m_halfSize(static_cast<float>(m_size / 2))
    {
        m_grid = boxOf(bounds(0, corners.size()));
        for (int k = 0; k < 3; ++k)
            if (m_grid.last[k] - m_grid.first[k] >= kMostCells)
                throw ArgumentError("cellSize", "the mesh is more than " +
                                                    std::to_string(kMostCells) +
                                                    " cells long; a larger cell makes fewer");
        for (int k = 0; k < 3; ++k)
            for (const std::int64_t cell : {m_grid.first[k], m_grid.last[k]})
                m_rounding =
                    std::max(m_rounding, 0x1p-22 * std::fabs(static_cast<double>(cell)) * m_size);
    }

    Array<Cell> cells()
    {
        refuseTooMany();
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

    float3 point(std::size_t corner) const
    {
        const float3& p = m_points[m_corners[corner]];
        return {scaled(p.x), scaled(p.y), scaled(p.z)};
    }

    float scaled(float x) const { return static_cast<float>(double{x} * m_scale); }

    // A triangle touches a cell at least behind every square of the grid that its shadow along an axis
    // covers.
    double leastCells() const
    {
        double shadows = 0;
        for (std::size_t c = 0; c + 2 < m_corners.size(); c += 3) {
            const double3 n =
                cross(difference(point(c + 1), point(c)), difference(point(c + 2), point(c)));
            shadows += std::max({std::fabs(n.x), std::fabs(n.y), std::fabs(n.z)}) / 2;
        }
        return shadows / (m_size * m_size);
    }

    void refuseTooMany() const
    {
        const double cells = leastCells(), bytes = cells * sizeof(std::uint64_t);
        const auto memory = static_cast<double>(machineMemory());
        if (bytes <= memory)
            return;
        char text[64];
        std::snprintf(text, sizeof text, "there are %.2g cells or more, which take ", cells);
        std::string message =
            text + memoryText(bytes) + " of memory, and there are " + memoryText(memory);
        std::snprintf(text, sizeof text, " (take a cell size from %.2g on)",
                      1.05 * m_size / m_scale * std::sqrt(bytes / memory));
        throw OutOfMemory("", message + text, bytes);
    }

    Bounds bounds(std::size_t begin, std::size_t end) const
    {
        const float3 p = point(begin);
        Bounds b = {{p.x, p.y, p.z}, {p.x, p.y, p.z}};
        for (std::size_t c = begin; c < end; ++c) {
            const float3 q = point(c);
            const float x[] = {q.x, q.y, q.z};
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
                throw ArgumentError(
                    "cellSize",
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
            const float3 p[3] = {point(3 * t), point(3 * t + 1), point(3 * t + 2)};
            const CellBox box = boxOfTriangle(t);
            const std::optional<RowBounds> bounds = boundsOf(p, box);
            for (; row < std::min(end, rows[t + 1]); ++row)
                visitRow(p, box, row - rows[t], bounds, found);
        }
    }

    // Small boxes are walked sooner than bounds are found.
    std::optional<RowBounds> boundsOf(const float3 (&p)[3], const CellBox& box) const
    {
        constexpr std::uint64_t kSmall = 64;
        if (box.length(0) * box.length(1) * box.length(2) <= kSmall)
            return std::nullopt;
        const std::uint64_t longest = std::max({box.length(0), box.length(1), box.length(2)});
        return RowBounds(p, m_size, static_cast<double>(longest + 1) * m_size + m_rounding);
    }

    void visitRow(const float3 (&p)[3], const CellBox& box, std::uint64_t row,
                  const std::optional<RowBounds>& bounds, std::vector<std::uint64_t>& found) const
    {
        const float3 half = {m_halfSize, m_halfSize, m_halfSize};
        const std::int64_t x = box.first[0] + static_cast<std::int64_t>(row / box.length(1));
        const std::int64_t y = box.first[1] + static_cast<std::int64_t>(row % box.length(1));
        float3 center = {middle(x), middle(y), 0};
        std::int64_t first = box.first[2], last = box.last[2];
        if (bounds && !narrow(*bounds, center, first, last))
            return;
        for (std::int64_t z = first; z <= last; ++z) {
            center.z = middle(z);
            if (Tessary::intersect_triangle_with_axis_aligned_box(p[0], p[1], p[2], center, half))
                found.push_back(keyOf(x, y, z));
        }
    }

    // Narrows the cells along z.
    bool narrow(const RowBounds& bounds, const float3& center, std::int64_t& first,
                std::int64_t& last) const
    {
        double low = static_cast<double>(first) * m_size - m_rounding;
        double high = static_cast<double>(last + 1) * m_size + m_rounding;
        if (!bounds.narrow(center.x, center.y, low, high))
            return false;
        const double firstLeft = std::floor((low - m_rounding) / m_size - 0.5);
        const double lastLeft = std::ceil((high + m_rounding) / m_size - 0.5);
        first = std::max(first, static_cast<std::int64_t>(firstLeft));
        last = std::min(last, static_cast<std::int64_t>(lastLeft));
        return true;
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
    // A power of two, by which everything is multiplied, which rounds nothing: cells of about 1 keep
    // the products of the overlap test in the range of floats.
    double m_scale;
    double m_size;
    float m_halfSize;
    CellBox m_grid{};
    double m_rounding = 0;  // less than this moves the middle of a cell
};

}  // namespace

Array<Cell> touchedCells(const Object& mesh, double cellSize)
{
    return guarded([&] {
        checkCellSize(cellSize);
        const MeshArrays arrays(mesh);
        const Array<uint> triangles = fanTriangles(*arrays.faceOffset, *arrays.faceVertex);
        return triangles.empty() ? Array<Cell>()
                                 : Voxelizer(*arrays.points, triangles, cellSize).cells();
    });
}

}  // namespace TessaryMesh
