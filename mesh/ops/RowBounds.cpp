#include "ops/RowBounds.h"

#include "base/Host.h"
#include "base/Vectors.h"

#include <algorithm>
#include <cmath>

namespace TessaryMesh {
namespace {

// Far above what single precision loses on the way to a number of this size.
constexpr double kRounding = 0x1p-17;

// Beyond these, the products of the overlap test lose more than that.
constexpr double kLeastProduct = 1e-30, kMostProduct = 1e37;

// An axis that is almost level would need z to be known too well.
constexpr double kLevel = 1e-6;

}  // namespace

// The axes of the overlap test but for the grid's own: the normal, and the products of the edges with
// the grid's axes.
RowBounds::RowBounds(const float3 (&points)[3], double cellSize, double reach)
    : m_cellSize(cellSize), m_reach(reach), m_origin(points[0])
{
    for (int k = 0; k < 3; ++k)
        m_points[k] = difference(points[k], m_origin);
    const double square = reach * reach;
    if (std::min(square, square * reach) < kLeastProduct || square * reach > kMostProduct)
        return;
    for (int k = 0; k < 3; ++k) {
        const double3 e = difference(points[(k + 1) % 3], points[k]);
        add({e.y, -e.x, 0}, kRounding * square);
        add({-e.z, 0, e.x}, kRounding * square);
        add({0, e.z, -e.y}, kRounding * square);
    }
    add(cross(m_points[1], m_points[2]), kRounding * square * reach);
}

void RowBounds::add(const double3& axis, double rounding)
{
    const double sizes = std::fabs(axis.x) + std::fabs(axis.y) + std::fabs(axis.z);
    const double radius = m_cellSize / 2 * sizes + rounding;
    const double p[] = {0, dot(axis, m_points[1]), dot(axis, m_points[2])};
    const double low = *std::min_element(p, p + 3) - radius;
    const double high = *std::max_element(p, p + 3) + radius;
    if (std::fabs(axis.z) <= kLevel * sizes) {
        const double rise = std::fabs(axis.z) * m_reach;
        m_slabs[m_slabCount++] = {axis.x, axis.y, low - rise, high + rise, true};
    } else {
        const double a = low / axis.z, b = high / axis.z;
        m_slabs[m_slabCount++] = {-axis.x / axis.z, -axis.y / axis.z, std::min(a, b),
                                  std::max(a, b), false};
    }
}

bool RowBounds::narrow(double x, double y, double& low, double& high) const
{
    x -= m_origin.x;
    y -= m_origin.y;
    for (int i = 0; i < m_slabCount; ++i) {
        const Slab& slab = m_slabs[i];
        const double at = slab.slopeX * x + slab.slopeY * y;
        if (slab.isLevel && (at < slab.low || at > slab.high))
            return false;
        if (!slab.isLevel) {
            low = std::max(low, slab.low + at + m_origin.z);
            high = std::min(high, slab.high + at + m_origin.z);
        }
    }
    return low <= high;
}

}  // namespace TessaryMesh
