#include "peers/PrimitiveRows.h"

#include <open3d/geometry/IntersectionTest.h>

namespace Bench {
namespace {

struct Pair {
    Eigen::Vector3d a, b, c, center, half;
};

Pair convert(const TriangleAndBox& t)
{
    const auto vector = [](const Korvane::Math::float3& p) {
        return Eigen::Vector3d(p.x, p.y, p.z);
    };
    return {vector(t.a), vector(t.b), vector(t.c), vector(t.center), vector(t.half)};
}

void addRows()
{
    addOverlapRows<Pair>({"Open3D TriangleAABB", "in double", convert}, [](const Pair& t) {
        return open3d::geometry::IntersectionTest::TriangleAABB(t.center, t.half, t.a, t.b, t.c);
    });
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
