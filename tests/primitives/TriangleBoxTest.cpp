#include "reference/TriangleBox.h"
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

bool reference(const Case& t)
{
    return Reference::triangleOverlapsBox(t.a, t.b, t.c, t.center, t.half);
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
        {"in a face's plane", {{0, 0, 1}, {.5f, 0, 1}, {0, .5f, 1}, o, one}, true},
        {"around the box", {{-9, -9, 0}, {9, -9, 0}, {0, 9, 0}, o, one}, true},
        {"the same, too large for floats to multiply",
         {{-9e21f, -9e21f, 0}, {9e21f, -9e21f, 0}, {0, 9e21f, 0}, o, {1e21f, 1e21f, 1e21f}},
         false},
        {"past a corner", {{2.1f, 0, 0}, {0, 2.1f, 0}, {2.1f, 2.1f, 0}, o, one}, false},
        {"on an edge", {{2, 0, 0}, {0, 2, 0}, {2, 2, 0}, o, one}, true},
        {"plane beside", {{3.1f, 0, 0}, {0, 3.1f, 0}, {0, 0, 3.1f}, o, one}, false},
        {"plane on a corner", {{3, 0, 0}, {0, 3, 0}, {0, 0, 3}, o, one}, true},
        {"a point inside", {{.5f, .5f, .5f}, {.5f, .5f, .5f}, {.5f, .5f, .5f}, o, one}, true},
        {"a point outside", {{.5f, 2, .5f}, {.5f, 2, .5f}, {.5f, 2, .5f}, o, one}, false},
        {"a line beside", {{-2, 5, 0}, {5, -2, 0}, {1.5f, 1.5f, 0}, o, one}, false},
        {"box of a point", {{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}, o, o}, true},
    };
    for (const auto& t : cases) {
        EXPECT_EQ(t.pair.overlaps(), t.overlap) << t.name;
        EXPECT_EQ(reference(t.pair), t.overlap) << t.name;
    }
}

}  // namespace
