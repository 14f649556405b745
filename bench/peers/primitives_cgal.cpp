#include "peers/PrimitiveRows.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Min_sphere_of_points_d_traits_3.h>
#include <CGAL/Min_sphere_of_spheres_d.h>
#include <CGAL/Simple_cartesian.h>

#include <algorithm>

namespace Bench {
namespace {

// By more than float can tell.
double pointsOutside(const Array<Korvane::Math::float3>& points,
                     const Korvane::Math::double3& center, double radius)
{
    const double reach = radius * (1 + 1e-6);
    return static_cast<double>(
        std::count_if(points.begin(), points.end(), [&](const Korvane::Math::float3& p) {
            const double x = p.x - center.x, y = p.y - center.y, z = p.z - center.z;
            return x * x + y * y + z * z > reach * reach;
        }));
}

// Spheres of radius 0 around the points, which CGAL copies before it starts; that is not timed.
template <class Number>
void sphereRow(Row& row, const Array<Korvane::Math::float3>& points, const char* peer)
{
    using Kernel = CGAL::Simple_cartesian<Number>;
    using Point = typename Kernel::Point_3;
    using Enclosing =
        CGAL::Min_sphere_of_spheres_d<CGAL::Min_sphere_of_points_d_traits_3<Kernel, Number>>;
    std::vector<Point> converted;
    for (const Korvane::Math::float3& p : points)
        converted.emplace_back(p.x, p.y, p.z);

    Tessary::Sphere sphere;
    const Contender kernel{[&] { sphere = Tessary::computeBoundingSphere(points); }, nullptr,
                           nullptr, [&] { return hashBytes(&sphere, sizeof sphere); }};
    double radius = 0;
    Korvane::Math::double3 center{};
    const Contender other = changer<Enclosing>(
        [&] {
            auto enclosing = std::make_unique<Enclosing>();
            enclosing->insert(converted.begin(), converted.end());
            return enclosing;
        },
        [&](Enclosing& enclosing) {
            radius = enclosing.radius();
            const auto c = enclosing.center_cartesian_begin();
            center = {c[0], c[1], c[2]};
        },
        [](const Enclosing&) {});
    row.compare({points.size(), "point", 0, ""}, kernel, {peer, other, "on one thread"});
    row.figure("other_radius", radius);
    row.figure("other_outside", pointsOutside(points, center, radius));
    row.expectNear("radius", sphere.getRadius(), radius, 1e-4);
}

template <class Kernel, class Box>
struct Pair {
    typename Kernel::Triangle_3 triangle;
    Box box;
};

template <class Kernel>
typename Kernel::Triangle_3 triangleOf(const TriangleAndBox& t)
{
    const auto point = [](const Korvane::Math::float3& p) {
        return typename Kernel::Point_3(p.x, p.y, p.z);
    };
    return {point(t.a), point(t.b), point(t.c)};
}

// In double, in which these sums are exact.
template <class Kernel>
Pair<Kernel, CGAL::Bbox_3> withBbox(const TriangleAndBox& t)
{
    const double x = t.center.x, y = t.center.y, z = t.center.z;
    const double u = t.half.x, v = t.half.y, w = t.half.z;
    return {triangleOf<Kernel>(t), {x - u, y - v, z - w, x + u, y + v, z + w}};
}

using Single = CGAL::Simple_cartesian<float>;
using Double = CGAL::Simple_cartesian<double>;
using Exact = CGAL::Exact_predicates_inexact_constructions_kernel;

Pair<Single, Single::Iso_cuboid_3> withCuboid(const TriangleAndBox& t)
{
    const Korvane::Math::float3 &c = t.center, &h = t.half;
    return {triangleOf<Single>(t),
            {c.x - h.x, c.y - h.y, c.z - h.z, c.x + h.x, c.y + h.y, c.z + h.z}};
}

void addRows()
{
    addSphereRows("CGAL in float", [](Row& row, const Array<Korvane::Math::float3>& points) {
        sphereRow<float>(row, points, "CGAL in float");
    });
    addSphereRows("CGAL in double", [](Row& row, const Array<Korvane::Math::float3>& points) {
        sphereRow<double>(row, points, "CGAL in double");
    });
    const auto test = [](const auto& pair) { return CGAL::do_intersect(pair.triangle, pair.box); };
    addOverlapRows<Pair<Single, Single::Iso_cuboid_3>>(
        {"CGAL in float", "inexact in float too", withCuboid}, test);
    addOverlapRows<Pair<Double, CGAL::Bbox_3>>(
        {"CGAL in double", "inexact in double", withBbox<Double>}, test);
    addOverlapRows<Pair<Exact, CGAL::Bbox_3>>({"CGAL exact", "exact answers", withBbox<Exact>},
                                              test);
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
