#include "Program.h"

#include <algorithm>

using namespace TestSupport;

namespace {

using Usage = AtTheHouse;

TEST_F(Usage, MistakesExitWithTwoAndOneLineThatPointsToTheHelp)
{
    const std::string out = folder / "out.obj";
    const struct {
        Names arguments;
        const char* part;  // of the message
    } mistakes[] = {
        {{}, "a verb is missing; the verbs are info, validate, triangulate, "},
        {{"fold", house}, "there is no verb fold"},
        {{"info"}, "INPUT is required (see tessary info --help)"},
        {{"info", house, "--loud"}, "--loud"},
        {{"info", house, house}, "not expected"},
        {{"triangulate", house}, "--output is required"},
        {{"triangulate", house, "-o", out, "--threads", "0"}, "not in range 1 to 1024"},
        {{"triangulate", house, "-o", out, "--threads", "99999999999"}, "not in range"},
        {{"triangulate", house, "-o", out, "--threads", "two"}, "--threads"},
        {{"triangulate", house, "-o", out, "--format", "stl"}, "obj"},
        {{"triangulate", house, "-o", folder / "out.stl"}, "give --format"},
        {{"triangulate", house, "-o", "-"}, "give --format"},
        {{"triangulate", house, "-o", "-", "--format", "ply", "--json"}, "--json"},
        {{"triangulate", house, "-o", out, "--properties", "group,gruop"},
         "no property \"gruop\"; it has: texcoord, "},
        {{"demo", "--output", out, "--resolution", "7"}, "not in range 8 to 2048"},
    };
    for (const auto& mistake : mistakes) {
        const Outcome outcome = run(mistake.arguments);
        expectRefusal(outcome, 2, mistake.part);
        EXPECT_TRUE(contains(outcome.err, "--help)"));
    }
    EXPECT_EQ(folder.names(), Names{"house.obj"});
}

TEST_F(Usage, HelpWithAnExampleAndTheVersionGoToStandardOutput)
{
    const std::string version = run({"--version"}).out;
    EXPECT_EQ(version.find("tessary 2.11.0\nKorvane version 2.11.0.0 ("), 0u) << version;
    EXPECT_EQ(std::count(version.begin(), version.end(), '\n'), 2);
    EXPECT_TRUE(contains(run({"--help"}).out, "130 interrupted"));
    for (const char* verb :
         {"info", "validate", "triangulate", "sphere", "voxels", "sample", "demo"}) {
        const Outcome help = run({verb, "--help"});
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_EQ(help.err, "");
        EXPECT_TRUE(contains(help.out, "Example:\n  tessary " + std::string(verb)));
    }
}

}  // namespace
