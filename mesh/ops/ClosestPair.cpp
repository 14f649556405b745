#include <TessaryMesh/Operations.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/ParallelBlocks.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace TessaryMesh {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Cell {
    std::int64_t x, y, z;
};

double squaredDistance(const float3& a, const float3& b)
{
    const double x = double{a.x} - b.x, y = double{a.y} - b.y, z = double{a.z} - b.z;
    return x * x + y * y + z * z;
}

// Points by the cell of a grid of cubes. Cells share buckets; whoever looks into one measures.
class BucketGrid {
public:
    BucketGrid(const Array<float3>& points, double cellSize) : m_size(cellSize)
    {
        std::size_t buckets = 16;
        while (buckets < points.size())
            buckets *= 2;
        m_mask = buckets - 1;
        m_begin.resize(buckets + 1);
        for (const float3& p : points)
            ++m_begin[bucketOf(cellOf(p)) + 1];
        for (std::size_t b = 0; b < buckets; ++b)
            m_begin[b + 1] += m_begin[b];
        std::vector<std::size_t> next(m_begin.begin(), m_begin.end() - 1);
        m_points.resize(points.size());
        for (const float3& p : points)
            m_points[next[bucketOf(cellOf(p))]++] = p;
    }

    // The smallest squared distance of all pairs that lie in one cell or in adjacent ones.
    double nearestSquared() const
    {
        constexpr std::size_t kPointsPerBlock = 256;
        std::vector<double> nearest(m_points.size() / kPointsPerBlock + 1, kInfinity);
        forEachRange(m_points.size(), kPointsPerBlock, [&](std::size_t begin, std::size_t end) {
            double found = kInfinity;
            for (std::size_t i = begin; i < end; ++i)
                found = std::min(found, nearestBefore(i));
            nearest[begin / kPointsPerBlock] = found;
        });
        return *std::min_element(nearest.begin(), nearest.end());
    }

private:
    Cell cellOf(const float3& p) const
    {
        const auto along = [this](float x) {
            return static_cast<std::int64_t>(std::floor(x / m_size));
        };
        return {along(p.x), along(p.y), along(p.z)};
    }

    // Neighbours along z are neighbours here. Cells that are tiny for the coordinates have numbers that
    // differ in their upper bits alone, so these count, too.
    std::size_t bucketOf(const Cell& c) const
    {
        const auto x = static_cast<std::uint64_t>(c.x) * 0x9E3779B97F4A7C15u;
        const auto y = static_cast<std::uint64_t>(c.y) * 0xC2B2AE3D27D4EB4Fu;
        const auto z = static_cast<std::uint64_t>(c.z);
        return ((x >> 36) + (y >> 37) + z + (z >> 36)) & m_mask;
    }

    // Each pair is seen from the later of the two.
    double nearestBefore(std::size_t i) const
    {
        const Cell c = cellOf(m_points[i]);
        double nearest = kInfinity;
        for (int dx = -1; dx <= 1; ++dx)
            for (int dy = -1; dy <= 1; ++dy)
                for (int dz = -1; dz <= 1; ++dz) {
                    const std::size_t bucket = bucketOf({c.x + dx, c.y + dy, c.z + dz});
                    const std::size_t end = std::min(m_begin[bucket + 1], i);
                    for (std::size_t j = m_begin[bucket]; j < end; ++j)
                        nearest = std::min(nearest, squaredDistance(m_points[i], m_points[j]));
                }
        return nearest;
    }

    double m_size;
    std::uint64_t m_mask;
    std::vector<std::size_t> m_begin;
    std::vector<float3> m_points;
};

// Beyond this many cells from the origin 64 bits could not number them, and all points would share a few.
double leastCellSize(const Array<float3>& points)
{
    constexpr double kMostCells = 0x1p60;
    double farthest = 0;
    for (const float3& p : points)
        for (const float x : {p.x, p.y, p.z})
            farthest = std::max(farthest, std::fabs(double{x}));
    return std::max(farthest / kMostCells, 1e-45);
}

std::optional<double> nearestPair(const Array<float3>& points, double guess)
{
    if (points.size() < 2)
        return std::nullopt;
    // A little more than the guess, which is what the nearest pair usually exceeds by a little; a guess
    // that is no number counts as none.
    double cell = std::max(leastCellSize(points), 1.25 * guess);
    for (;; cell *= 4) {
        throwIfCancelled();
        const double nearest = std::sqrt(BucketGrid(points, cell).nearestSquared());
        // No pair outside adjacent cells is nearer than a cell, rounding aside.
        if (nearest <= 0.999 * cell)
            return nearest;
    }
}

}  // namespace

std::optional<double> smallestDistance(const Array<float3>& points, double guess)
{
    return guarded([&] { return nearestPair(points, guess); });
}

}  // namespace TessaryMesh
