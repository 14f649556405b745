#include "primitives/FarthestPoint.h"

#include "base/ParallelLoop.h"
#include "primitives/LargestDistance.h"

#include <algorithm>
#include <atomic>
#include <cmath>

// Distances are computed point by point and compared with > alone, so the result depends neither on
// how the points are cut into blocks nor on how many of them are computed at once.
//
// Most stretches of points need no distance in double: float rules them out. With c the centre, c' the
// same rounded to float, and f the squared distance of a point to c' in float, every difference, square
// and sum is off by a factor of 1 + 2^-24 at most. So the point is no farther from c than
// sqrt(f) (1 + 2^-22) + |c - c'|, but for squares that are too small for a float.

namespace Tessary {
namespace {

// Long enough that the scheduler does not show (a block takes some 5 us), short enough that two
// hundred thousand points occupy every thread.
constexpr std::size_t kBlock = 8192;

// How far the largest distance is followed before its point is looked for, within the nearest cache.
constexpr std::size_t kStretch = 512;

// How many stretches of a block in a row float may fail to rule out before it is not asked any more:
// close to the end all points on a sphere are equally far in float.
constexpr int kMostInVain = 2;

// One look at all points, from several threads.
class Pass {
public:
    Pass(const Vector3d& center, double atLeast)
        : m_center(center),
          m_rounded{static_cast<float>(center.x), static_cast<float>(center.y),
                    static_cast<float>(center.z)},
          m_roundedBy(std::sqrt(squaredLength(center - widened(m_rounded)))),
          m_largest(atLeast)
    {}

    const Vector3d& center() const { return m_center; }

    // Whether none of these points is as far as the farthest one so far. NaN rules nothing out.
    bool rulesOut(const float3* p, std::size_t count) const
    {
        const double f = largestDistance(p, count, m_rounded);
        const double most = (std::sqrt(f) + m_roundedBy) * (1 + 0x1p-22) + kTooSmall;
        return most * most < m_largest.load(std::memory_order_relaxed);
    }

    void note(double squaredDistance)
    {
        double largest = m_largest.load(std::memory_order_relaxed);
        while (
            largest < squaredDistance &&
            !m_largest.compare_exchange_weak(largest, squaredDistance, std::memory_order_relaxed)) {
        }
    }

private:
    // More than the root of what squares lose that are too small for a float.
    static constexpr double kTooSmall = 0x1p-60;

    Vector3d m_center;
    float3 m_rounded;
    double m_roundedBy;
    std::atomic<double> m_largest;
};

// The first of the points at exactly this distance.
std::size_t firstAt(const float3* p, std::size_t count, const Ball& ball)
{
    return static_cast<std::size_t>(std::find_if(p, p + count - 1,
                                                 [&ball](const float3& point) {
                                                     return ball.squaredDistance(widened(point)) ==
                                                            ball.squaredRadius;
                                                 }) -
                                    p);
}

FarthestPoint::Found farthestOf(const float3* p, std::size_t begin, std::size_t end, Pass& pass,
                                double atLeast)
{
    FarthestPoint::Found found = {FarthestPoint::kNone, atLeast};
    int inVain = 0;
    for (std::size_t i = begin; i < end; i += kStretch) {
        const std::size_t count = std::min(kStretch, end - i);
        if (inVain < kMostInVain && pass.rulesOut(p + i, count)) {
            inVain = 0;
            continue;
        }
        ++inVain;
        const double d = largestDistance(p + i, count, {pass.center(), found.squaredDistance});
        if (d > found.squaredDistance) {
            found = {i, d};
            pass.note(d);
        }
    }
    if (found.index != FarthestPoint::kNone)
        found.index += firstAt(p + found.index, std::min(kStretch, end - found.index),
                               {pass.center(), found.squaredDistance});
    return found;
}

}  // namespace

FarthestPoint::FarthestPoint(const Array<float3>& points)
    : m_points(points), m_found((points.size() + kBlock - 1) / kBlock)
{}

std::size_t FarthestPoint::blockBegin(std::size_t block) const
{
    return std::min(block * kBlock, m_points.size());
}

FarthestPoint::Found FarthestPoint::from(const Vector3d& center, double atLeast)
{
    const auto blocks = static_cast<uint>(m_found.size());
    Pass pass(center, atLeast);
    parallelForEach(blocks, LoopContext::Isolated, [&](uint block) {
        m_found[block] = farthestOf(m_points.data(), blockBegin(block),
                                    blockBegin(std::size_t{block} + 1), pass, atLeast);
    });
    Found farthest = {kNone, atLeast};
    for (const Found& found : m_found)
        if (found.index != kNone && found.squaredDistance > farthest.squaredDistance)
            farthest = found;
    return farthest;
}

float FarthestPoint::largestFloatDistance(const float3& center)
{
    const auto blocks = static_cast<uint>(m_found.size());
    parallelForEach(blocks, LoopContext::Isolated, [&](uint block) {
        const std::size_t begin = blockBegin(block);
        const std::size_t end = blockBegin(std::size_t{block} + 1);
        m_found[block].squaredDistance =
            largestDistance(m_points.data() + begin, end - begin, center);
    });
    float largest = 0.0f;
    for (const Found& found : m_found)
        largest = std::max(largest, static_cast<float>(found.squaredDistance));
    return largest;
}

}  // namespace Tessary
