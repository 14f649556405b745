#include "Program.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using nlohmann::json;
using Names = std::vector<std::string>;

namespace {

// A floor and a wall, both quads, that meet at a right angle along the edge 1-2.
constexpr const char* kCorner =
    "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 2 0\nv 0 0 2\nv 2 0 2\nf 1 2 3 4\nf 1 5 6 2\n";

// The second face runs along 1-2 as the first does.
constexpr const char* kTurned = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 -1 0\nf 1 2 3\nf 1 2 4\n";

json quadsOf(const Folder& folder, const std::string& file, const Names& options)
{
    Names arguments = {"quads", file, "-o", folder.path("out.ply"), "--force", "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(run({"validate", folder.path("out.ply")}).exitCode, 0);
    return outcome.json();
}

TEST(QuadsVerb, EveryTriangleOfEveryFaceBecomesThreeQuads)
{
    const Folder folder;
    const json facts = quadsOf(folder, folder.file("corner.obj", kCorner), {});
    EXPECT_EQ(facts["before"], json({{"points", 6}, {"corners", 8}, {"faces", 2}}));
    EXPECT_EQ(facts["after"], json({{"points", 6 + 9 + 4}, {"corners", 48}, {"faces", 12}}));
    EXPECT_EQ(facts["edges"], 9);
    EXPECT_EQ(facts["creased_edges"], 0);

    const json written = run({"info", folder.path("out.ply"), "--json"}).json();
    EXPECT_EQ(written["polygon_sizes"], json({{"4", 12}}));
    EXPECT_EQ(written["area"], 8.0);
}

TEST(QuadsVerb, CreasesByAngleStandApartByTheGap)
{
    const Folder folder;
    const std::string corner = folder.file("corner.obj", kCorner);
    EXPECT_EQ(quadsOf(folder, corner, {"--crease-angle", "90"})["creased_edges"], 0) << "not more";
    const json creased = quadsOf(folder, corner, {"--crease-angle", "89.9"});
    EXPECT_EQ(creased["creased_edges"], 1) << "no diagonals, no boundary";
    EXPECT_EQ(creased["after"]["points"], 6 + 10 + 4);
    EXPECT_EQ(run({"info", folder.path("out.ply"), "--json"}).json()["area"], 8.0);

    quadsOf(folder, corner, {"--crease-angle", "45", "--gap", "0.5"});
    const double area = run({"info", folder.path("out.ply"), "--json"}).json()["area"];
    EXPECT_NEAR(area, 8.0 - 2 * (0.5 * 1 * 2.0 / 3), 1e-6) << "a triangle on either side";
}

TEST(QuadsVerb, WhatTheEdgeTableCannotHoldExitsWithFourAndNamesThePlaces)
{
    const Folder folder;
    const std::string turned = folder.file("turned.obj", kTurned);
    const Outcome outcome = run({"quads", turned, "-o", folder.path("out.obj")});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
    EXPECT_NE(outcome.err.find("(once), first at points 0 to 1 of faces 0 and 1;"),
              std::string::npos)
        << outcome.err;
    EXPECT_EQ(folder.names(), Names{"turned.obj"});
}

TEST(QuadsVerb, CreasesThatCannotBeExitWithTwoAndSayWhatWasExpected)
{
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse);
    const struct {
        Names options;
        const char* part;
    } mistakes[] = {
        {{"--crease-angle", "181"}, "outside 0 to 180"},
        {{"--crease-angle", "nan"}, "outside 0 to 180"},
        {{"--crease-angle", "steep"}, "--crease-angle"},
        {{"--gap", "2"}, "outside 0 to 1"},
        {{"--edge-weight", "-0.1"}, "outside 0 to 1"},
        {{"--inner-weights", "1,1"}, "--inner-weights"},
        {{"--inner-weights", "1,-1,1"}, "not negative"},
        {{"--inner-weights", "0,0,0"}, "not all 0"},
        {{"--crease-property", "sharp"}, "\"sharp\" is missing; expected a bool, uchar or float"},
        {{"--crease-property", "group"}, "is string on faces; expected"},
        {{"--crease-property", "texcoord"}, "is float2 behind the indices \"texcoord_index\""},
        {{"--crease-property", "x", "--crease-angle", "3"}, "excludes"},
    };
    for (const auto& mistake : mistakes) {
        Names arguments = {"quads", house, "-o", folder.path("out.obj")};
        arguments.insert(arguments.end(), mistake.options.begin(), mistake.options.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << outcome.err;
        EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
        EXPECT_NE(outcome.err.find(mistake.part), std::string::npos) << outcome.err;
    }
    EXPECT_EQ(folder.names(), Names{"house.obj"});
}

TEST(QuadsVerb, PropertiesFollowAndPositionsMoveWithTheWeights)
{
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse);
    const json facts = quadsOf(folder, house, {"--format", "obj"});
    EXPECT_EQ(facts["properties"], json({"texcoord", "group", "material"}));
    const json written = run({"info", folder.path("out.ply"), "--json"}).json();
    EXPECT_EQ(written["values"]["material_library"], "house.mtl");
    EXPECT_EQ(written["area"], 11.0);
    EXPECT_EQ(quadsOf(folder, house, {"--properties", "group"})["properties"], json({"group"}));

    const std::string triangle = folder.file("triangle.obj",
                                             "v 0 0 0\nv 4 0 0\nv 0 4 0\nvt 0 0\nvt 1 0\nvt 0 1\n"
                                             "f 1/1 2/2 3/3\n");
    const Outcome outcome = run({"quads", triangle, "-o", "-", "--format", "obj", "--edge-weight",
                                 "0.75", "--inner-weights", "2,1,1", "--quiet"});
    for (const char* line : {"v 1 0 0\n", "v 0 1 0\n", "v 3 1 0\n", "v 1 1 0\n",  //
                             "vt 0.25 0\n", "vt 0 0.25\n", "vt 0.75 0.25\n", "vt 0.25 0.25\n"})
        EXPECT_NE(outcome.out.find(line), std::string::npos) << line << outcome.out;
}

TEST(QuadsVerb, EdgesWithoutATableAreSplitOnRequest)
{
    const Folder folder;
    const std::string turned = folder.file("turned.obj", kTurned);
    const json facts = quadsOf(folder, turned, {"--split-edges"});
    EXPECT_EQ(facts["split_edges"], 1);
    EXPECT_EQ(facts["edges"], 6);
    EXPECT_EQ(facts["after"]["points"], 4 + 6 + 2);
}

TEST(QuadsVerb, RealMeshesBecomeQuadsOrAreToldWhere)
{
    const Folder folder;
    const std::string bunny = "/usr/share/glmark2/models/bunny.obj";
    const std::string spider = "/usr/share/assimp/models/OBJ/spider.obj";
    if (!std::filesystem::exists(bunny) || !std::filesystem::exists(spider))
        GTEST_SKIP() << "needs the packages glmark2-data and assimp-testmodels";
    const json facts = quadsOf(folder, bunny, {"--crease-angle", "30"});
    EXPECT_EQ(facts["after"]["faces"], 3 * 69666);
    EXPECT_GT(facts["creased_edges"], 0);

    const Outcome outcome = run({"quads", spider, "-o", folder.path("spider.ply")});
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
    EXPECT_NE(outcome.err.find("(10 times)"), std::string::npos) << outcome.err;
    const json split = quadsOf(folder, spider, {"--split-edges"});
    EXPECT_EQ(split["split_edges"], 10);
    EXPECT_EQ(split["properties"].size(), 5u);
}

}  // namespace
