#include "Program.h"

using namespace TestSupport;

namespace {

using Info = AtTheHouse;

TEST_F(Info, TellsCountsMeasuresAndProperties)
{
    expectReport(infoOf(house), R"({
        "format": "obj", "points": 7, "corners": 12, "faces": 3,
        "polygon_sizes": {"3": 1, "4": 1, "5": 1},
        "bounding_box": {"min": [0, 0, 0], "max": [2, 3, 2]}, "area": 11,
        "edges": 9, "boundary_edges": 6, "same_direction_edges": {"count": 0, "places": []},
        "valence": {"least": 2, "most": 3},
        "euler_characteristic": 1, "components": 1, "genus": null,
        "properties": [
            {"name": "texcoord", "type": "float2", "component": "corners",
             "through": "texcoord_index", "elements": 12, "values": 5},
            {"name": "group", "type": "string", "component": "faces",
             "through": null, "elements": 3, "values": 3},
            {"name": "material", "type": "string", "component": "faces",
             "through": null, "elements": 3, "values": 3}],
        "values": {"material_library": "house.mtl"}, "warnings": []})");
}

TEST_F(Info, ReadsAStreamAndPrintsATableForPeople)
{
    const Outcome outcome = run({"info", "-"}, {house, "", {}});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_TRUE(contains(outcome.out, "1 of 3 corners, 1 of 4 corners, 1 of 5 corners"));
    EXPECT_TRUE(contains(outcome.out, "float2 on 12 corners, 5 values through texcoord_index"));
    const std::string turned = folder.file("turned.obj", std::string(kTurned) + "f 1 2 3\n");
    const std::string table = run({"info", turned}).out;
    EXPECT_TRUE(contains(table, ", 3 along which faces run in one direction (edge 0-1: "));
    EXPECT_TRUE(contains(table, " run the same way; ...)"));
}

TEST_F(Info, WhatTheReaderLeftOutIsAWarningUnlessQuiet)
{
    const std::string path = folder.file("lines.obj", std::string(kHouse) + "l 1 2\n");
    const Outcome loud = run({"info", path, "--json"});
    EXPECT_EQ(loud.exitCode, 0);
    EXPECT_TRUE(loud.saidOneLine()) << loud.err;
    EXPECT_EQ(loud.err.find("tessary info: " + path + ": warning: "), 0u) << loud.err;
    EXPECT_EQ(loud.json()["warnings"].size(), 1u);
    EXPECT_EQ(run({"info", path, "--quiet"}).err, "");
}

}  // namespace
