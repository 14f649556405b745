#pragma once

#include "base/Host.h"

#include <cmath>

/// Vectors in double precision, for what is measured on points in single precision.
namespace TessaryMesh {

template <class T>
double3 difference(const Korvane::Math::Vector3<T>& a, const Korvane::Math::Vector3<T>& b)
{
    return {double{a.x} - b.x, double{a.y} - b.y, double{a.z} - b.z};
}

inline double3 cross(const double3& a, const double3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double dot(const double3& a, const double3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline double length(const double3& v)
{
    return std::sqrt(dot(v, v));
}

/// The direction of `v`; zeros where it has none.
inline float3 unit(const double3& v)
{
    const double size = length(v);
    if (!(size > 0))
        return {0, 0, 0};
    return {static_cast<float>(v.x / size), static_cast<float>(v.y / size),
            static_cast<float>(v.z / size)};
}

/// Along the normal of a polygon, twice as long as its area: the sum over the triangles of a fan, so
/// that polygons that are not planar or not convex have one, too.
inline double3 areaVector(const Array<float3>& points, const uint* corner, uint size)
{
    double3 sum{0, 0, 0};
    for (uint k = 2; k < size; ++k) {
        const auto n = cross(difference(points[corner[k - 1]], points[corner[0]]),
                             difference(points[corner[k]], points[corner[0]]));
        sum = {sum.x + n.x, sum.y + n.y, sum.z + n.z};
    }
    return sum;
}

}  // namespace TessaryMesh
