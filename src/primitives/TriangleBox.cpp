#include <Tessary/Primitives.h>

#include "base/Simd.h"

#include <algorithm>
#include <cmath>
#include <limits>

// T. Akenine-Moller, "Fast 3D triangle-box overlap testing", Journal of Graphics Tools 6(1), 2001. A
// triangle and a box have no point in common where one of thirteen axes separates them:
//
//   u0, u1, u2   the triangle's points, seen from the middle of the box
//   e0, e1, e2   its edges          h   the box's half-size
//
//   axes x, y, z       separate where  max u_i < -h  or  min u_i > h
//   a = axis x edge    separates where max(min a . u_i, -max a . u_i) > |a| . h
//   n = e0 x e1        separates unless |n| . h >= |n . u0|
//
// No test has a side effect, so the answer is that of all of them in any order: the cheap ones come
// first, and the three axes of one edge share a register, as (X x e) . u = (e x u).x, and so on.

namespace Tessary {
namespace {

struct Triangle {
    Float4 u0, u1, u2;
    Float4 e0, e1, e2;
};

// The order of the operands says which one a comparison with NaN yields.
Float4 smallest(Float4 a, Float4 b, Float4 c)
{
    return lesserOr(c, lesserOr(b, a));
}

Float4 largest(Float4 a, Float4 b, Float4 c)
{
    return greaterOr(c, greaterOr(b, a));
}

// Lanes z, x, y of the cross product.
Float4 rotatedCross(Float4 a, Float4 b)
{
    return sub(mul(a, rotated(b)), mul(rotated(a), b));
}

// The axes of the box itself. One branch for both ends: which of them separates is unpredictable.
bool facesSeparate(const Triangle& t, Float4 h)
{
    const int isBelow = anyGreater3(negated(h), largest(t.u0, t.u1, t.u2)) ? 1 : 0;
    const int isAbove = anyGreater3(smallest(t.u0, t.u1, t.u2), h) ? 1 : 0;
    return (isBelow | isAbove) != 0;
}

bool planeTouches(const Triangle& t, Float4 h)
{
    const Float4 n = rotated(rotatedCross(t.e0, t.e1));  // x, y, z
    return sum3(mul(absolute(n), h)) >= std::fabs(sum3(mul(n, t.u0)));
}

// The cross products of edge e with the axes of the box, if all numbers are finite: one component of
// such an axis is zero and the projection of u on it a component of e x u.
bool edgeSeparates(Float4 e, const Triangle& t, Float4 h)
{
    const Float4 p0 = rotatedCross(e, t.u0);
    const Float4 p1 = rotatedCross(e, t.u1);
    const Float4 p2 = rotatedCross(e, t.u2);
    const Float4 size = absolute(e);
    const Float4 r = add(mul(size, rotated(h)), mul(rotated(size), h));
    const Float4 above = negated(largest(p0, p1, p2));
    return anyGreater3(greaterOr(above, smallest(p0, p1, p2)), r);
}

bool isFinite(const Triangle& t, Float4 h)
{
    const Float4 u = add(add(absolute(t.u0), absolute(t.u1)), absolute(t.u2));
    const Float4 e = add(add(absolute(t.e0), absolute(t.e1)), absolute(t.e2));
    return allLess3(add(add(u, e), absolute(h)), splat(std::numeric_limits<float>::infinity()));
}

float3 cross(const float3& a, const float3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float dot(const float3& a, const float3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

bool axisSeparates(const float3& axis, const float3 (&u)[3], const float3& h)
{
    const float p[3] = {dot(axis, u[0]), dot(axis, u[1]), dot(axis, u[2])};
    const float least = std::min(std::min(p[0], p[1]), p[2]);
    const float most = std::max(std::max(p[0], p[1]), p[2]);
    const float r = dot({std::fabs(axis.x), std::fabs(axis.y), std::fabs(axis.z)}, h);
    return std::max(least, -most) > r;
}

// The same with every product by zero, which matters where a factor is infinite.
bool anyEdgeSeparates(const Triangle& t, Float4 halfSize)
{
    constexpr float3 kUnits[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    float3 u[3], e[3], h;
    store3(u[0], t.u0);
    store3(u[1], t.u1);
    store3(u[2], t.u2);
    store3(e[0], t.e0);
    store3(e[1], t.e1);
    store3(e[2], t.e2);
    store3(h, halfSize);
    for (const float3& unit : kUnits)
        for (const float3& edge : e)
            if (axisSeparates(cross(unit, edge), u, h))
                return true;
    return false;
}

}  // namespace

bool intersect_triangle_with_axis_aligned_box(const float3& a, const float3& b, const float3& c,
                                              const float3& boxCenter, const float3& boxHalfSize)
{
    const Float4 points[] = {load3(a), load3(b), load3(c)};
    const Float4 center = load3(boxCenter);
    const Float4 h = load3(boxHalfSize);
    const Triangle t = {sub(points[0], center),    sub(points[1], center),
                        sub(points[2], center),    sub(points[1], points[0]),
                        sub(points[2], points[1]), sub(points[0], points[2])};
    if (facesSeparate(t, h) || !planeTouches(t, h))
        return false;
    if (!isFinite(t, h))
        return !anyEdgeSeparates(t, h);
    return !(edgeSeparates(t.e0, t, h) || edgeSeparates(t.e1, t, h) || edgeSeparates(t.e2, t, h));
}

}  // namespace Tessary
