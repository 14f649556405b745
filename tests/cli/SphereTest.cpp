#include "Program.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using nlohmann::json;

namespace {

TEST(SphereVerb, TellsCenterAndRadiusToPeopleAndPrograms)
{
    const Folder folder;
    const std::string path =
        folder.file("line.obj", "v 1 2 3\nv 1 2 9\nv 1 2.5 6\nv 1 2 5\nf 1 2 3\n");
    const Outcome people = run({"sphere", path});
    EXPECT_EQ(people.exitCode, 0) << people.err;
    EXPECT_EQ(people.out, "center  1.0 2.0 6.0\nradius  3.0\n");
    EXPECT_EQ(people.err, "");

    const json facts = run({"sphere", "-", "--json"}, {path, "", {}}).json();
    EXPECT_EQ(facts["points"], 4);
    EXPECT_EQ(facts["center"], json({1, 2, 6}));
    EXPECT_EQ(facts["radius"], 3);
    EXPECT_EQ(facts["warnings"], json::array());

    const std::string huge = folder.file("huge.obj", "v 1e30 0 0\nv 0 0 0\nv 1 0 0\nf 1 2 3\n");
    EXPECT_NE(run({"sphere", huge}).err.find("scale the mesh down"), std::string::npos);
}

}  // namespace
