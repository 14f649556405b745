#include "Program.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using nlohmann::json;

namespace {

// A triangle in the plane x = 0.5, from one cell of size 1 into two others.
const char* const kTriangle = "v 0.5 0.5 0.5\nv 0.5 1.2 0.5\nv 0.5 0.5 -0.2\nf 1 2 3\n";

TEST(VoxelsVerb, WritesACubeForEveryCellThatAFaceTouches)
{
    const Folder folder;
    const std::string mesh = folder.file("t.obj", kTriangle), cubes = folder.path("cubes.ply");
    const Outcome outcome = run({"voxels", mesh, "--cell", "1", "-o", cubes, "--json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    const json facts = outcome.json();
    EXPECT_EQ(facts["cells"], 3);
    EXPECT_EQ(facts["cell_size"], 1.0);

    const json written = run({"info", cubes, "--json"}).json();
    EXPECT_EQ(written["polygon_sizes"], json({{"4", 18}}));
    EXPECT_EQ(written["area"], 18.0);
    EXPECT_EQ(written["bounding_box"], json({{"min", {0, 0, -1}}, {"max", {1, 2, 1}}}));
}

TEST(VoxelsVerb, CellsAreThoseOfTheGridAtTheOriginForAnyThreadCount)
{
    const Folder folder;
    const std::string mesh = folder.file("house.obj", kHouse);
    std::string first;
    for (const char* threads : {"1", "2", "3"}) {
        const std::string out = folder.path(std::string("cells") + threads + ".npz");
        const Outcome outcome =
            run({"voxels", mesh, "--cell", "0.01", "-o", out, "--threads", threads});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
        const std::string text = textOfFile(out);
        EXPECT_EQ(text.substr(0, 4), "PK\x03\x04");
        first = first.empty() ? text : first;
        EXPECT_TRUE(text == first) << threads << " threads";
    }
}

TEST(VoxelsVerb, RefusesCellsThatAreTooSmallOrNone)
{
    const Folder folder;
    const std::string mesh = folder.file("t.obj", kTriangle), out = folder.path("out.npz");
    for (const char* size : {"0", "-1", "nan", "1e-12", "1e-7"}) {
        const Outcome outcome = run({"voxels", mesh, std::string("--cell=") + size, "-o", out});
        EXPECT_EQ(outcome.exitCode, 2) << size << outcome.err;
        EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
    }
    EXPECT_EQ(run({"voxels", mesh, "-o", out}).exitCode, 2);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"t.obj"});
}

}  // namespace
