#include "support/MeshBuilding.h"
#include "support/Random.h"
#include "support/Threads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using namespace TestSupport;
using Tessary::computeBoundingSphere;
using Tessary::Sphere;

namespace {

struct Point {
    long double x, y, z;
};

Point operator-(const Point& a, const Point& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

long double dot(const Point& a, const Point& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Point moved(const Point& p, const Point& by, long double t)
{
    return {p.x + by.x * t, p.y + by.y * t, p.z + by.z * t};
}

struct Reference {
    Point center{0, 0, 0};
    long double squaredRadius = std::numeric_limits<long double>::infinity();
};

// The smallest ball with all of `support` on its boundary; false where these span too little.
bool ballThrough(const std::vector<Point>& support, Reference& ball)
{
    std::vector<Point> spanned;
    ball = {support[0], 0};
    for (std::size_t i = 1; i < support.size(); ++i) {
        Point v = support[i] - support[0];
        const long double length = dot(v, v);
        for (int round = 0; round < 2; ++round)
            for (const Point& s : spanned)
                v = moved(v, s, -dot(v, s) / dot(s, s));
        if (!(dot(v, v) > length * 1e-32L))
            return false;
        spanned.push_back(v);
        const Point d = support[i] - ball.center;
        const long double f = (dot(d, d) - ball.squaredRadius) / (2 * dot(v, v));
        ball.squaredRadius += (dot(d, d) - ball.squaredRadius) * f / 2;
        ball.center = moved(ball.center, v, f);
    }
    return true;
}

// The smallest ball of all sets of up to four points that encloses every point.
Reference smallestBall(const Array<float3>& points)
{
    std::vector<Point> all;
    for (const float3& p : points)
        all.push_back({p.x, p.y, p.z});
    Reference best;
    for (uint bits = 1; bits < 1u << all.size(); ++bits) {
        std::vector<Point> support;
        for (std::size_t i = 0; i < all.size(); ++i)
            if (bits >> i & 1)
                support.push_back(all[i]);
        Reference ball;
        if (support.size() <= 4 && ballThrough(support, ball) &&
            ball.squaredRadius < best.squaredRadius &&
            std::all_of(all.begin(), all.end(), [&ball](const Point& p) {
                return dot(p - ball.center, p - ball.center) <= ball.squaredRadius * (1 + 1e-12L);
            }))
            best = ball;
    }
    return best;
}

enum Shape { Loose, Grid, Line, Circle, OnSphere, Flat, Clusters, OffCenter, kShapes };

// A point of a set of this shape; `thin` is how much of a degenerate shape is left.
float3 pointOf(Shape shape, double thin, double scale, Random& random)
{
    double x = random.unit(), y = random.unit(), z = random.unit();
    if (shape == Grid) {
        x = random.below(3), y = random.below(3), z = random.below(3);
    } else if (shape == Line) {
        x = 3 * z + thin * x, y = z + thin * y;
    } else if (shape == Circle || shape == OnSphere) {
        z = shape == Circle ? thin * z : z;
        const double length = std::sqrt(x * x + y * y + (shape == Circle ? 0 : z * z));
        x /= length, y /= length, z /= shape == Circle ? 1 : length;
    } else if (shape == Flat) {
        z *= thin;
    } else if (shape == Clusters) {
        x = thin * x + random.below(2), y = thin * y + random.below(2), z *= thin;
    } else if (shape == OffCenter) {
        x += 1000, z -= 500;
    }
    const auto scaled = [scale](double v) { return static_cast<float>(v * scale); };
    return {scaled(x), scaled(y), scaled(z)};
}

TEST(BoundingSphere, IsTheSmallestOfAllSupportSetsWhateverTheShape)
{
    Random random(1);
    for (int i = 0; i < 6000; ++i) {
        const auto shape = static_cast<Shape>(i % kShapes);
        const double thin = std::pow(10.0, -static_cast<double>(random.below(12)));
        const double scale = i % 3 == 0 ? 1 : i % 3 == 1 ? 1e-18 : 1e18;
        Array<float3> points(1 + random.below(8));
        double reach = 0;
        for (float3& p : points) {
            p = pointOf(shape, thin, scale, random);
            reach = std::max<double>({reach, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
        }
        SCOPED_TRACE(testing::Message() << "shape " << shape << " thin " << thin << " case " << i);

        const Sphere sphere = computeBoundingSphere(points);
        const Reference best = smallestBall(points);
        const float3 c = sphere.getCenter();
        const Point off = Point{c.x, c.y, c.z} - best.center;
        // The radius is that of the rounded centre, and its square may be too small for a float.
        const double rounding = std::sqrt(static_cast<double>(dot(off, off)));
        const double radius = std::sqrt(static_cast<double>(best.squaredRadius));
        EXPECT_LE(rounding, 1.5e-7 * reach);
        EXPECT_NEAR(sphere.getRadius(), radius, rounding + 1e-6 * radius + 5e-23);
    }
}

TEST(BoundingSphere, OfFewPointsIsExact)
{
    const auto expectSphere = [](const Array<float3>& points, float3 center, float radius) {
        const Sphere sphere = computeBoundingSphere(points);
        EXPECT_EQ(sphere.getCenter(), center);
        EXPECT_EQ(sphere.getRadius(), radius);
    };
    expectSphere({}, {0, 0, 0}, 0);
    expectSphere({{3, -4, 5}}, {3, -4, 5}, 0);
    expectSphere({{1, 2, 3}, {1, 2, 9}}, {1, 2, 6}, 3);
    expectSphere(Array<float3>(1000, {7, 7, 7}), {7, 7, 7}, 0);
    expectSphere({{0, 0, 0}, {4, 0, 0}, {1, 0, 0}, {4, 0, 0}, {2, 1, 0}}, {2, 0, 0}, 2);
    expectSphere({{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}}, {0, 0, 0},
                 1);
    EXPECT_TRUE(std::isnan(Sphere({0, 0, 0}, -1.0f).getRadius()));
}

// Every point passes the float test, at any number of threads and with the same bits.
void expectEncloses(const Array<float3>& points, double radius, double tolerance)
{
    const Sphere sphere = computeBoundingSphere(points);
    EXPECT_NEAR(sphere.getRadius(), radius, tolerance * radius);
    const float3 c = sphere.getCenter();
    float largest = 0;
    for (const float3& p : points) {
        const float x = p.x - c.x, y = p.y - c.y, z = p.z - c.z;
        largest = std::max(largest, x * x + y * y + z * z);
    }
    EXPECT_EQ(sphere.getRadius(), std::sqrt(largest));
    atSeveralThreadCounts([&](int) {
        const Sphere again = computeBoundingSphere(points);
        EXPECT_EQ(again.getCenter(), c);
        EXPECT_EQ(again.getRadius(), sphere.getRadius());
    });
}

TEST(BoundingSphere, LargeSetsHaveTheRadiusOfTheirShapeAtAnyThreadCount)
{
    Random random(2);
    const uint count = 50003;
    Array<float3> points(count);
    for (const float offset : {0.0f, 16.0f})
        for (const Shape shape : {Circle, OnSphere})
            for (const double thin : {0.0, 1e-8}) {
                for (float3& p : points) {
                    p = pointOf(shape, thin, 1, random);
                    p.x += offset, p.y -= offset;
                }
                expectEncloses(points, 1, 2e-6);
            }
    for (uint i = 0; i < count; ++i)
        points[i] = {static_cast<float>(i % 20001), 0, 0};
    expectEncloses(points, 10000, 0);
}

// A point counts as spanning a direction where its part in it is at least 2^-46 of the squared
// radius: more would keep points out of a ball that needs them, less would let rounding errors in.
TEST(BoundingSphere, PointsThatSpanTooLittleAreLeftOut)
{
    // A third point too close to the line of the two farthest leaves their midpoint.
    const Array<float3> close{{0x1.cp-1f, -0x1.8p-23f, 0},
                              {1.5f, -0x1p-23f, 0x1.8p-24f},
                              {-1.5f, -0x1.8p-25f, -0x1.8p-23f},
                              {-1.5f, 0x1p-24f, -0x1.4p-25f}};
    EXPECT_EQ(computeBoundingSphere(close).getCenter(), (float3{0, -0x1p-25f, 0x1.cp-26f}));
    // A third point just far enough from it moves the centre.
    const Array<float3> farEnough{{-0x1.8p-1f, 0x1.8p-22f, 0},
                                  {1.75f, 0x1p-23f, 0x1p-22f},
                                  {-1.75f, 0, 0},
                                  {-1.75f, 0x1p-22f, 0}};
    EXPECT_EQ(computeBoundingSphere(farEnough).getCenter().y, 0x1p-23f);
}

TEST(BoundingSphere, EndsOnNumbersThatAreNotFinite)
{
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInf = std::numeric_limits<float>::infinity();
    Random random(3);
    for (int i = 0; i < 2000; ++i) {
        Array<float3> points(1 + random.below(40));
        for (float3& p : points)
            p = pointOf(Loose, 1, 1, random);
        for (const float odd : {kNan, kInf, -kInf, 3e38f})
            if (random.oneIn(2))
                (&points[random.below(static_cast<uint>(points.size()))].x)[random.below(3)] = odd;
        computeBoundingSphere(points);
    }
    // A point that is no number does not hide the others.
    Array<float3> points{{0, 0, 0}, {kNan, 0, 0}, {2, 0, 0}};
    EXPECT_EQ(computeBoundingSphere(points).getRadius(), 1);
    EXPECT_EQ(computeBoundingSphere({{0, 0, 0}, {kInf, 0, 0}}).getRadius(), kInf);
}

}  // namespace
