#include "primitives/FarthestPoint.h"

#include "host/Float4.h"
#include "host/ParallelLoop.h"
#include "host/Prefetch.h"

#include <algorithm>

// Distances are computed point by point and compared with > alone, so the result depends neither on
// how the points are cut into blocks nor on how many of them are computed at once.

namespace Tessary {
namespace {

// Long enough that the scheduler does not show (a block takes some 5 us), short enough that two
// hundred thousand points occupy every thread.
constexpr std::size_t kBlock = 8192;

// How far the largest distance is followed before its point is looked for, within the nearest cache.
constexpr std::size_t kStretch = 512;

// How many points ahead memory is asked for. Left to itself the machine reads 120 MB in 14 ms for
// the distances in double; so in 5 ms. A quarter of it is too short.
constexpr std::size_t kAhead = 512;

#if TESSARY_SSE2

struct Center2 {
    __m128d x, y, z;

    // Squared distances of the two points in the lower lanes.
    __m128d squaredDistance(__m128 px, __m128 py, __m128 pz) const
    {
        const __m128d dx = _mm_sub_pd(_mm_cvtps_pd(px), x);
        const __m128d dy = _mm_sub_pd(_mm_cvtps_pd(py), y);
        const __m128d dz = _mm_sub_pd(_mm_cvtps_pd(pz), z);
        return _mm_add_pd(_mm_add_pd(_mm_mul_pd(dx, dx), _mm_mul_pd(dy, dy)), _mm_mul_pd(dz, dz));
    }
};

double largestDistance(const float3* p, std::size_t count, const Ball& ball)
{
    const Vector3d& c = ball.center;
    const Center2 center = {_mm_set1_pd(c.x), _mm_set1_pd(c.y), _mm_set1_pd(c.z)};
    __m128d low = _mm_set1_pd(ball.squaredRadius);
    __m128d high = low;
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        TESSARY_PREFETCH(p + i + kAhead);
        const FourPoints four(p + i);
        // A distance that is NaN leaves the second operand.
        low = _mm_max_pd(center.squaredDistance(four.x, four.y, four.z), low);
        high = _mm_max_pd(
            center.squaredDistance(_mm_movehl_ps(four.x, four.x), _mm_movehl_ps(four.y, four.y),
                                   _mm_movehl_ps(four.z, four.z)),
            high);
    }
    double lanes[2];
    _mm_storeu_pd(lanes, _mm_max_pd(low, high));
    double largest = std::max(lanes[0], lanes[1]);
    for (; i < count; ++i)
        largest = std::max(largest, ball.squaredDistance(widened(p[i])));
    return largest;
}

float largestFloat(const float3* p, std::size_t count, const float3& c)
{
    const __m128 cx = _mm_set1_ps(c.x), cy = _mm_set1_ps(c.y), cz = _mm_set1_ps(c.z);
    __m128 most = _mm_setzero_ps();
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        TESSARY_PREFETCH(p + i + kAhead);
        const FourPoints four(p + i);
        const __m128 dx = _mm_sub_ps(four.x, cx);
        const __m128 dy = _mm_sub_ps(four.y, cy);
        const __m128 dz = _mm_sub_ps(four.z, cz);
        const __m128 d =
            _mm_add_ps(_mm_add_ps(_mm_mul_ps(dx, dx), _mm_mul_ps(dy, dy)), _mm_mul_ps(dz, dz));
        most = _mm_max_ps(d, most);
    }
    float lanes[4];
    _mm_storeu_ps(lanes, most);
    float largest = std::max(std::max(lanes[0], lanes[1]), std::max(lanes[2], lanes[3]));
    for (; i < count; ++i) {
        const float dx = p[i].x - c.x, dy = p[i].y - c.y, dz = p[i].z - c.z;
        largest = std::max(largest, (dx * dx + dy * dy) + dz * dz);
    }
    return largest;
}

#else

double largestDistance(const float3* p, std::size_t count, const Ball& ball)
{
    double largest = ball.squaredRadius;
    for (std::size_t i = 0; i < count; ++i)
        largest = std::max(largest, ball.squaredDistance(widened(p[i])));
    return largest;
}

float largestFloat(const float3* p, std::size_t count, const float3& c)
{
    float largest = 0.0f;
    for (std::size_t i = 0; i < count; ++i) {
        const float dx = p[i].x - c.x, dy = p[i].y - c.y, dz = p[i].z - c.z;
        largest = std::max(largest, (dx * dx + dy * dy) + dz * dz);
    }
    return largest;
}

#endif

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

FarthestPoint::Found farthestOf(const float3* p, std::size_t begin, std::size_t end,
                                const Vector3d& center, double atLeast)
{
    FarthestPoint::Found found = {FarthestPoint::kNone, atLeast};
    for (std::size_t i = begin; i < end; i += kStretch) {
        const std::size_t count = std::min(kStretch, end - i);
        const double d = largestDistance(p + i, count, {center, found.squaredDistance});
        if (d > found.squaredDistance)
            found = {i, d};
    }
    if (found.index != FarthestPoint::kNone)
        found.index += firstAt(p + found.index, std::min(kStretch, end - found.index),
                               {center, found.squaredDistance});
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
    parallelForEach(blocks, LoopContext::Isolated, [&](uint block) {
        m_found[block] = farthestOf(m_points.data(), blockBegin(block),
                                    blockBegin(std::size_t{block} + 1), center, atLeast);
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
        m_found[block].squaredDistance = largestFloat(m_points.data() + begin, end - begin, center);
    });
    float largest = 0.0f;
    for (const Found& found : m_found)
        largest = std::max(largest, static_cast<float>(found.squaredDistance));
    return largest;
}

}  // namespace Tessary
