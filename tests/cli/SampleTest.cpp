#include "Program.h"

#include <Korvane/Geometry.h>

#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

using namespace TestSupport;
using Korvane::Geometry::dataArray;
using Korvane::Math::float3;
using nlohmann::json;

namespace {

// A square of area 4 as one face; the sphere around it has the radius 2^0.5.
const char* const kSquare = "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\nf 1 2 3 4\n";

struct SampleVerb : AtTheHouse {
    const std::string square = folder.file("square.obj", kSquare), out = folder / "out.ply";
};

json sampled(const std::string& file, const std::string& out, const Names& options)
{
    return reportOf({"sample", file, "-o", out, "--force"}, options);
}

Pelon::Array<float3> pointsOf(const std::string& path)
{
    return *dataArray<float3>(*TessaryMesh::readMesh(path).mesh, Korvane::Geometry::sPointPosition);
}

TEST_F(SampleVerb, SamplesKeepTheDistanceAskedForAndAreMeasured)
{
    for (const char* asked : {"0.1", "0.05", "2.5%"}) {
        SCOPED_TRACE(asked);
        const json report = sampled(square, out, {"--distance", asked});
        const auto samples = pointsOf(out);
        const double distance = report["distance"], gap = report["smallest_distance"];
        EXPECT_NEAR(distance, asked[3] == '%' ? 0.025 * 1.4142136 : std::stod(asked), 1e-6);
        EXPECT_GE(gap, distance * (1 - 1e-5));
        EXPECT_EQ(gap, TessaryMesh::smallestDistance(samples, distance));
        EXPECT_EQ(report["samples"], samples.size());
        EXPECT_EQ(report["density"], double(samples.size()) / 4);
    }
}

TEST_F(SampleVerb, ACountIsMetWithinTwoPercentOrTheNearestIsSaid)
{
    const std::string npz = folder / "out.npz";
    const json report = sampled(square, npz, {"--count", "1000"});
    expectRefusal(run({"sample", square, "-d1", "-fo", npz, "--maps", folder / "./out.npz"}), 2,
                  "name the same file");
    EXPECT_NEAR(report["samples"], 1000, 20);
    expectReport(report, R"({"count_asked": 1000, "distance_asked": null, "warnings": []})");

    // Points of one place cannot be told apart, however small the distance.
    const std::string dot =
        folder.file("dot.obj", "v 1000 0 0\nv 1000.0001 0 0\nv 1000 0.0001 0\nf 1 2 3\n");
    const json few = sampled(dot, npz, {"--count", "1000"});
    EXPECT_LT(few["samples"], 900);
    EXPECT_TRUE(contains(few["warnings"][0], "1000 samples were asked for; the nearest found is "));
}

TEST_F(SampleVerb, PointsBringTheirPlaceAndTheMeshsValues)
{
    expectReport(sampled(house, out, {"--distance", "0.1"}), R"({
        "before": {"points": 7, "corners": 12, "faces": 3},
        "properties": ["weight", "face_id", "triangle_id", "normal", "texcoord", "group",
                       "material"]})");
    const auto cloud = TessaryMesh::readMesh(out).mesh;
    const auto faces = dataArray<Pelon::uint>(*cloud, "face_id");
    const auto normal = dataArray<float3>(*cloud, "normal");
    const float3 normals[] = {{0, 0, 1}, {0, 1, 0}, {1, 0, 0}};
    for (std::size_t i = 0; i < faces->size(); ++i)
        EXPECT_EQ((*normal)[i], normals[(*faces)[i]]);
    EXPECT_EQ(sampled(house, out, {"--distance", "0.1", "--properties", "group"})["properties"],
              json({"weight", "face_id", "triangle_id", "normal", "group"}));

    const Outcome obj =
        run({"sample", house, "-d", "0.3", "-o", "-", "--format", "obj", "--properties", "none"});
    EXPECT_FALSE(contains(obj.err, "warning"));
    const json written = infoOf(folder.file("out.obj", obj.out));
    EXPECT_GT(written["points"], 50);
    expectReport(written["properties"].at(0), R"({"name": "normal", "type": "float3"})");
    EXPECT_EQ(written["properties"][0]["values"], written["points"]);
}

TEST_F(SampleVerb, OnlyTheSeedDecidesWhichPoints)
{
    const auto bytes = [&](const char* threads, const char* seed) {
        sampled(square, out, {"-d", "0.02", "--threads", threads, "--seed", seed});
        return contentOf(out);
    };
    const std::string expected = bytes("1", "0");
    EXPECT_TRUE(bytes("3", "0") == expected);
    EXPECT_FALSE(bytes("1", "4294967295") == expected);
}

TEST_F(SampleVerb, WhatCannotBeSampledLeavesALineAndNoFile)
{
    const std::string huge = folder.file("huge.obj", "v 0 0 0\nv 1e30 0 0\nv 0 1e30 0\nf 1 2 3\n");
    const std::string endless =
        folder.file("endless.obj", "v 1e38 0 0\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 2 3 4\n");
    const Names before = folder.names();
    const auto expectLine = [&](const std::string& file, const Names& options, int exitCode,
                                const char* part) {
        Names arguments = {"sample", file, "-o", out};
        arguments.insert(arguments.end(), options.begin(), options.end());
        expectRefusal(run(arguments), exitCode, part);
        EXPECT_EQ(folder.names(), before);
    };
    for (const char* distance : {"0", "-1", "nan", "inf", "-2%", "%", "2%%", "0.1m"})
        expectLine(square, {std::string("--distance=") + distance}, 2, "a length above 0");
    for (const char* distance : {"1e-50", "1e39"})
        expectLine(square, {"--distance", distance}, 2, "what single precision holds");
    for (const char* count : {"0", "-5"})
        expectLine(square, {"--count", count}, 2, "--count");
    expectLine(square, {}, 2, "--distance D or --count N");
    expectLine(square, {"--distance", "1", "--count", "9"}, 2, "--distance excludes --count");
    expectLine(square, {"--distance", "1e-6"}, 2, "which 32 bits cannot number (take a distance ");
    expectLine(square, {"--distance", "1", "--seed", "4294967296"}, 2, "--seed");
    expectLine(square, {"--distance", "1", "--properties", "uv"}, 2, "no property uv");
    expectLine(endless, {"--distance", "2%"}, 2, "the distance 2% is outside what single");
    expectLine(huge, {"--distance", "2%"}, 4, "scale the mesh down");
}

TEST_F(SampleVerb, MoreMemoryThanThereIsIsRefusedWithTheDistanceThatFits)
{
    // 4.2e9 candidates of 120 bytes.
    const Outcome outcome = run({"sample", square, "--distance", "7.79e-5", "-o", out});
    if (outcome.exitCode == 0)
        GTEST_SKIP() << "this machine has 500 GB";
    expectRefusal(outcome, 3, "needs about 504 GB of memory, and there are ");
    EXPECT_EQ(folder.names(), (Names{"house.obj", "square.obj"}));
    EXPECT_EQ(run({"sample", square, "--count", "300000000", "-o", out}).exitCode, 3);
    EXPECT_EQ(run({"sample", square, "--count", "500000000", "-o", out}).exitCode, 2);
}

TEST_F(SampleVerb, ADistanceBeyondTheMeshLeavesNoSampleAndSaysSo)
{
    for (const char* distance : {"10", "1e30"}) {
        const json report = sampled(square, out, {"--distance", distance});
        expectReport(report, R"({"samples": 0, "smallest_distance": null})");
        EXPECT_EQ(report["warnings"].size(), 1u);
        EXPECT_TRUE(pointsOf(out).empty());
    }
}

}  // namespace
