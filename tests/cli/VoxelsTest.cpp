#include "Program.h"

using namespace TestSupport;

namespace {

// A triangle in the plane x = 0.5, from one cell of size 1 into two others.
const char* const kTriangle = "v 0.5 0.5 0.5\nv 0.5 1.2 0.5\nv 0.5 0.5 -0.2\nf 1 2 3\n";

struct VoxelsVerb : AtTheHouse {
    const std::string mesh = folder.file("t.obj", kTriangle);
};

TEST_F(VoxelsVerb, WritesACubeForEveryCellThatAFaceTouches)
{
    const std::string cubes = folder / "cubes.ply";
    expectReport(reportOf({"voxels", mesh, "--cell", "1", "-o", cubes}),
                 R"({"cells": 3, "cell_size": 1})");
    expectReport(infoOf(cubes), R"({"polygon_sizes": {"4": 18}, "area": 18,
                                    "bounding_box": {"min": [0, 0, -1], "max": [1, 2, 1]}})");
}

TEST_F(VoxelsVerb, CellsAreThoseOfTheGridAtTheOriginForAnyThreadCount)
{
    std::string first;
    for (const char* threads : {"1", "2", "3"}) {
        const std::string out = folder / (std::string("cells") + threads + ".npz");
        reportOf({"voxels", house, "--cell", "0.01", "-o", out, "--threads", threads});
        const std::string text = contentOf(out);
        EXPECT_EQ(text.substr(0, 4), "PK\x03\x04");
        first = first.empty() ? text : first;
        EXPECT_TRUE(text == first) << threads << " threads";
    }
    reportOf({"voxels", house, "--cell", "10", "-o", folder / "cells.json"});
    expectReport(nlohmann::json::parse(contentOf(folder / "cells.json")), R"({"cell_size": 10,
        "cells": [[-1, -1, -1], [-1, -1, 0], [-1, 0, -1], [-1, 0, 0],
                  [0, -1, -1], [0, -1, 0], [0, 0, -1], [0, 0, 0]]})");
}

TEST_F(VoxelsVerb, RefusesCellsThatAreTooSmallOrNone)
{
    const std::string out = folder / "out.npz";
    for (const char* size : {"0", "-1", "nan", "1e-12", "1e-7"})
        expectRefusal(run({"voxels", mesh, std::string("--cell=") + size, "-o", out}), 2);
    EXPECT_EQ(run({"voxels", mesh, "-o", out}).exitCode, 2);
    EXPECT_EQ(folder.names(), (Names{"house.obj", "t.obj"}));
}

}  // namespace
