#include "sampling/SurfaceSampler.h"

#include "base/Assert.h"
#include "base/ParallelLoop.h"
#include "base/Progress.h"
#include "sampling/CounterHash.h"
#include "sampling/Elimination.h"
#include "sampling/Phases.h"
#include "sampling/TriangleArea.h"

#include <algorithm>
#include <limits>
#include <utility>

// A candidate is drawn with four random numbers, the hashes H of four counters:
//
//   count = A 5 / (pi (r / 2)^2)                          A  total area, r  distance
//   x     = 4 i + 4 drawn                                 of candidate i
//   t     = H(x) & mask, or its alias if H(x + 1) >= threshold[t]
//   w     = (1 - max(u, v), min(u, v), max(u, v) - min(u, v))     v = H(x + 2), u = H(x + 3)
//   p     = (p1 w1 + p2 w2) + p0 w0
//
// Two uniform numbers cut [0, 1) into three spacings, which as weights are uniform over a triangle (L.
// Devroye, "Non-Uniform Random Variate Generation", 1986, chapter V).

namespace Tessary {
namespace {

// False where a corner of triangle t names no point.
[[maybe_unused]] bool namesPoints(const TriangleMesh& mesh, uint t)
{
    const uint* const corner = mesh.faceVertex + std::size_t{3} * t;
    return std::max({corner[0], corner[1], corner[2]}) < mesh.pointCount;
}

Array<float> triangleAreas(const TriangleMesh& mesh)
{
    Array<float> areas(mesh.triangleCount);
    parallelForEach(
        mesh.triangleCount, LoopContext::Bound,
        [&](uint t) {
            TESSARY_ASSERT(namesPoints(mesh, t),
                           "triangle " << t << " of a mesh of " << mesh.pointCount << " points");
            areas[t] = triangleArea(mesh.point(t, 0), mesh.point(t, 1), mesh.point(t, 2));
        },
        kFewSlowIndices);
    return areas;
}

// Five per disk of half the distance, modulo 2^32; none where the number overflows.
uint candidateCount(float area, float distance)
{
    constexpr float kPi = 3.1415927f;
    const float density = 5.0f / ((distance * 0.5f * kPi) * (distance * 0.5f));
    const float count = area * density;
    constexpr float kTooMany = 9223372036854775808.0f;
    return count < kTooMany ? static_cast<uint>(static_cast<std::uint64_t>(count)) : 0;
}

float unitInterval(uint draw)
{
    return static_cast<float>(static_cast<double>(static_cast<float>(draw)) * 0x1p-32);
}

}  // namespace

void SurfaceSampler::draw(float distance, uint seed)
{
    Array<float> areas = triangleAreas(m_mesh);
    const float area = treeSum(areas.data(), m_mesh.triangleCount);
    const uint count = candidateCount(area, distance);
    if (count == 0)
        return;
    m_table = makeAliasTable(std::move(areas), area);

    const std::size_t base = m_positions.size();
    m_weights.resize(3 * (base + count));
    m_positions.resize(base + count);
    m_faceIds.resize(base + count);
    beginPhase(0, kDrawn);
    parallelForEach(
        count, LoopContext::Bound,
        [&](uint k) {
            const auto i = base + k;
            drawCandidate(i, 4 * static_cast<uint>(i) + 4 * m_drawn, seed);
        },
        kFewSlowIndices);
    m_drawn += count;
}

void SurfaceSampler::drawCandidate(std::size_t i, uint counter, uint seed)
{
    uint triangle = counterHash(counter, seed) & m_table.mask;
    if (counterHash(counter + 1, seed) >= m_table.threshold[triangle])
        triangle = m_table.alias[triangle];
    m_faceIds[i] = triangle;

    const uint v = counterHash(counter + 2, seed);
    const uint u = counterHash(counter + 3, seed);
    const uint hi = std::max(u, v);
    const uint lo = std::min(u, v);
    const float w0 = unitInterval(~hi);
    const float w1 = unitInterval(lo);
    const float w2 = unitInterval(hi - lo);
    float* const weights = m_weights.data() + 3 * i;
    weights[0] = w0;
    weights[1] = w1;
    weights[2] = w2;

    const float3& p0 = m_mesh.point(triangle, 0);
    const float3& p1 = m_mesh.point(triangle, 1);
    const float3& p2 = m_mesh.point(triangle, 2);
    m_positions[i] = {(p1.x * w1 + p2.x * w2) + p0.x * w0, (p1.y * w1 + p2.y * w2) + p0.y * w0,
                      (p1.z * w1 + p2.z * w2) + p0.z * w0};
}

void SurfaceSampler::eliminate(float distance)
{
    if (distance > std::numeric_limits<float>::min())
        m_isRejected = Tessary::eliminate(m_positions, distance);
}

}  // namespace Tessary
