#include <TessaryMesh/Page.h>

#include <gtest/gtest.h>
#include <support/MeshBuilding.h>
#include <support/Random.h>
#include <support/Threads.h>

#include <cmath>
#include <cstring>

#include "MeshFiles.h"

namespace {

using namespace TestSupport;
using namespace MeshFiles;
using namespace TessaryMesh;
using Korvane::Math::float3;

MutablePtr<Object> square()
{
    return Geometry::makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0, 4}, {0, 1, 2, 3});
}

// Floats of which every bit is as likely as not, as far as they are finite: nothing to compress.
MutablePtr<Object> noise(std::size_t count)
{
    Random random(1);
    const auto points = makeMutable<Array<float3>>(count);
    for (float3& p : *points)
        for (float* const x : {&p.x, &p.y, &p.z})
            do {
                const std::uint32_t bits = random.below(0xFFFFFFFF);
                std::memcpy(x, &bits, sizeof bits);
            } while (!std::isfinite(*x));
    const auto cloud = makeMutable<Object>();
    Geometry::populatePointCloud(points, *cloud);
    return cloud;
}

std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

TEST(Page, NamesFromElsewhereCannotLeaveTheirElement)
{
    const char* const hostile = "</script><img src=x onerror=alert(1)>\xE2\x80\xA8\xFF&\"";
    const auto mesh = square();
    Geometry::addDataGeoProperty<String>(*mesh, hostile, Geometry::sFaceComp,
                                         shared<String>({hostile}));
    const std::string page = makePage({{hostile, mesh}}), plain = makePage({{"a", square()}});
    EXPECT_EQ(countOf(page, "<img"), 0u);
    EXPECT_EQ(countOf(page, "</script"), countOf(plain, "</script") + 1) << "one array more";
    EXPECT_TRUE(contains(
        page,
        R"("name":"\u003c/script\u003e\u003cimg src=x onerror=alert(1)\u003e\u2028\ufffd\u0026\u0022")"));
}

TEST(Page, TakesAtMostAMegabyteMoreThanItsArrays)
{
    const std::string small = makePage({{"square", square()}}),
                      large = makePage({{"noise", noise(1000000)}});
    EXPECT_LT(small.size(), 500000u);
    EXPECT_TRUE(contains(small, "<meta charset=\"utf-8\">"));
    EXPECT_LE(large.size(), 12000000u + 1000000u);
    EXPECT_TRUE(contains(large, "<meta charset=\"windows-1252\">"));
    EXPECT_EQ(large.find('\0'), std::string::npos);
    EXPECT_EQ(large.find('\r'), std::string::npos);
    PageOptions ascii, quantised;
    ascii.ascii = quantised.quantise = true;
    for (const char c : makePage({{"noise", noise(1000000)}}, ascii))
        ASSERT_GE(c, 0);
    EXPECT_LT(makePage({{"noise", noise(1000000)}}, quantised).size(), 9000000u);
}

TEST(Page, IsTheSameForAnyNumberOfThreads)
{
    const auto cloud = noise(100000);
    const std::string page = makePage({{"noise", cloud}});
    atSeveralThreadCounts([&](int) { EXPECT_TRUE(makePage({{"noise", cloud}}) == page); });
}

TEST(Page, ShowsFaultyMeshesWithWhatIsWrongButNothingWithoutPoints)
{
    const auto faulty = Geometry::makeMesh({{0, 0, 0}, {1, 0, 0}, {NAN, 1, 0}}, {0, 3}, {0, 1, 7});
    const std::string page = makePage({{"faulty", faulty}, {"square", square()}});
    for (const char* code : {"\"index-out-of-range\"", "\"point-not-finite\""})
        EXPECT_EQ(countOf(page, code), 1u) << code;
    EXPECT_THROW(makePage({}), ArgumentError);
    EXPECT_THROW(makePage({{"a", square()}, {"b", square()}, {"c", square()}}), ArgumentError);
    EXPECT_THROW(makePage({{"empty", makeMutable<Object>()}}), ArgumentError);
}

}  // namespace
