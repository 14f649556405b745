#include "reference/ContactSweeps.h"
#include "support/Random.h"

#include <Tessary/Solver.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

using Pelon::Array;
using Tessary::Multicollider;
using Tessary::uint;
using TestSupport::Random;
using float3 = Multicollider::float3;
using Side = Multicollider::Side;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

class Bare : public Multicollider {
public:
    using Multicollider::solveInternal;
};

// The same bits; of numbers that are none, any.
bool isSame(const float* a, const float* b, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        if (std::memcmp(a + i, b + i, sizeof(float)) != 0 &&
            !(std::isnan(a[i]) && std::isnan(b[i])))
            return false;
    return true;
}

void expectSame(const Multicollider& a, const Multicollider& b)
{
    const std::size_t n = a.displacements.size();
    EXPECT_TRUE(n == 0 || isSame(&a.displacements[0].x, &b.displacements[0].x, 3 * n));
    EXPECT_TRUE(isSame(a.pairLambdas.data(), b.pairLambdas.data(), a.pairLambdas.size()));
}

// Mostly `usual`; now and then a number at which arithmetic turns.
float nowAndThenOdd(Random& random, uint oneIn, float usual)
{
    const float odd[] = {0,   -0.0f, 1e-40f, -3e38f, 3e38f, std::numeric_limits<float>::infinity(),
                         kNan};
    return random.oneIn(oneIn) ? odd[random.below(random.oneIn(4) ? 7 : 3)] : usual;
}

float3 vectorOf(Random& random, uint oneIn)
{
    const float3 v = random.vector();
    return {nowAndThenOdd(random, oneIn, v.x), nowAndThenOdd(random, oneIn, v.y),
            nowAndThenOdd(random, oneIn, v.z)};
}

Bare randomProblem(std::uint32_t seed)
{
    Random random(seed);
    Bare s;
    const uint oneIn = random.oneIn(2) ? 1000 : 12;
    const uint pushes = random.below(5);
    for (uint g = random.below(random.oneIn(2) ? 4 : 16); g > 0; --g) {
        const float w = random.oneIn(4) ? 0 : 1 + random.coordinate();
        s.addCollider(nowAndThenOdd(random, oneIn, w), vectorOf(random, oneIn));
        for (uint c = random.below(4); c > 0; --c)
            s.addContact(vectorOf(random, oneIn));
    }
    s.preparePairs(Side::Behind, random.oneIn(2) ? 1.0f : 0.7f);
    for (std::size_t k = 0; k < s.pairLambdas.size(); ++k) {
        if (random.oneIn(2))
            s.setSide(k, Side::Ahead);
        if (random.below(4) >= pushes)
            s.ignore(k);
        if (random.below(4) < pushes / 2)
            s.pairLambdas[k] = random.coordinate();
        s.pairScales[k] = nowAndThenOdd(random, 8 * oneIn, s.pairScales[k]);
        if (random.oneIn(64))
            s.pairScales[k] = -1.0f;
    }
    s.fallbackDisplacement = {7, 8, 9};
    s.tolerance = random.oneIn(8) ? 0.0f : random.oneIn(16) ? -1.0f : 1e-3f;
    s.maxIterations = random.below(30);
    return s;
}

TEST(Multicollider, SweepsEqualTheReferenceToTheBit)
{
    uint converged = 0;
    for (std::uint32_t seed = 0; seed < 6000; ++seed) {
        SCOPED_TRACE(seed);
        Bare ours = randomProblem(seed);
        Multicollider reference = ours;
        ours.solveInternal();
        Reference::solve(reference);
        expectSame(ours, reference);
        if (!ours.pairLambdas.empty() && ours.displacements[0].x != 7)
            ++converged;
    }
    EXPECT_GT(converged, 1000u);
    EXPECT_LT(converged, 5000u);
}

// Collider 0 runs along x into collider 1.
Bare chase(float w0, float w1)
{
    Bare s;
    s.addCollider(w0, {2, 0, 0});
    s.addContact({1, 0, 0});
    s.addCollider(w1, {-1, 5, 0});
    s.preparePairs();
    s.tolerance = 0;
    return s;
}

TEST(Multicollider, APairIsPushedApartByInverseMass)
{
    const struct {
        float w0, w1, x0, x1;
    } cases[] = {
        {1, 1, .5f, .5f}, {3, 1, -.25f, -.25f}, {0, 1, 2, 2}, {1, 0, -1, -1}, {0, 0, 2, -1}};
    for (const auto& t : cases) {
        Bare s = chase(t.w0, t.w1);
        EXPECT_TRUE(s.solve());
        EXPECT_EQ(s.displacements, (Array<float3>{{t.x0, 0, 0}, {t.x1, 5, 0}}));
    }
}

TEST(Multicollider, TheSideIsTheSignOfTheMultiplier)
{
    Bare s = chase(1, 1);
    const std::size_t pair = s.pairIndex(0, 0, 1);
    s.setSide(pair, Side::Ahead);
    EXPECT_TRUE(s.solve());
    EXPECT_EQ(s.displacements, s.freeDisplacements) << "it is ahead already";
    EXPECT_TRUE(std::signbit(s.pairLambdas[pair])) << "a zero keeps its side";

    s.freeDisplacements = {{-3, 0, 0}, {1, 0, 0}};
    EXPECT_TRUE(s.solve());
    EXPECT_EQ(s.displacements, (Array<float3>{{-1, 0, 0}, {-1, 0, 0}}));
    EXPECT_EQ(s.pairLambdas[pair], -2);
    s.ignore(pair);
    EXPECT_TRUE(s.solve());
    EXPECT_EQ(s.displacements, s.freeDisplacements);
}

TEST(Multicollider, SolveTellsWhetherItConvergedAndLeavesTheFallbackIfNot)
{
    Bare s = chase(1, 1);
    s.fallbackDisplacement = {0.5f, 0, 0};
    s.maxIterations = 1;
    EXPECT_FALSE(s.solve()) << "the first sweep changes a multiplier";
    EXPECT_EQ(s.displacements, (Array<float3>(2, {0.5f, 0, 0})));
    EXPECT_EQ(s.pairLambdas[0], 1.5f);
    EXPECT_TRUE(s.solve()) << "the push is known now";
    EXPECT_EQ(s.displacements, (Array<float3>{{.5f, 0, 0}, {.5f, 5, 0}}));
    s.withdrawPushes();
    EXPECT_FALSE(s.solve());
    s.maxIterations = 0;
    EXPECT_FALSE(s.solve());

    Bare broken = chase(1, 1);
    broken.freeDisplacements[1].x = kNan;
    EXPECT_FALSE(broken.solve());
    EXPECT_EQ(broken.displacements, (Array<float3>(2, {0, 0, 0})));
    broken.freeDisplacements[1].x = -1;
    EXPECT_TRUE(broken.solve()) << "a NaN spoils no later solve";
    EXPECT_EQ(broken.displacements, (Array<float3>{{.5f, 0, 0}, {.5f, 5, 0}}));
}

TEST(Multicollider, FewCollidersAndNoContactsChangeNothing)
{
    for (const uint colliders : {0, 1, 2}) {
        Bare s;
        for (uint g = 0; g < colliders; ++g)
            s.addCollider(1, {1, 2, 3});
        if (colliders == 1)
            s.addContact({1, 0, 0});
        s.preparePairs();
        s.maxIterations = colliders / 2;
        EXPECT_TRUE(s.solve());
        EXPECT_EQ(s.displacements, Array<float3>(colliders, {1, 2, 3}));
    }
}

}  // namespace
