#include "support/Cost.h"
#include "support/MeshBuilding.h"
#include "support/Random.h"
#include "support/Threads.h"

#include <TessaryMesh/Operations.h>

#include <cmath>

using namespace TestSupport;
using TessaryMesh::smallestDistance;

namespace {

Array<float3> randomPoints(std::uint32_t seed, std::size_t count, const float3& middle, float size)
{
    Random random(seed);
    const auto around = [&](float x) { return x + size * static_cast<float>(random.unit()); };
    Array<float3> points(count);
    for (float3& p : points)
        p = {around(middle.x), around(middle.y), around(middle.z)};
    return points;
}

double everyPair(const Array<float3>& points)
{
    double nearest = INFINITY;
    for (std::size_t i = 0; i < points.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) {
            const double x = double{points[i].x} - points[j].x;
            const double y = double{points[i].y} - points[j].y;
            const double z = double{points[i].z} - points[j].z;
            nearest = std::min(nearest, std::sqrt(x * x + y * y + z * z));
        }
    return nearest;
}

TEST(ClosestPair, IsThatOfAllPairsWhateverTheGuess)
{
    const struct {
        float3 middle;
        float size;
    } places[] = {{{0, 0, 0}, 1}, {{-5, 1e6f, 3}, 10}, {{0, 0, 0}, 1e-30f}, {{1, 1, 1}, 1e30f}};
    for (const auto& place : places)
        for (std::uint32_t seed = 0; seed < 10; ++seed) {
            const Array<float3> points =
                randomPoints(seed, 2 + 40 * seed, place.middle, place.size);
            const double expected = everyPair(points);
            for (const double factor : {1e-20, 0.3, 1.0, 3.0, 1e3})
                EXPECT_EQ(smallestDistance(points, factor * expected), expected)
                    << place.size << ' ' << seed << ' ' << factor;
        }
}

TEST(ClosestPair, NeedsTwoPointsAndFindsCoincidingOnes)
{
    EXPECT_FALSE(smallestDistance({}, 1));
    EXPECT_FALSE(smallestDistance({{1, 2, 3}}, 1));
    EXPECT_EQ(smallestDistance({{1, 2, 3}, {4, 4, 4}, {1, 2, 3}}, 0), 0.0);
    EXPECT_EQ(smallestDistance({{-3e38f, 0, 0}, {3e38f, 0, 0}}, 1), 2 * double{3e38f});
}

TEST(ClosestPair, ComparesFewPairsWithoutAGuess)
{
    const Array<float3> points = randomPoints(3, 30000, {0, 0, 0}, 1);
    const auto expected = smallestDistance(points, 1e-3);
    const auto near = [&] { EXPECT_EQ(smallestDistance(points, 1e-3), expected); };
    for (const double guess : {0.0, double{NAN}})
        EXPECT_LT(costRatio([&] { EXPECT_EQ(smallestDistance(points, guess), expected); }, near),
                  100)
            << guess;
}

TEST(ClosestPair, IsTheSameForAnyThreadCount)
{
    const Array<float3> points = randomPoints(7, 20000, {0, 0, 0}, 1);
    const auto expected = smallestDistance(points, 0.01);
    atSeveralThreadCounts([&](int) { EXPECT_EQ(smallestDistance(points, 0.01), expected); });
}

}  // namespace
