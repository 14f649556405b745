#pragma once

#include <Korvane/Math.h>
#include <Pelon/Array.h>
#include <Tessary/Api.h>

#include <cmath>

/// @file
/// The smallest sphere, and triangles against boxes.

namespace Tessary {

/// A ball around `center`. The radius is kept squared, as it is compared.
class Sphere {
public:
    Sphere() = default;  ///< a point at the origin
    /// That centre and radius; nothing is checked.
    Sphere(const Korvane::Math::float3& center, float squaredRadius)
        : m_squaredRadius(squaredRadius), m_center(center)
    {}

    /// The middle.
    Korvane::Math::float3 getCenter() const { return m_center; }

    /// The square root of the squared radius; NaN where that is negative.
    float getRadius() const { return std::sqrt(m_squaredRadius); }

private:
    float m_squaredRadius = 0.0f;
    Korvane::Math::float3 m_center = {0.0f, 0.0f, 0.0f};
};

/// The smallest sphere that encloses the points.
///
/// The centre is found in double precision and rounded. The squared radius is then the largest
/// (px - cx)^2 + (py - cy)^2 + (pz - cz)^2 in float, so every point passes that test against the
/// rounded centre.
///
/// @method     E. Welzl, "Smallest enclosing disks (balls and ellipsoids)", 1991, with the pivots and
///             the numerics of B. Gaertner, "Fast and robust smallest enclosing balls", 1999
/// @param[in] points  any number, in any order, repeated or not. Of none, the sphere is a point at the
///             origin
/// @returns    the same bits for any thread count. Of equally far points a pass takes the one of
///             lowest index, unless an earlier pass has taken another of them already. Points on a
///             common circle or sphere yield that one's centre within rounding
/// @failure    coordinates that are NaN or infinite end like others, in a sphere that means nothing.
///             Squares that overflow make the radius infinite
/// @complexity O(n) time per pass over the points, usually 3 to 15 passes; parallel, never polls for
///             cancellation
TESSARY_API Sphere computeBoundingSphere(const Pelon::Array<Korvane::Math::float3>& points);

/// Whether a solid triangle and a solid axis-aligned box have a point in common; touching counts.
///
/// Thirteen axes might separate the two: the box's three, the triangle's normal, and the cross
/// products of the box's axes with the triangle's edges. All arithmetic is in float, without
/// tolerance, so that rounding may decide about triangles that just touch.
///
/// @method     T. Akenine-Moller, "Fast 3D triangle-box overlap testing", 2001
/// @param[in] a            a point of the triangle; the order of the three may matter to the last bit
/// @param[in] b            the same
/// @param[in] c            the same
/// @param[in] boxCenter    the middle of the box
/// @param[in] boxHalfSize  half of its extent along x, y and z, not negative; zero makes it a point
/// @returns    false where any number is NaN. A triangle without area is the line or point that it is
/// @pre        the test multiplies three lengths: where those of triangle and box are beyond 1e12 the
///             products overflow, and most answers are false, from 1e21 on nearly all; below 1e-13
///             they vanish, and answers may be wrong either way. Scale such meshes first; not checked
/// @complexity constant; the same bits on every machine, with or without vector registers
TESSARY_API bool intersect_triangle_with_axis_aligned_box(const Korvane::Math::float3& a,
                                                          const Korvane::Math::float3& b,
                                                          const Korvane::Math::float3& c,
                                                          const Korvane::Math::float3& boxCenter,
                                                          const Korvane::Math::float3& boxHalfSize);

}  // namespace Tessary
