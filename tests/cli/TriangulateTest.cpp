#include "Program.h"

using namespace TestSupport;
using nlohmann::json;

namespace {

struct TriangulateVerb : AtTheHouse {
    const std::string out = folder / "out.obj";
};

TEST_F(TriangulateVerb, ReportsCountsPropertiesAndTimes)
{
    const Outcome outcome = run({"triangulate", house, "-o", out, "--json", "--threads", "1"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    expectReport(outcome.json(), R"({
        "before": {"points": 7, "corners": 12, "faces": 3},
        "after": {"points": 7, "corners": 18, "faces": 6},
        "properties": ["texcoord", "group", "material"]})");
    EXPECT_GE(outcome.json()["seconds"]["triangulate"], 0.0);
    expectReport(infoOf(out), R"({"polygon_sizes": {"3": 6}, "area": 11,
                                  "values": {"material_library": "house.mtl"}})");
}

TEST_F(TriangulateVerb, MaterialsLeadToTheSameFileFromAnotherFolder)
{
    const auto libraryOf = [&](const std::string& text, const std::string& path) {
        folder.file("in.obj", "mtllib " + text + "\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        reportOf({"triangulate", folder / "in.obj", "-o", folder / path, "--force"});
        return infoOf(folder / path)["values"]["material_library"];
    };
    std::filesystem::create_directories(folder / "a b/c");
    folder.file("my house.mtl", "");
    EXPECT_EQ(libraryOf("house.mtl", "out.obj"), "house.mtl");
    EXPECT_EQ(libraryOf("house.mtl", "a b/c/out.obj"), "../../house.mtl");
    EXPECT_EQ(libraryOf("my house.mtl", "a b/out.npz"), "../my house.mtl");
    EXPECT_EQ(libraryOf("a.mtl b.mtl /x/c.mtl", "a b/out.obj"), "../a.mtl ../b.mtl /x/c.mtl");
}

TEST_F(TriangulateVerb, PropertiesAreChosenByName)
{
    const auto carried = [&](const std::string& selection) {
        return reportOf(
            {"triangulate", house, "-o", out, "--force", "--properties", selection})["properties"];
    };
    EXPECT_EQ(carried("all").size(), 3u);
    EXPECT_EQ(carried("none"), json::array());
    EXPECT_EQ(carried("group,texcoord"), json({"texcoord", "group"}));
}

TEST_F(TriangulateVerb, WritesTheFormatOfTheEndingOrOfTheOption)
{
    const struct {
        const char* name;
        Names options;
        const char* head;
    } cases[] = {{"a.ply", {}, "ply\nformat binary_little_endian"},
                 {"b.ply", {"--format", "ply-big"}, "ply\nformat binary_big"},
                 {"c.obj", {"--format", "ply-ascii"}, "ply\nformat ascii"},
                 {"d.ply", {"--format", "obj"}, "# 7 points"}};
    for (const auto& one : cases) {
        reportOf({"triangulate", house, "-o", folder / one.name}, one.options);
        EXPECT_EQ(contentOf(folder / one.name).find(one.head), 0u) << one.name;
    }
}

TEST_F(TriangulateVerb, WritesWhereItsTrianglesComeFrom)
{
    const std::string maps = folder / "maps.json";
    EXPECT_EQ(reportOf({"triangulate", house, "-o", out, "--maps", maps})["maps"], maps);
    expectReport(json::parse(contentOf(maps)), R"({
        "face": [0, 0, 0, 1, 1, 2],
        "corner": [0, 1, 2, 0, 2, 3, 0, 3, 4, 5, 6, 7, 5, 7, 8, 9, 10, 11]})");

    const Names again = {"triangulate", house, "-o", folder / "b.obj", "--maps"};
    const auto with = [&again](const std::string& file) {
        Names arguments = again;
        arguments.push_back(file);
        return run(arguments);
    };
    expectRefusal(with(maps), 3, "--force");
    expectRefusal(with(folder / "maps.obj"), 2, "--maps writes arrays");
    expectRefusal(with(folder / "b.obj"), 2, "--maps");
    EXPECT_EQ(folder.names(), (Names{"house.obj", "maps.json", "out.obj"}));
}

TEST_F(TriangulateVerb, ReplacesOnlyWhenForcedEvenItsOwnInput)
{
    expectRefusal(run({"triangulate", house, "-o", house}), 3, "--force");
    EXPECT_EQ(contentOf(house), kHouse);
    reportOf({"triangulate", house, "-o", house, "--force"});
    EXPECT_EQ(infoOf(house)["faces"], 6);
    EXPECT_EQ(folder.names(), Names{"house.obj"});
}

TEST_F(TriangulateVerb, FilesThatCannotBeReadOrWrittenExitWithThree)
{
    const std::string zero = folder.file("zero.obj", "v 0 0 0\nf 0 1 1\n");
    const Names failures[] = {
        {"triangulate", folder / "absent.obj", "-o", out},
        {"triangulate", folder / ".", "-o", out},
        {"triangulate", zero, "-o", out},
        {"triangulate", house, "-o", folder / "absent/a.obj"},
        {"triangulate", house, "-o", "/dev/full", "--format", "obj"},
        {"demo", "-o", house},
    };
    for (const Names& arguments : failures)
        expectRefusal(run(arguments), 3);
    EXPECT_EQ(folder.names(), (Names{"house.obj", "zero.obj"}));
}

}  // namespace
