#include "Program.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using nlohmann::json;
using Names = std::vector<std::string>;

namespace {

TEST(TriangulateVerb, ReportsCountsPropertiesAndTimes)
{
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse), out = folder.path("out.obj");
    const Outcome outcome = run({"triangulate", house, "-o", out, "--json", "--threads", "1"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const json facts = outcome.json();
    EXPECT_EQ(facts["before"], json({{"points", 7}, {"corners", 12}, {"faces", 3}}));
    EXPECT_EQ(facts["after"], json({{"points", 7}, {"corners", 18}, {"faces", 6}}));
    EXPECT_EQ(facts["properties"], json({"texcoord", "group", "material"}));
    EXPECT_GE(facts["seconds"]["triangulate"], 0.0);

    const json written = run({"info", out, "--json"}).json();
    EXPECT_EQ(written["polygon_sizes"], json({{"3", 6}}));
    EXPECT_EQ(written["area"], 11.0);
    EXPECT_EQ(written["values"]["material_library"], "house.mtl");
}

TEST(TriangulateVerb, PropertiesAreChosenByName)
{
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse);
    const auto carried = [&](const std::string& selection) {
        return run({"triangulate", house, "-o", folder.path("out.obj"), "--force", "--json",
                    "--properties", selection})
            .json()["properties"];
    };
    EXPECT_EQ(carried("all").size(), 3u);
    EXPECT_EQ(carried("none"), json::array());
    EXPECT_EQ(carried("group,texcoord"), json({"texcoord", "group"}));
}

TEST(TriangulateVerb, WritesTheFormatOfTheEndingOrOfTheOption)
{
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse);
    const auto headOf = [&](const std::string& name, const Names& options) {
        Names arguments = {"triangulate", house, "-o", folder.path(name)};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return textOfFile(folder.path(name)).substr(0, 40);
    };
    EXPECT_NE(headOf("a.ply", {}).find("format binary_little_endian"), std::string::npos);
    EXPECT_NE(headOf("b.ply", {"--format", "ply-big"}).find("binary_big"), std::string::npos);
    EXPECT_NE(headOf("c.obj", {"--format", "ply-ascii"}).find("ascii"), std::string::npos);
    EXPECT_EQ(headOf("d.ply", {"--format", "obj"}).find("ply\n"), std::string::npos);
}

TEST(TriangulateVerb, ReplacesOnlyWhenForcedEvenItsOwnInput)
{
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse);
    const Outcome refused = run({"triangulate", house, "-o", house});
    EXPECT_EQ(refused.exitCode, 3);
    EXPECT_TRUE(refused.saidOneLine()) << refused.err;
    EXPECT_NE(refused.err.find("--force"), std::string::npos) << refused.err;
    EXPECT_EQ(textOfFile(house), kHouse);

    EXPECT_EQ(run({"triangulate", house, "-o", house, "--force"}).exitCode, 0);
    EXPECT_EQ(run({"info", house, "--json"}).json()["faces"], 6);
    EXPECT_EQ(folder.names(), Names{"house.obj"});
}

TEST(TriangulateVerb, FilesThatCannotBeReadOrWrittenExitWithThree)
{
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse);
    const Names failures[] = {
        {"triangulate", folder.path("absent.obj"), "-o", folder.path("a.obj")},
        {"triangulate", folder.path("."), "-o", folder.path("a.obj")},
        {"triangulate", folder.file("zero.obj", "v 0 0 0\nf 0 1 1\n"), "-o", folder.path("a.obj")},
        {"triangulate", house, "-o", folder.path("absent/a.obj")},
        {"triangulate", house, "-o", "/dev/full", "--format", "obj"},
        {"demo", "-o", house},
    };
    for (const Names& arguments : failures) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 3) << outcome.err;
        EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
    }
    EXPECT_EQ(folder.names(), (Names{"house.obj", "zero.obj"}));
}

TEST(TriangulateVerb, RealMeshesBecomeTriangles)
{
    const struct {
        const char* path;
        int points, triangles;
    } meshes[] = {{"/usr/share/glmark2/models/bunny.obj", 34835, 69666},
                  {"/usr/share/assimp/models/OBJ/spider.obj", 762, 1368},
                  {"/usr/share/assimp/models/OBJ/concave_polygon.obj", 64, 64},
                  {"/usr/share/assimp/models/OBJ/box.obj", 8, 12}};
    const Folder folder;
    for (const auto& mesh : meshes) {
        if (!std::filesystem::exists(mesh.path))
            GTEST_SKIP() << "needs the packages glmark2-data and assimp-testmodels";
        for (const char* ending : {"out.obj", "out.ply"}) {
            const Outcome outcome =
                run({"triangulate", mesh.path, "-o", folder.path(ending), "--force", "--quiet"});
            ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
            const json facts = run({"info", folder.path(ending), "--json"}).json();
            EXPECT_EQ(facts["points"], mesh.points) << mesh.path;
            EXPECT_EQ(facts["faces"], mesh.triangles) << mesh.path;
            EXPECT_EQ(facts["polygon_sizes"].size(), 1u) << mesh.path;
        }
    }
}

}  // namespace
