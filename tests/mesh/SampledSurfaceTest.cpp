#include "support/MeshBuilding.h"
#include "support/Messages.h"

#include <Tessary/Progress.h>
#include <TessaryMesh/Operations.h>
#include <mesh/ops/CountSearch.h>

#include <atomic>
#include <cmath>
#include <thread>

using namespace TestSupport;
using TessaryMesh::SampledSurface;

namespace {

// Triangles of area 1/2, far apart.
MutablePtr<Object> pieces(uint count)
{
    Array<float3> points;
    PolygonMesh triangles;
    for (uint i = 0; i < count; ++i) {
        const float x = 100.0f * static_cast<float>(i);
        for (const float3& p : {float3{x, 0, 0}, float3{x + 1, 0, 0}, float3{x, 1, 0}})
            points.push_back(p);
        triangles.addFace(Array<uint>{3 * i, 3 * i + 1, 3 * i + 2});
    }
    return Geometry::makeMesh(points, triangles.faceOffset, triangles.faceVertex);
}

// A rectangle of one quad, from `corner` on.
MutablePtr<Object> rectangle(float width, float height, const float3& corner = {0, 0, 0})
{
    const float x = corner.x, y = corner.y, z = corner.z;
    return Geometry::makeMesh(
        {{x, y, z}, {x + width, y, z}, {x + width, y + height, z}, {x, y + height, z}}, {0, 4},
        {0, 1, 2, 3});
}

std::size_t countAt(const Object& mesh, std::uint64_t wanted)
{
    return SampledSurface(mesh).sampleCount(wanted, 1).count();
}

TEST(SampledSurface, SamplesThePolygonsFanTriangles)
{
    const auto mesh = rectangle(3, 2);
    const SampledSurface surface = SampledSurface(*mesh);
    EXPECT_EQ(surface.area(), 6.0);
    EXPECT_NEAR(surface.boundingRadius(), std::sqrt(13.0) / 2, 1e-6);
    EXPECT_EQ(SampledSurface(*pieces(10000)).area(), 5000.0)
        << "of as many as are added in parallel";
    const TessaryMesh::SurfaceSamples samples = surface.sample(0.1f, 5);

    const auto triangles = Geometry::makeMesh(*dataOf<float3>(*mesh, Geometry::sPointPosition),
                                              {0, 3, 6}, {0, 1, 2, 0, 2, 3});
    Object expected;
    Tessary::poissonSampleTriMesh(0.1f, 5, *triangles, expected, nullptr);
    EXPECT_GT(samples.count(), 300u);
    EXPECT_EQ(*samples.positions, *dataOf<float3>(expected, Geometry::sPointPosition));
    EXPECT_EQ(*samples.weights, *dataOf<float>(expected, "weight"));
    EXPECT_EQ(*samples.triangles, *dataOf<uint>(expected, "face_id"));
}

TEST(SampledSurface, RefusesMeshesWithoutASurfaceThatFloatsHold)
{
    const auto cloud = Geometry::makeMesh({{0, 0, 0}}, {0}, {});
    const auto line = Geometry::makeMesh({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}, {0, 3}, {0, 1, 2});
    Object points;
    Geometry::populatePointCloud(shared<float3>({{0, 0, 0}}), points);
    const struct {
        Ptr<Object> mesh;
        const char* part;
    } cases[] = {
        {makeMutable<Object>(points), "there are no faces, so"},
        {cloud, "there are no faces, so"},
        {meshOf(0, {}), "there are no faces, so"},
        {line, "no face has an area, so there is no surface to sample; look for points"},
        {rectangle(NAN, 1), "a face has a point that is not finite"},
        {rectangle(INFINITY, 1), "a face has a point that is not finite"},
        {rectangle(1e20f, 1e20f), "larger than single precision holds; scale the mesh down"},
        {rectangle(3e38f, 1e-38f, {-3e38f, 0, 0}), "scale the mesh down"},
        {rectangle(1e-20f, 1e-20f), "smaller than single precision holds; scale the mesh up"},
    };
    for (const auto& bad : cases)
        EXPECT_TRUE(contains(
            messageOf<TessaryMesh::InvalidMesh>([&] { SampledSurface surface(*bad.mesh); }),
            bad.part));
    EXPECT_GT(countAt(*rectangle(1e18f, 1e18f), 100), 90u) << "still large enough";
    EXPECT_GT(countAt(*rectangle(1e-17f, 1e-17f), 100), 90u) << "still small enough";
}

TEST(SampledSurface, RefusesDistancesThatCannotBeAndSaysWhichCan)
{
    const SampledSurface surface = SampledSurface(*rectangle(1, 1));
    const SampledSurface far = SampledSurface(*rectangle(256, 256, {1e9f, 0, 0}));
    const struct {
        const SampledSurface& surface;
        float distance;
        const char* part;
    } cases[] = {
        {surface, 0, "not a number above zero"},
        {surface, -1, "not a number above zero"},
        {surface, NAN, "not a number above zero"},
        {surface, INFINITY, "not a number above zero"},
        {surface, 1e-39f, "is too small for single precision (take a distance from "},
        {surface, 1e-6f, "asks for 6.3662e+12 candidates, which 32 bits cannot number (take a"},
        {far, 0.4f, "reaches as far from the origin as 1e+09 (take a distance from "},
    };
    for (const auto& bad : cases) {
        const auto sample = [&] { bad.surface.sample(bad.distance, 0); };
        EXPECT_TRUE(contains(messageOf<TessaryMesh::ArgumentError>(sample), bad.part));
    }
    const float least = surface.leastDistance();
    EXPECT_NO_THROW(surface.sample(0.5f, 0));
    EXPECT_GE(least, 3.8e-5f) << "32 bits of candidates on an area of 1";
    for (const std::uint64_t count : {std::uint64_t{0}, std::uint64_t{1} << 40})
        EXPECT_THROW(surface.sampleCount(count, 0), TessaryMesh::ArgumentError);
    EXPECT_NEAR(far.roundingShare(59.6f), 1, 0.01) << "a float of 1e9 is rounded by up to 32";
}

TEST(SampledSurface, FindsTheDistanceForACount)
{
    // A broad surface, a thin one, and one in pieces far apart, of which each has room for one.
    const auto expectMet = [](const Object& mesh, std::initializer_list<double> counts) {
        for (const double wanted : counts)
            EXPECT_NEAR(double(countAt(mesh, std::uint64_t(wanted))), wanted, 0.02 * wanted);
    };
    for (const auto& mesh : {rectangle(2, 1), rectangle(1000, 1e-3f)})
        expectMet(*mesh, {1, 7, 40, 500, 5000});
    expectMet(*pieces(300), {200, 3000});
}

TEST(SampledSurface, TheSearchForACountEndsAndStaysAboveTheLeastDistance)
{
    // Counts as they may be: far from what a plane has, with a gap in which the wanted one lies,
    // constant, and out of reach.
    const auto tries = [](std::uint64_t wanted, auto countOf) {
        int count = 0;
        TessaryMesh::searchForCount(wanted, 1.0, 1e-3, [&](double distance) {
            EXPECT_GE(distance, 1e-3);
            ++count;
            return static_cast<std::uint64_t>(countOf(distance));
        });
        return count;
    };
    EXPECT_LE(tries(100, [](double d) { return 1e4 / (d * d); }), 4);
    EXPECT_LE(tries(100, [](double d) { return 3.0 / d; }), 8);
    EXPECT_LE(tries(100, [](double d) { return d < 0.2 ? 150 : 50; }), 32);
    EXPECT_LE(tries(100, [](double) { return 5; }), 32);
    EXPECT_LE(tries(1000000, [](double d) { return 1 / (d * d) / 100; }), 10);
}

// To whoever looks, and of the calls of that thread alone.
TEST(SampledSurface, TellsHowFarTheSamplingIs)
{
    const SampledSurface surface = SampledSurface(*pieces(2000));
    const auto sample = [&] { surface.sample(0.05f, 1); };
    std::atomic<float> share{0};
    {
        const Tessary::ProgressScope scope(share);
        std::thread(sample).join();
        EXPECT_EQ(share, 0.0f);
        sample();
        EXPECT_EQ(share, 1.0f);
        Tessary::reportProgress(0.5f);
    }
    sample();
    EXPECT_EQ(share, 0.5f);
}

}  // namespace
