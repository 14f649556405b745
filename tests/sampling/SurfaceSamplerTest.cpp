#include "sampling/AliasTable.h"
#include "sampling/Elimination.h"
#include "sampling/SamplingCases.h"
#include "sampling/SurfaceSampler.h"
#include "support/Threads.h"

#include <algorithm>
#include <iterator>

using namespace TestSupport;

namespace {

// Points on a grid, so that many are the same or just one cell apart, or anywhere; some far away or
// nowhere.
Array<float3> randomCloud(std::uint32_t seed, uint count)
{
    std::mt19937 random(seed);
    const auto coordinate = [&random, seed] {
        if (seed % 3 == 2 && random() % 16 == 0) {
            constexpr float kOdd[] = {-0x1p31f, 0x1p31f, 3e38f, -HUGE_VALF, NAN, 8388609, 8388611};
            return kOdd[random() % std::size(kOdd)];
        }
        const float unit = randomCoordinate(random);
        return seed % 2 == 0 ? std::floor(unit * 6) / 2 : unit * 4;
    };
    Array<float3> points(count);
    for (float3& p : points)
        for (float* const c : {&p.x, &p.y, &p.z})
            *c = coordinate();
    return points;
}

TEST(Elimination, EqualsTheLiteralWalkOnAnyPointsWithAndWithoutFixedOnes)
{
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const float distance = seed % 5 == 4 ? 0.75f : 1;
        const Array<float3> points = randomCloud(seed, seed < 3 ? seed : 50 * (seed % 12));
        const Array<float3> fixed = randomCloud(seed + 1000, seed % 7);
        const auto withFixed = Reference::reject(points, distance, fixed);
        const auto without = Reference::reject(points, distance);
        atSeveralThreadCounts([&](int threads) {
            SCOPED_TRACE(threads);
            EXPECT_EQ(Tessary::eliminate(points, distance, &fixed), withFixed);
            EXPECT_EQ(Tessary::eliminate(points, distance), without);
        });
    }
}

// Pairs that are near in one order of the sum and far in another.
TEST(Elimination, SumsSquaresInTheWrittenOrder)
{
    std::mt19937 random(1);
    for (int found = 0; found < 20;) {
        float3 p{std::fabs(randomCoordinate(random)), std::fabs(randomCoordinate(random)), 0};
        p.z = std::sqrt(std::max(0.0f, 1 - (p.y * p.y + p.x * p.x)));
        const float x = p.x * p.x, y = p.y * p.y, z = p.z * p.z;
        const bool isNear = (y + x) + z <= 1;
        if (p.z >= 1 || ((z + y) + x <= 1) == isNear || ((x + z) + y <= 1) == isNear)
            continue;
        ++found;
        EXPECT_EQ(Tessary::eliminate({{0, 0, 0}, p}, 1)[1] != 0, isNear) << p.x << ' ' << p.y;
    }
}

// A second call appends, and its random numbers are those after the first one's.
TEST(SurfaceSampler, DrawsTheLiteralCandidatesCallAfterCall)
{
    const Mesh mesh = randomTriangles(3, 10);
    Reference::Samples ours, literal;
    Tessary::SurfaceSampler sampler(
        {mesh.points.data(), mesh.points.size(), mesh.faceVertex.data(), 10}, ours.weights,
        ours.positions, ours.faceIds);
    uint counted = 0;
    for (const float distance : {0.3f, 0.1f, 0.2f}) {
        sampler.draw(distance, 5);
        Reference::drawCandidates(mesh, distance, 5, counted, literal);
        expectSame({ours, {}}, {literal, {}});
    }
    EXPECT_EQ(ours.faceIds.size(), counted);
    EXPECT_GT(counted, 1000u);
}

// With a total that is rounded, too: that may leave no triangle to give a share to slots beyond the last.
TEST(AliasTable, EqualsTheLiteralTable)
{
    for (std::uint32_t seed = 0; seed < 100; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Array<float> areas(1 + random() % 70);
        for (float& area : areas)
            area = std::fabs(std::pow(randomCoordinate(random), static_cast<float>(seed % 9)));
        for (const float off : {1.0f, 1.07f, 2.0f, 1e8f, 0.07f}) {
            const float total = Reference::totalArea(areas) * off;
            const auto expected = Reference::aliasTable(areas, total);
            const Tessary::AliasTable table = Tessary::makeAliasTable(areas, total);
            EXPECT_EQ(table.alias, expected.alias);
            EXPECT_EQ(table.threshold, expected.threshold);
            EXPECT_EQ(table.mask, expected.alias.size() - 1);
            EXPECT_LT(*std::max_element(table.alias.begin(), table.alias.end()), areas.size());
        }
    }
}

}  // namespace
