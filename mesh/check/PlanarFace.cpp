#include "check/PlanarFace.h"

#include "base/Vectors.h"

#include <cmath>
#include <cstddef>

namespace TessaryMesh {
namespace {

// A face whose area is less than this part of its fan's largest triangle is one that crosses itself evenly,
// or as thin as one: the direction of what is left is mostly rounding.
constexpr double kLeastArea = 0x1p-10;

double3 normalOf(const Array<float3>& points, const uint* corners, uint size)
{
    double3 sum{0, 0, 0}, largest{0, 0, 0};
    for (uint k = 2; k < size; ++k) {
        const double3 n = cross(difference(points[corners[k - 1]], points[corners[0]]),
                                difference(points[corners[k]], points[corners[0]]));
        sum = {sum.x + n.x, sum.y + n.y, sum.z + n.z};
        if (dot(n, n) > dot(largest, largest))
            largest = n;
    }
    if (length(sum) >= kLeastArea * length(largest))
        return sum;
    return dot(sum, largest) < 0 ? double3{-largest.x, -largest.y, -largest.z} : largest;
}

}  // namespace

void PlanarFace::set(const Array<float3>& points, const uint* corners, uint size)
{
    const double3 normal = normalOf(points, corners, size);
    const double l = length(normal);
    const double scale = l > 0 ? 1 / l : 0;
    m_normal = {normal.x * scale, normal.y * scale, normal.z * scale};
    const double x = std::fabs(normal.x), y = std::fabs(normal.y), z = std::fabs(normal.z);
    const std::size_t out = z >= x && z >= y ? 2 : y >= x ? 1 : 0;
    const bool isBehind = (out == 2 ? normal.z : out == 1 ? normal.y : normal.x) < 0;
    std::size_t first = (out + 1) % 3, second = (out + 2) % 3;
    if (isBehind)
        std::swap(first, second);
    m_polygon.resize(size);
    for (uint k = 0; k < size; ++k) {
        const float3& p = points[corners[k]];
        const float coordinates[] = {p.x, p.y, p.z};
        m_polygon[k] = {coordinates[first], coordinates[second]};
    }
}

bool PlanarFace::fitsFan() const
{
    for (std::size_t k = 2; k < m_polygon.size(); ++k)
        if (orientation(m_polygon[0], m_polygon[k - 1], m_polygon[k]) < 0)
            return false;
    return true;
}

// It comes round where it is to the left of its first side again, after it was to the right.
bool PlanarFace::fanTurnsOnce() const
{
    bool isBehind = false;
    for (std::size_t k = 3; k < m_polygon.size(); ++k) {
        const int side = orientation(m_polygon[0], m_polygon[1], m_polygon[k]);
        if (isBehind && side > 0)
            return false;
        isBehind |= side < 0;
    }
    return true;
}

}  // namespace TessaryMesh
