#include "primitives/FarthestPoint.h"

#include "support/Random.h"
#include "support/Threads.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Tessary;
using TestSupport::Random;

namespace {

Farthest reference(const Array<float3>& points, const Vector3d& center, double atLeast)
{
    Farthest found = {Farthest::kNone, atLeast};
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double d = squaredLength(widened(points[i]) - center);
        if (d > found.squaredDistance)
            found = {i, d};
    }
    return found;
}

// Points of a set in which float can hardly tell who is farthest from `center`.
struct Set {
    Array<float3> points;
    Vector3d center;
};

// On a sphere but for `thickness`, around a centre that is `offset` away from the origin.
Set nearlyOnASphere(Random& random, uint count, double radius, double thickness, double offset)
{
    Set set;
    set.center = {offset * random.unit(), offset * random.unit(), offset * random.unit()};
    for (uint i = count; i > 0; --i) {
        Vector3d v = {random.unit(), random.unit(), random.unit()};
        const double r = radius * (1 + thickness * random.unit()) / std::sqrt(squaredLength(v));
        set.points.push_back({static_cast<float>(set.center.x + r * v.x),
                              static_cast<float>(set.center.y + r * v.y),
                              static_cast<float>(set.center.z + r * v.z)});
    }
    return set;
}

void expectReference(const Set& set)
{
    const double largest = reference(set.points, set.center, 0).squaredDistance;
    for (const double atLeast : {0.0, largest * (1 - 1e-9), largest, 2 * largest}) {
        const auto found = farthestFrom(set.center, set.points, atLeast);
        const auto expected = reference(set.points, set.center, atLeast);
        EXPECT_EQ(found.index, expected.index) << atLeast;
        EXPECT_EQ(found.squaredDistance, expected.squaredDistance) << atLeast;
    }
}

TEST(FarthestPoint, IsThatOfAPlainLoopHoweverCloseOthersCome)
{
    Random random;
    for (int i = 0; i < 20000; ++i) {
        // Of few points, no rounding of one covers for that of another.
        const uint count = i < 100 ? 30000 + random.below(5000) : 1 + random.below(3);
        const double radius = std::pow(10.0, 24 * random.unit());
        const double thickness = std::pow(10.0, -8 * (i % 2));
        const double offset = i % 3 == 0 ? 0 : radius * std::pow(10.0, 3 + 2 * random.unit());
        SCOPED_TRACE(testing::Message() << radius << ' ' << thickness << ' ' << offset);
        expectReference(nearlyOnASphere(random, count, radius, thickness, offset));
    }
}

TEST(FarthestPoint, OfEquallyFarOnesIsTheFirstAtAnyThreadCount)
{
    Random random;
    for (int i = 0; i < 20; ++i) {
        Set set = {Array<float3>(100000), {0.5, 0, 0}};
        for (int n = 1 + i % 4; n > 0; --n)
            set.points[random.below(100000)] = {i % 3 == 0 ? 1.5f : -1.0f, 1, 1};
        TestSupport::atSeveralThreadCounts([&](int) { expectReference(set); });
    }
}

TEST(FarthestPoint, IsNoneThatIsNotANumber)
{
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInf = std::numeric_limits<float>::infinity();
    Random random;
    for (const float odd : {kNan, kInf, -kInf, 3e38f}) {
        Set set = nearlyOnASphere(random, 30000, 1, 0.1, 0);
        for (uint n = 0; n < 3; ++n)
            set.points[random.below(30000)].y = odd;
        expectReference(set);
        set.center = {odd, 0, 0};
        expectReference(set);
    }
}

}  // namespace
