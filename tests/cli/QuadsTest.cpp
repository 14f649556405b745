#include "Program.h"

using namespace TestSupport;
using nlohmann::json;

namespace {

// A floor and a wall, both quads, that meet at a right angle along the edge 1-2.
constexpr const char* kCorner =
    "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 2 0\nv 0 0 2\nv 2 0 2\nf 1 2 3 4\nf 1 5 6 2\n";

struct QuadsVerb : AtTheHouse {
    const std::string corner = folder.file("corner.obj", kCorner), out = folder / "out.ply";

    json quadsOf(const std::string& file, const Names& options = {}) const
    {
        const json report = reportOf({"quads", file, "-o", out, "--force"}, options);
        EXPECT_EQ(run({"validate", out}).exitCode, 0);
        return report;
    }
};

TEST_F(QuadsVerb, EveryTriangleOfEveryFaceBecomesThreeQuads)
{
    expectReport(quadsOf(corner), R"({
        "before": {"points": 6, "corners": 8, "faces": 2},
        "after": {"points": 19, "corners": 48, "faces": 12}, "edges": 9, "creased_edges": 0})");
    expectReport(infoOf(out), R"({"polygon_sizes": {"4": 12}, "area": 8})");
}

TEST_F(QuadsVerb, CreasesByAngleStandApartByTheGap)
{
    EXPECT_EQ(quadsOf(corner, {"--crease-angle", "90"})["creased_edges"], 0) << "not more";
    const json creased = quadsOf(corner, {"--crease-angle", "89.9"});
    EXPECT_EQ(creased["creased_edges"], 1) << "no diagonals, no boundary";
    EXPECT_EQ(creased["after"]["points"], 6 + 10 + 4);
    EXPECT_EQ(infoOf(out)["area"], 8.0);

    quadsOf(corner, {"--crease-angle", "45", "--gap", "0.5"});
    EXPECT_NEAR(infoOf(out)["area"], 8.0 - 2 * (0.5 * 1 * 2.0 / 3), 1e-6)
        << "a triangle on either side";
}

TEST_F(QuadsVerb, EdgesWithoutATableAreNamedAndSplitOnRequest)
{
    const std::string turned = folder.file("turned.obj", kTurned);
    expectRefusal(run({"quads", turned, "-o", out}), 4,
                  "(once), first at points 0 to 1 of faces 0 and 1;");
    EXPECT_EQ(folder.names(), (Names{"corner.obj", "house.obj", "turned.obj"}));
    const json report = quadsOf(turned, {"--split-edges"});
    expectReport(report, R"({"split_edges": 1, "edges": 6})");
    EXPECT_EQ(report["after"]["points"], 4 + 6 + 2);
}

TEST_F(QuadsVerb, CreasesThatCannotBeExitWithTwoAndSayWhatWasExpected)
{
    const struct {
        Names options;
        const char* part;
    } mistakes[] = {
        {{"--crease-angle", "181"}, "a number from 0 to 180"},
        {{"--crease-angle", "nan"}, "a number from 0 to 180"},
        {{"--crease-angle", "steep"}, "from 0 to 180, found \"steep\""},
        {{"--crease-angle", ""}, "--crease-angle"},
        {{"--edge-weight", ""}, "--edge-weight"},
        {{"--gap", ""}, "--gap"},
        {{"--gap", "0.5"}, "--gap opens creased edges, and nothing creases any"},
        {{"--gap", "2"}, "a number from 0 to 1"},
        {{"--edge-weight", "-0.1"}, "a number from 0 to 1"},
        {{"--inner-weights", "1,1"}, "--inner-weights"},
        {{"--inner-weights", "1,-1,1"}, "from 0 to 1e+30, found"},
        {{"--inner-weights", "0,0,0"}, "not all 0"},
        {{"--crease-property", "sharp"}, "\"sharp\" is missing; expected a bool, uchar or float"},
        {{"--crease-property", "group"}, "is string on faces; expected"},
        {{"--crease-property", "texcoord"}, "is float2 behind the indices \"texcoord_index\""},
        {{"--crease-property", "x", "--crease-angle", "3"}, "excludes"},
    };
    for (const auto& mistake : mistakes) {
        Names arguments = {"quads", house, "-o", out};
        arguments.insert(arguments.end(), mistake.options.begin(), mistake.options.end());
        expectRefusal(run(arguments), 2, mistake.part);
    }
    EXPECT_EQ(folder.names(), (Names{"corner.obj", "house.obj"}));
}

TEST_F(QuadsVerb, TheAdviceForAPlainFaceListMakesItACrease)
{
    const auto plyWith = [](const std::string& line) {
        return "ply\nformat ascii 1.0\n" + line +
               "element vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
               "element face 1\nproperty list uchar int vertex_indices\n"
               "property list uchar float sharp\nend_header\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2 3 0 0 "
               "0\n";
    };
    const std::string line = "comment property corner float sharp sharp";
    const std::string plain = folder.file("plain.ply", plyWith(""));
    expectRefusal(run({"quads", plain, "-o", out, "--crease-property", "sharp"}), 2, line);
    const std::string declared = folder.file("declared.ply", plyWith(line + "\n"));
    EXPECT_EQ(quadsOf(declared, {"--crease-property", "sharp"})["creased_edges"], 3);
}

TEST_F(QuadsVerb, PropertiesFollowAndPositionsMoveWithTheWeights)
{
    EXPECT_EQ(quadsOf(house, {"--format", "obj"})["properties"],
              json({"texcoord", "group", "material"}));
    expectReport(infoOf(out), R"({"values": {"material_library": "house.mtl"}, "area": 11})");
    EXPECT_EQ(quadsOf(house, {"--properties", "group"})["properties"], json({"group"}));

    const std::string triangle = folder.file("triangle.obj",
                                             "v 0 0 0\nv 4 0 0\nv 0 4 0\nvt 0 0\nvt 1 0\nvt 0 1\n"
                                             "f 1/1 2/2 3/3\n");
    const Outcome outcome = run({"quads", triangle, "-o", "-", "--format", "obj", "--edge-weight",
                                 "0.75", "--inner-weights", "2,1,1", "--quiet"});
    for (const char* line : {"v 1 0 0\n", "v 0 1 0\n", "v 3 1 0\n", "v 1 1 0\n",  //
                             "vt 0.25 0\n", "vt 0 0.25\n", "vt 0.75 0.25\n", "vt 0.25 0.25\n"})
        EXPECT_TRUE(contains(outcome.out, line));
}

}  // namespace
