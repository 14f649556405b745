#include "primitives/FarthestPoint.h"

#include "base/ParallelReduce.h"
#include "primitives/LargestDistance.h"

#include <algorithm>
#include <atomic>
#include <cmath>

// Distances are computed point by point and compared with > alone, so the result depends neither on
// how the points are cut into blocks nor on how many of them are computed at once.
//
// Most chunks of points are rejected by a conservative test in float and need no distance in double:
//
//   c, c'     centre, and the same rounded to float
//   f         largest squared distance of the chunk's points to c', in float
//   |p - c| <= sqrt(f) (1 + 2^-22) + |c - c'| + 2^-60
//
// as every difference, square and sum is off by a factor of 1 + 2^-24 at most, but for squares that
// are too small for a float: the root of what these lose is below 2^-60.

namespace Tessary {
namespace {

// All figures: a million points in a ball, and on a sphere, on one thread.

// Long enough that the scheduler does not show (a block takes some 5 us), short enough that two
// hundred thousand points occupy every thread: 14.7 and 23.6 ms; 15.7 and 30 with 2048; 32768 the same.
constexpr std::size_t kBlock = 8192;

// How far the largest distance is followed before its point is looked for, within the nearest cache. With
// 128 16.7 and 23.4 ms, with 2048 16.5 and 31.
constexpr std::size_t kChunk = 512;

// After so many failed rejections in a row a block is searched in double alone: close to the end all
// points on a sphere are equally far in float, 33 ms without this limit and 28 with 8. 1 is within 7 %.
constexpr int kMostFailures = 2;

// One pass over all points, on several threads.
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

    // Whether none of these points is as far as the farthest one so far. NaN rejects nothing.
    bool rejects(const float3* p, std::size_t count) const
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

// The farthest of points [begin, end), at most a block.
Farthest farthestOf(const float3* p, std::size_t begin, std::size_t end, Pass& pass, double atLeast)
{
    Farthest found = {Farthest::kNone, atLeast};
    int failures = 0;
    for (std::size_t i = begin; i < end; i += kChunk) {
        const std::size_t count = std::min(kChunk, end - i);
        if (failures < kMostFailures && pass.rejects(p + i, count)) {
            failures = 0;
            continue;
        }
        ++failures;
        const double d = largestDistance(p + i, count, {pass.center(), found.squaredDistance});
        if (d > found.squaredDistance) {
            found = {i, d};
            pass.note(d);
        }
    }
    if (found.index != Farthest::kNone)
        found.index += firstAt(p + found.index, std::min(kChunk, end - found.index),
                               {pass.center(), found.squaredDistance});
    return found;
}

Farthest fartherOf(const Farthest& a, const Farthest& b)
{
    if (a.squaredDistance == b.squaredDistance)
        return a.index < b.index ? a : b;  // kNone is the last
    return a.squaredDistance > b.squaredDistance ? a : b;
}

// Reduces `ofBlock(begin, end)` over blocks of points.
template <class T, class OfBlock, class Combine>
T reduceBlocks(std::size_t size, const T& identity, const OfBlock& ofBlock, const Combine& combine)
{
    const auto blocks = static_cast<uint>((size + kBlock - 1) / kBlock);
    return parallelReduce(
        blocks, 1, LoopContext::Isolated, identity,
        [&](uint firstBlock, uint endBlock) {
            T result = identity;
            for (std::size_t block = firstBlock; block < endBlock; ++block)
                result =
                    combine(result, ofBlock(block * kBlock, std::min((block + 1) * kBlock, size)));
            return result;
        },
        combine);
}

}  // namespace

Farthest farthestFrom(const Vector3d& center, const Array<float3>& points, double atLeast)
{
    Pass pass(center, atLeast);
    return reduceBlocks(
        points.size(), Farthest{Farthest::kNone, atLeast},
        [&](std::size_t begin, std::size_t end) {
            return farthestOf(points.data(), begin, end, pass, atLeast);
        },
        fartherOf);
}

float largestFloatDistance(const float3& center, const Array<float3>& points)
{
    return reduceBlocks(
        points.size(), 0.0f,
        [&](std::size_t begin, std::size_t end) {
            return largestDistance(points.data() + begin, end - begin, center);
        },
        [](float a, float b) { return std::max(a, b); });
}

}  // namespace Tessary
