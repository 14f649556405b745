#include "support/MeshBuilding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

using namespace TestSupport;
using Tessary::intersect_triangle_with_axis_aligned_box;

namespace {

struct Case {
    float3 a, b, c, center, half;

    bool overlaps() const
    {
        return intersect_triangle_with_axis_aligned_box(a, b, c, center, half);
    }
};

float3 minus(const float3& a, const float3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

float3 cross(const float3& a, const float3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// Thirteen tests one after the other, nothing left out.
bool reference(const Case& t)
{
    const float3& h = t.half;
    const float3 u[] = {minus(t.a, t.center), minus(t.b, t.center), minus(t.c, t.center)};
    const float3 e[] = {minus(t.b, t.a), minus(t.c, t.b), minus(t.a, t.c)};
    const float3 units[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (const float3& s : units)
        for (const float3& v : e) {
            const float3 a = cross(s, v);
            float p[3];
            for (int i = 0; i < 3; ++i)
                p[i] = a.x * u[i].x + a.y * u[i].y + a.z * u[i].z;
            const float r = std::fabs(a.x) * h.x + std::fabs(a.y) * h.y + std::fabs(a.z) * h.z;
            if (std::max(std::min(std::min(p[0], p[1]), p[2]),
                         -std::max(std::max(p[0], p[1]), p[2])) > r)
                return false;
        }
    for (float float3::*const axis : {&float3::x, &float3::y, &float3::z}) {
        const float x0 = u[0].*axis, x1 = u[1].*axis, x2 = u[2].*axis;
        if (-(h.*axis) > std::max(std::max(x0, x1), x2) || std::min(std::min(x0, x1), x2) > h.*axis)
            return false;
    }
    const float3 n = cross(e[0], e[1]);
    return std::fabs(n.x) * h.x + std::fabs(n.y) * h.y + std::fabs(n.z) * h.z >=
           std::fabs(n.x * u[0].x + n.y * u[0].y + n.z * u[0].z);
}

// Numbers of a case in a row, so that a test can replace any of them.
std::array<float*, 15> numbersOf(Case& t)
{
    std::array<float*, 15> numbers{};
    std::size_t i = 0;
    for (float3* const v : {&t.a, &t.b, &t.c, &t.center, &t.half})
        for (float* const x : {&v->x, &v->y, &v->z})
            numbers[i++] = x;
    return numbers;
}

Case randomCase(std::mt19937& random)
{
    Case t{};
    const bool onGrid = random() % 2 == 0;  // touches often
    for (float* const x : numbersOf(t))
        *x = onGrid ? static_cast<float>(random() % 9) - 4.0f
                    : static_cast<float>(random()) * 0x1p-31f - 1.0f;
    for (float* const x : {&t.half.x, &t.half.y, &t.half.z})
        *x = std::fabs(*x) * (random() % 3 == 0 ? 0.1f : 0.5f);
    return t;
}

TEST(TriangleBox, EqualsTheThirteenTestsOneAfterTheOtherAndIsFalseOnNan)
{
    constexpr float kInf = std::numeric_limits<float>::infinity();
    const float odd[] = {kInf, -kInf, 3e38f, -3e38f, 1e30f, 1e-38f, 1e-45f, -0.0f, 0.0f, 1e20f};
    const int count = 800000;
    std::mt19937 random(1);
    int overlaps[2] = {0, 0};  // of usual numbers, and with odd ones
    for (int i = 0; i < count; ++i) {
        Case t = randomCase(random);
        for (uint n = i % 2 == 0 ? 0 : 1 + random() % 6; n > 0; --n)
            *numbersOf(t)[random() % 15] = odd[random() % std::size(odd)];
        overlaps[i % 2] += t.overlaps() ? 1 : 0;
        ASSERT_EQ(t.overlaps(), reference(t)) << "case " << i;
        *numbersOf(t)[random() % 15] = std::numeric_limits<float>::quiet_NaN();
        ASSERT_FALSE(t.overlaps()) << "case " << i;
        ASSERT_FALSE(reference(t)) << "case " << i;
    }
    EXPECT_GT(overlaps[0], count / 40);
    EXPECT_LT(overlaps[0], count / 4);
    EXPECT_GT(overlaps[1], 1000);
}

TEST(TriangleBox, TouchingCountsAndEdgesSeparate)
{
    const float3 o{0, 0, 0}, one{1, 1, 1};
    const struct {
        const char* name;
        Case pair;
        bool overlap;
    } cases[] = {
        {"a point on a face", {{1, 0, 0}, {2, 1, 0}, {2, -1, 0}, o, one}, true},
        {"a point off a face", {{1.001f, 0, 0}, {2, 1, 0}, {2, -1, 0}, o, one}, false},
        {"in a face's plane", {{0, 0, 1}, {.5f, 0, 1}, {0, .5f, 1}, o, one}, true},
        {"cuts through", {{-9, 0, 0}, {9, .1f, 0}, {0, 9, .1f}, o, one}, true},
        {"around the box", {{-9, -9, 0}, {9, -9, 0}, {0, 9, 0}, o, one}, true},
        {"past a corner", {{2.1f, 0, 0}, {0, 2.1f, 0}, {2.1f, 2.1f, 0}, o, one}, false},
        {"on an edge", {{2, 0, 0}, {0, 2, 0}, {2, 2, 0}, o, one}, true},
        {"plane beside", {{3.1f, 0, 0}, {0, 3.1f, 0}, {0, 0, 3.1f}, o, one}, false},
        {"plane on a corner", {{3, 0, 0}, {0, 3, 0}, {0, 0, 3}, o, one}, true},
        {"a point inside", {{.5f, .5f, .5f}, {.5f, .5f, .5f}, {.5f, .5f, .5f}, o, one}, true},
        {"a point outside", {{.5f, 2, .5f}, {.5f, 2, .5f}, {.5f, 2, .5f}, o, one}, false},
        {"a line across", {{-2, 0, 0}, {2, 0, 0}, {0, 0, 0}, o, one}, true},
        {"a line beside", {{-2, 5, 0}, {5, -2, 0}, {1.5f, 1.5f, 0}, o, one}, false},
        {"box of a point", {{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}, o, o}, true},
        {"box of a point beside", {{-1, -1, .1f}, {1, -1, .1f}, {0, 1, .1f}, o, o}, false},
    };
    for (const auto& t : cases) {
        EXPECT_EQ(t.pair.overlaps(), t.overlap) << t.name;
        EXPECT_EQ(reference(t.pair), t.overlap) << t.name;
    }
}

}  // namespace
