#include "Program.h"

using namespace TestSupport;
using nlohmann::json;

namespace {

TEST(Demo, RunsEveryKernelAndWritesFilesThatReadBack)
{
    const Folder folder;
    const std::string demo = folder / "made/for/it";
    const json report = reportOf({"demo", "--output", demo, "--resolution", "8", "--quiet"});
    EXPECT_EQ(report["wrong_half_edges"], 0);
    Names steps;
    for (const json& step : report["steps"])
        steps.push_back(step["step"]);
    EXPECT_EQ(steps,
              (Names{"makeDemoMesh", "computeTriangulation", "constructDualMesh", "addDual",
                     "half-edges", "computeTriEdges", "populateAdjacentTri", "computeQuadMesh",
                     "triangulatePolyMesh", "quads", "poissonSampleTriMesh", "sample", "write",
                     "write", "write", "write", "write", "write"}));

    const json polygons = infoOf(demo + "/demo.obj"), quads = infoOf(demo + "/demo_quads.ply");
    const json triangles = infoOf(demo + "/demo_triangles.obj");
    const int faces = polygons["corners"].get<int>() - 2 * polygons["faces"].get<int>();
    EXPECT_GE(polygons["polygon_sizes"].size(), 3u);
    EXPECT_EQ(triangles["polygon_sizes"], json({{"3", faces}}));
    EXPECT_EQ(triangles["points"], polygons["points"]);
    EXPECT_EQ(infoOf(demo + "/demo.ply")["faces"], polygons["faces"]);
    EXPECT_EQ(infoOf(demo + "/demo_triangles.ply")["faces"], faces);
    EXPECT_EQ(quads["faces"], 3 * faces);
    EXPECT_EQ(quads["genus"], polygons["genus"]);

    // A second run replaces its own files, and tells people where to look.
    const Outcome again = run({"demo", "--output", demo, "--resolution", "8"});
    EXPECT_EQ(again.exitCode, 0) << again.err;
    EXPECT_TRUE(contains(again.out, demo));
}

}  // namespace
