#include "Program.h"

using namespace TestSupport;

namespace {

TEST(SphereVerb, TellsCenterAndRadiusToPeopleAndPrograms)
{
    const Folder folder;
    const std::string path =
        folder.file("line.obj", "v 1 2 3\nv 1 2 9\nv 1 2.5 6\nv 1 2 5\nf 1 2 3\n");
    const Outcome people = run({"sphere", path});
    EXPECT_EQ(people.exitCode, 0);
    EXPECT_EQ(people.out, "center  1.0 2.0 6.0\nradius  3.0\n");
    EXPECT_EQ(people.err, "");
    expectReport(run({"sphere", "-", "--json"}, {path, "", {}}).json(),
                 R"({"points": 4, "center": [1, 2, 6], "radius": 3, "warnings": []})");

    const std::string huge = folder.file("huge.obj", "v 1e30 0 0\nv 0 0 0\nv 1 0 0\nf 1 2 3\n");
    EXPECT_TRUE(contains(run({"sphere", huge}).err, "scale the mesh down"));
}

}  // namespace
