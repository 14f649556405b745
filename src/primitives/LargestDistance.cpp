#include "primitives/LargestDistance.h"

#include "base/Prefetch.h"
#include "base/Simd.h"

#include <algorithm>

// Three loads of two neighbouring coordinates hold two points. Each has the centre subtracted and is
// squared; then three shuffles tell the points apart:
//
//   memory     x0 y0 z0 x1 y1 z1
//   registers  xy  = x0 y0,  zx = z0 x1,  yz = y1 z1
//   shuffled   x0 x1,  y0 y1,  z0 z1

namespace Tessary {
namespace {

// How many points ahead memory is prefetched. The sphere around a million points on a sphere takes 24 ms on
// one thread; 30 without, 25 with 128, 24 with 1024.
constexpr std::size_t kAhead = 512;

struct TwoPoints {
    Double2 xy, zx, yz;
};

Double2 squaredDistances(const float3* p, const TwoPoints& center)
{
    const float* const f = &p->x;
    const Double2 xy = sub(load2(f), center.xy);
    const Double2 zx = sub(load2(f + 2), center.zx);
    const Double2 yz = sub(load2(f + 4), center.yz);
    const Double2 xy2 = mul(xy, xy);
    const Double2 zx2 = mul(zx, zx);
    const Double2 yz2 = mul(yz, yz);
    const Double2 x2 = lowHigh(xy2, zx2);
    const Double2 y2 = highLow(xy2, yz2);
    const Double2 z2 = lowHigh(zx2, yz2);
    return add(add(x2, y2), z2);
}

float squaredDistance(const float3& p, const float3& c)
{
    const float x = p.x - c.x, y = p.y - c.y, z = p.z - c.z;
    return (x * x + y * y) + z * z;
}

}  // namespace

double largestDistance(const float3* p, std::size_t count, const Ball& ball)
{
    const Vector3d& c = ball.center;
    const TwoPoints center = {pair(c.x, c.y), pair(c.z, c.x), pair(c.y, c.z)};
    Double2 low = pair(ball.squaredRadius, ball.squaredRadius);
    Double2 high = low;
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        TESSARY_PREFETCH(p + i + kAhead);
        // A distance that is NaN leaves the second operand.
        low = greaterOr(squaredDistances(p + i, center), low);
        high = greaterOr(squaredDistances(p + i + 2, center), high);
    }
    const Double2 lanes = greaterOr(low, high);
    double largest = std::max(firstOf(lanes), firstOf(highLow(lanes, lanes)));
    for (; i < count; ++i)
        largest = std::max(largest, ball.squaredDistance(widened(p[i])));
    return largest;
}

float largestDistance(const float3* p, std::size_t count, const float3& c)
{
    const Float4 cx = splat(c.x), cy = splat(c.y), cz = splat(c.z);
    Float4 most = splat(0.0f);
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        TESSARY_PREFETCH(p + i + kAhead);
        const FourPoints four(p + i);
        const Float4 dx = sub(four.x, cx);
        const Float4 dy = sub(four.y, cy);
        const Float4 dz = sub(four.z, cz);
        most = greaterOr(add(add(mul(dx, dx), mul(dy, dy)), mul(dz, dz)), most);
    }
    float largest = std::max(std::max(firstOf(most), firstOf(lane<1>(most))),
                             std::max(firstOf(lane<2>(most)), firstOf(lane<3>(most))));
    for (; i < count; ++i)
        largest = std::max(largest, squaredDistance(p[i], c));
    return largest;
}

}  // namespace Tessary
