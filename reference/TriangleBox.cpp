#include "reference/TriangleBox.h"

#include <algorithm>
#include <cmath>

using Korvane::Math::float3;

namespace Reference {
namespace {

float3 minus(const float3& a, const float3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

float3 cross(const float3& a, const float3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float dot(const float3& a, const float3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

float reach(const float3& axis, const float3& half)
{
    return dot({std::fabs(axis.x), std::fabs(axis.y), std::fabs(axis.z)}, half);
}

}  // namespace

bool triangleOverlapsBox(const float3& a, const float3& b, const float3& c, const float3& center,
                         const float3& half)
{
    const float3 u[] = {minus(a, center), minus(b, center), minus(c, center)};
    const float3 e[] = {minus(b, a), minus(c, b), minus(a, c)};
    const float3 units[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (const float3& unit : units)
        for (const float3& edge : e) {
            const float3 axis = cross(unit, edge);
            const float p0 = dot(axis, u[0]), p1 = dot(axis, u[1]), p2 = dot(axis, u[2]);
            if (std::max(std::min({p0, p1, p2}), -std::max({p0, p1, p2})) > reach(axis, half))
                return false;
        }
    for (float float3::*const x : {&float3::x, &float3::y, &float3::z})
        if (-(half.*x) > std::max({u[0].*x, u[1].*x, u[2].*x}) ||
            std::min({u[0].*x, u[1].*x, u[2].*x}) > half.*x)
            return false;
    const float3 n = cross(e[0], e[1]);
    return reach(n, half) >= std::fabs(dot(n, u[0]));
}

}  // namespace Reference
