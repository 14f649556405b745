#include "Program.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using nlohmann::json;

namespace {

TEST(Demo, RunsEveryKernelAndWritesFilesThatReadBack)
{
    const Folder folder;
    const std::string demo = folder.path("made/for/it");
    const Outcome outcome =
        run({"demo", "--output", demo, "--resolution", "8", "--json", "--quiet"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    const json facts = outcome.json();
    EXPECT_EQ(facts["wrong_half_edges"], 0);
    std::vector<std::string> steps;
    for (const json& step : facts["steps"])
        steps.push_back(step["step"]);
    EXPECT_EQ(steps, (std::vector<std::string>{
                         "makeDemoMesh", "computeTriangulation", "constructDualMesh", "addDual",
                         "half-edges", "computeTriEdges", "populateAdjacentTri", "computeQuadMesh",
                         "triangulatePolyMesh", "quads", "poissonSampleTriMesh", "sample", "write",
                         "write", "write", "write", "write", "write"}));

    const auto infoOf = [&](const std::string& name) {
        return run({"info", demo + "/" + name, "--json", "--quiet"}).json();
    };
    const json polygons = infoOf("demo.obj"), triangles = infoOf("demo_triangles.obj");
    EXPECT_GE(polygons["polygon_sizes"].size(), 3u);
    EXPECT_EQ(triangles["polygon_sizes"].size(), 1u);
    EXPECT_EQ(triangles["points"], polygons["points"]);
    EXPECT_EQ(triangles["faces"],
              polygons["corners"].get<int>() - 2 * polygons["faces"].get<int>());
    EXPECT_EQ(infoOf("demo.ply")["faces"], polygons["faces"]);
    EXPECT_EQ(infoOf("demo_triangles.ply")["faces"], triangles["faces"]);
    const json quads = infoOf("demo_quads.ply");
    EXPECT_EQ(quads["faces"], 3 * triangles["faces"].get<int>());
    EXPECT_EQ(quads["genus"], polygons["genus"]);

    // A second run replaces its own files, and tells people where to look.
    const Outcome again = run({"demo", "--output", demo, "--resolution", "8"});
    EXPECT_EQ(again.exitCode, 0) << again.err;
    EXPECT_NE(again.out.find(demo), std::string::npos) << again.out;
}

}  // namespace
