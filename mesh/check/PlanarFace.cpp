#include "check/PlanarFace.h"

#include "base/Vectors.h"

#include <cmath>
#include <cstddef>

namespace TessaryMesh {
namespace {

double3 largestOfFan(const Array<float3>& points, const uint* corners, uint size)
{
    double3 largest{0, 0, 0};
    for (uint k = 2; k < size; ++k) {
        const double3 n = cross(difference(points[corners[k - 1]], points[corners[0]]),
                                difference(points[corners[k]], points[corners[0]]));
        if (dot(n, n) > dot(largest, largest))
            largest = n;
    }
    return largest;
}

}  // namespace

void PlanarFace::set(const Array<float3>& points, const uint* corners, uint size)
{
    double3 normal = areaVector(points, corners, size);
    if (normal.x == 0 && normal.y == 0 && normal.z == 0)
        normal = largestOfFan(points, corners, size);
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

}  // namespace TessaryMesh
