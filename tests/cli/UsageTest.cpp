#include "Program.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace TestSupport;

namespace {

struct WrongUsage {
    std::vector<std::string> arguments;
    const char* part;  // of the message
};

TEST(Usage, MistakesExitWithTwoAndOneLineThatPointsToTheHelp)
{
    const Folder folder;
    const std::string house = folder.file("house.obj", kHouse);
    const std::string out = folder.path("out.obj");
    const WrongUsage mistakes[] = {
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
        {{"triangulate", house, "-o", folder.path("out.stl")}, "give --format"},
        {{"triangulate", house, "-o", "-"}, "give --format"},
        {{"triangulate", house, "-o", "-", "--format", "ply", "--json"}, "--json"},
        {{"triangulate", house, "-o", out, "--properties", "group,gruop"},
         "no property \"gruop\"; it has: texcoord, "},
        {{"demo", "--output", out, "--resolution", "7"}, "not in range 8 to 2048"},
    };
    for (const WrongUsage& mistake : mistakes) {
        const Outcome outcome = run(mistake.arguments);
        EXPECT_EQ(outcome.exitCode, 2) << outcome.err;
        EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
        EXPECT_NE(outcome.err.find(mistake.part), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find("--help)"), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(folder.names(), std::vector<std::string>{"house.obj"});
}

TEST(Usage, HelpWithAnExampleAndTheVersionGoToStandardOutput)
{
    const std::string version = run({"--version"}).out;
    EXPECT_EQ(version.find("tessary 2.11.0\nKorvane version 2.11.0.0 ("), 0u) << version;
    EXPECT_EQ(std::count(version.begin(), version.end(), '\n'), 2);
    EXPECT_NE(run({"--help"}).out.find("130 interrupted"), std::string::npos);
    for (const char* verb :
         {"info", "validate", "triangulate", "sphere", "voxels", "sample", "demo"}) {
        const Outcome help = run({verb, "--help"});
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_EQ(help.err, "");
        EXPECT_NE(help.out.find("Example:\n  tessary " + std::string(verb)), std::string::npos)
            << help.out;
    }
}

}  // namespace
