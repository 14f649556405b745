#include "Program.h"

#include <Korvane/Geometry.h>
#include <gtest/gtest.h>
#include <meshio/MeshFile.h>

#include <algorithm>
#include <cmath>

using namespace TestSupport;
using Korvane::Math::float3;
using nlohmann::json;
using Names = std::vector<std::string>;
using Points = Pelon::Array<float3>;

namespace {

const char* const kBunny = "/usr/share/glmark2/models/bunny.obj";

// A square of area 4 as one face.
const char* const kSquare = "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\nf 1 2 3 4\n";

json sampled(const std::string& file, const std::string& out, const Names& options)
{
    Names arguments = {"sample", file, "-o", out, "--force", "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    return outcome.exitCode == 0 ? outcome.json() : json();
}

Points pointsOf(const std::string& path)
{
    return *Korvane::Geometry::dataArray<float3>(*MeshIo::readMesh(path).mesh,
                                                 Korvane::Geometry::sPointPosition);
}

double squared(const float3& a, const float3& b)
{
    const double x = double{a.x} - b.x, y = double{a.y} - b.y, z = double{a.z} - b.z;
    return x * x + y * y + z * z;
}

double nearest(const float3& p, const float3* first, const float3* last)
{
    double least = INFINITY;
    for (; first != last; ++first)
        least = std::min(least, squared(p, *first));
    return std::sqrt(least);
}

double smallestGap(const Points& samples)
{
    double least = INFINITY;
    for (const float3* p = samples.begin(); p != samples.end(); ++p)
        least = std::min(least, nearest(*p, samples.begin(), p));
    return least;
}

// A disk of half the distance is drawn five candidates; one without any, of 3/4 of the distance, has
// a chance of one in 80,000. What removed a candidate lies within the distance, and around the first
// one, which is left out, others stand a little farther off.
void expectCovered(const Points& spots, const Points& samples, double distance)
{
    std::size_t beyond = 0;
    for (const float3& spot : spots) {
        const double gap = nearest(spot, samples.begin(), samples.end()) / distance;
        beyond += gap > 1;
        ASSERT_LT(gap, 1.75);
    }
    EXPECT_LT(beyond, spots.size() / 50);
}

TEST(SampleVerb, SamplesOfTheBunnyKeepTheirDistanceAndLeaveNoHoles)
{
    if (!std::filesystem::exists(kBunny))
        GTEST_SKIP() << "needs the package glmark2-data";
    const Folder folder;
    const std::string out = folder.path("samples.ply");
    const Points spots = pointsOf(kBunny);
    for (const char* asked : {"0.1", "0.05", "2.5%"}) {
        SCOPED_TRACE(asked);
        const json facts = sampled(kBunny, out, {"--distance", asked});
        const Points samples = pointsOf(out);
        const double distance = facts["distance"];
        EXPECT_NEAR(distance, asked[3] == '%' ? 0.025 * 1.2864136 : std::stod(asked), 1e-6);
        const double gap = smallestGap(samples);
        EXPECT_GE(gap, distance * (1 - 1e-5));
        EXPECT_EQ(facts["smallest_distance"], gap);
        EXPECT_EQ(facts["samples"], samples.size());
        EXPECT_NEAR(facts["density"], double(samples.size()) / 9.6031068, 1e-4 * samples.size());
        expectCovered(spots, samples, distance);
    }
}

TEST(SampleVerb, ACountIsMetWithinTwoPercentOrTheNearestIsSaid)
{
    const Folder folder;
    const std::string square = folder.file("square.obj", kSquare), out = folder.path("out.npz");
    for (const int wanted : {10, 1000}) {
        const json facts = sampled(square, out, {"--count", std::to_string(wanted)});
        EXPECT_NEAR(facts["samples"], wanted, 0.02 * wanted);
        EXPECT_EQ(facts["count_asked"], wanted);
        EXPECT_EQ(facts["distance_asked"], nullptr);
        EXPECT_EQ(facts["warnings"], json::array());
    }
    // Points of one place cannot be told apart, however small the distance.
    const std::string dot =
        folder.file("dot.obj", "v 1000 0 0\nv 1000.0001 0 0\nv 1000 0.0001 0\nf 1 2 3\n");
    const json facts = sampled(dot, out, {"--count", "1000"});
    EXPECT_LT(facts["samples"], 900);
    const std::string warning = facts["warnings"][0];
    EXPECT_EQ(warning.find("1000 samples were asked for; the nearest found is "), 0u) << warning;
}

TEST(SampleVerb, PointsBringTheirPlaceAndTheMeshsValues)
{
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse), out = folder.path("out.ply");
    const json facts = sampled(house, out, {"--distance", "0.1"});
    EXPECT_EQ(facts["before"], json({{"points", 7}, {"corners", 12}, {"faces", 3}}));
    EXPECT_EQ(facts["properties"], json({"weight", "face_id", "triangle_id", "normal", "texcoord",
                                         "group", "material"}));
    const auto cloud = MeshIo::readMesh(out).mesh;
    using Korvane::Geometry::dataArray;
    const auto faces = dataArray<Pelon::uint>(*cloud, "face_id");
    const auto triangles = dataArray<Pelon::uint>(*cloud, "triangle_id");
    EXPECT_EQ(*std::max_element(faces->begin(), faces->end()), 2u);
    EXPECT_EQ(*std::max_element(triangles->begin(), triangles->end()), 5u);
    const auto normal = dataArray<float3>(*cloud, "normal");
    const auto texcoord = dataArray<Korvane::Math::float2>(*cloud, "texcoord");
    const Points points = pointsOf(out);
    const float3 normals[] = {{0, 0, 1}, {0, 1, 0}, {1, 0, 0}};
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_EQ((*normal)[i], normals[(*faces)[i]]);
        if ((*faces)[i] == 0 && points[i].y < 2) {
            EXPECT_NEAR((*texcoord)[i].x, points[i].x / 2, 0.26) << "the roof's tip is lower";
        }
    }
    EXPECT_EQ(sampled(house, out, {"--distance", "0.1", "--properties", "group"})["properties"],
              json({"weight", "face_id", "triangle_id", "normal", "group"}));

    const Outcome obj =
        run({"sample", house, "-d", "0.3", "-o", "-", "--format", "obj", "--properties", "none"});
    EXPECT_EQ(obj.err.find("warning"), std::string::npos) << obj.err;
    const auto lines = [&obj](const std::string& keyword) {
        std::size_t count = 0;
        for (std::size_t at = 0; (at = obj.out.find("\n" + keyword, at)) != std::string::npos; ++at)
            ++count;
        return count;
    };
    EXPECT_GT(lines("v "), 50u);
    EXPECT_EQ(lines("v "), lines("vn "));
}

TEST(SampleVerb, OnlyTheSeedDecidesWhichPoints)
{
    const Folder folder;
    const std::string square = folder.file("square.obj", kSquare);
    const auto bytes = [&](const Names& options) {
        Names all = {"--distance", "0.02"};
        all.insert(all.end(), options.begin(), options.end());
        sampled(square, folder.path("out.ply"), all);
        return textOfFile(folder.path("out.ply"));
    };
    const std::string expected = bytes({"--threads", "1"});
    EXPECT_TRUE(bytes({"--threads", "3", "--seed", "0"}) == expected);
    EXPECT_FALSE(bytes({"--seed", "4294967295"}) == expected);
}

TEST(SampleVerb, WhatCannotBeSampledLeavesALineAndNoFile)
{
    const Folder folder;
    const std::string square = folder.file("square.obj", kSquare);
    const std::string cloud = folder.file("cloud.obj", "v 0 0 0\nv 1 1 1\n");
    const std::string empty = folder.file("empty.obj", "# nothing\n");
    const std::string line = folder.file("line.obj", "v 0 0 0\nv 1 1 1\nv 2 2 2\nf 1 2 3\n");
    const std::string huge = folder.file("huge.obj", "v 0 0 0\nv 1e30 0 0\nv 0 1e30 0\nf 1 2 3\n");
    const std::string far =
        folder.file("far.obj", "v 1e9 0 0\nv 1000000256 0 0\nv 1e9 256 0\nf 1 2 3\n");
    const std::string endless =
        folder.file("endless.obj", "v 1e38 0 0\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 2 3 4\n");
    const Names before = folder.names();
    const struct {
        std::string file;
        Names options;
        int exitCode;
        const char* part;
    } cases[] = {
        {square, {}, 2, "--distance D or --count N"},
        {square, {"--distance", "1", "--count", "9"}, 2, "--distance excludes --count"},
        {square, {"--distance=0"}, 2, "a number above zero"},
        {square, {"--distance=-1"}, 2, "a number above zero"},
        {square, {"--distance=nan"}, 2, "a number above zero"},
        {square, {"--distance=inf"}, 2, "a number above zero"},
        {square, {"--distance=-2%"}, 2, "a number above zero"},
        {square, {"--distance=%"}, 2, "a number above zero"},
        {square, {"--distance=2%%"}, 2, "a number above zero"},
        {square, {"--distance=0.1m"}, 2, "0.1m is neither"},
        {square, {"--distance=1e-50"}, 2, "what single precision holds"},
        {square, {"--distance=1e39"}, 2, "what single precision holds"},
        {square,
         {"--distance=1e-6"},
         2,
         "candidates, which 32 bits cannot number (take a distance "},
        {square, {"--count", "0"}, 2, "--count"},
        {square, {"--count", "-5"}, 2, "--count"},
        {square, {"--distance", "1", "--seed", "4294967296"}, 2, "--seed"},
        {square, {"--distance", "1", "--properties", "uv"}, 2, "no property \"uv\""},
        {far, {"--distance", "0.1"}, 2, "far from the origin as 1e+09"},
        {cloud, {"--distance", "1"}, 4, "no faces, so there is no surface"},
        {empty, {"--distance", "1"}, 4, "no faces, so there is no surface"},
        {line, {"--count", "100"}, 4, "no face has an area"},
        {huge, {"--distance", "2%"}, 4, "scale the mesh down"},
        {endless, {"--distance", "2%"}, 2, "the distance 2% is outside what single precision"},
    };
    for (const auto& bad : cases) {
        Names arguments = {"sample", bad.file, "-o", folder.path("out.ply")};
        arguments.insert(arguments.end(), bad.options.begin(), bad.options.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, bad.exitCode) << outcome.err;
        EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
        EXPECT_NE(outcome.err.find(bad.part), std::string::npos) << outcome.err;
        EXPECT_EQ(folder.names(), before);
    }
}

TEST(SampleVerb, MoreMemoryThanThereIsIsRefusedWithTheDistanceThatFits)
{
    const Folder folder;
    const std::string square = folder.file("square.obj", kSquare), out = folder.path("out.ply");
    // 4.2e9 candidates of 120 bytes.
    const Outcome outcome = run({"sample", square, "--distance", "7.79e-5", "-o", out});
    if (outcome.exitCode == 0)
        GTEST_SKIP() << "this machine has 500 GB";
    EXPECT_EQ(outcome.exitCode, 3) << outcome.err;
    EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
    EXPECT_NE(outcome.err.find("needs about 504 GB of memory, and there are "), std::string::npos)
        << outcome.err;
    EXPECT_EQ(folder.names(), Names{"square.obj"});
    EXPECT_EQ(run({"sample", square, "--count", "300000000", "-o", out}).exitCode, 3);
    EXPECT_EQ(run({"sample", square, "--count", "500000000", "-o", out}).exitCode, 2);
}

TEST(SampleVerb, ADistanceBeyondTheMeshLeavesNoSampleAndSaysSo)
{
    const Folder folder;
    const std::string square = folder.file("square.obj", kSquare);
    for (const char* distance : {"10", "1e30"}) {
        const json facts = sampled(square, folder.path("out.ply"), {"--distance", distance});
        EXPECT_EQ(facts["samples"], 0);
        EXPECT_EQ(facts["smallest_distance"], nullptr);
        EXPECT_EQ(facts["warnings"].size(), 1u);
        EXPECT_TRUE(pointsOf(folder.path("out.ply")).empty());
    }
}

}  // namespace
