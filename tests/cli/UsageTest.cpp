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
        std::string part;  // of the message
    } mistakes[] = {
        {{}, "a verb is missing; the verbs are info, validate, triangulate, "},
        {{"fold", house}, "there is no verb fold; the verbs are info, "},
        {{"--json", "-o", out, "-q"}, "a verb is missing"},
        {{"--quiet", "fold", house}, "there is no verb fold"},
        {{"--loud", "fold", house}, "there is no option --loud"},
        {{"quads", house, "-o", out, "--inner-weights", "1,2"},
         "--inner-weights takes a value, A,B,C"},
        {{"quads", house, "-o", out, "--inner-weights", "1,2,-x"}, "from 0 to 1e+30, found \"-x\""},
        {{"traingulate", house}, "there is no verb traingulate; did you mean triangulate?"},
        {{"help", "fold"}, "there is no verb fold"},
        {{"info", house, "--treads=3"}, "there is no option --treads; did you mean --threads?"},
        {{"info"}, "INPUT is required (see tessary info --help)"},
        {{"info", house, "--loud"}, "--loud"},
        {{"demo", "-o", out, house}, "there is nothing to do with " + house},
        {{"triangulate", house}, "--output is required"},
        {{"triangulate", house, "-o", out, "--threads", "0"},
         "expected a whole number from 1 to 1024, found \"0\""},
        {{"triangulate", house, "-o", out, "--threads", "99999999999"}, "from 1 to 1024"},
        {{"triangulate", house, "-o", out, "--threads", "two"}, "--threads"},
        {{"triangulate", house, "-o", out, "--format", "xyz"}, "obj"},
        {{"triangulate", house, "-o", folder / "out.xyz"}, "give --format"},
        {{"triangulate", house, "-o", "-"}, "give --format"},
        {{"triangulate", house, "-o", "-", "--format", "ply", "--json"}, "--json"},
        {{"triangulate", house, "-o", out, "--properties", "group,gruop"},
         "no property gruop; it has: texcoord, "},
        {{"demo", "--output", out, "--resolution", "7"}, "a whole number from 8 to 2048"},
    };
    for (const auto& mistake : mistakes) {
        Outcome outcome = run(mistake.arguments);
        outcome.out.clear();  // where --json is asked for, a document
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
    EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
    for (const char* verb :
         {"info", "validate", "triangulate", "sphere", "voxels", "sample", "view", "demo"}) {
        const Outcome help = run({verb, "--help"});
        EXPECT_EQ(run({"help", verb}).out, help.out);
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_EQ(help.err, "");
        EXPECT_TRUE(contains(help.out, "Example:\n  tessary " + std::string(verb)));
    }
    EXPECT_TRUE(contains(run({"help", "voxels"}).out,
                         "Usage: tessary voxels INPUT... -o FILE --cell H [OPTIONS]\n"));
    EXPECT_TRUE(contains(run({"help", "voxels"}).out, "--cell H                (required) "));
}

TEST_F(Usage, TheVerbMayStandAfterOptionsAndTheirValues)
{
    const std::string out = folder / "info";  // no verb
    for (const Names& arguments :
         {Names{"--json", "-o", out, "--inner-weights", "1", "1", "1", "--format", "ply", "quads",
                house},
          Names{"-fo", out, "--json", "--inner-weights", "1,1,1", "quads", "--format", "ply",
                house},
          Names{"--format=ply", "quads", house, "-o" + out, "--json", "--force"}})
        EXPECT_EQ(run(arguments).exitCode, 0);
}

TEST_F(Usage, TheTablesOfOptionsComeAsJson)
{
    const auto tables = reportOf({"help"});
    const auto& verbs = tables["verbs"];
    const auto found = std::find_if(verbs.begin(), verbs.end(),
                                    [](const auto& verb) { return verb["name"] == "sample"; });
    ASSERT_NE(found, verbs.end());
    for (const auto& option : (*found)["options"])
        if (option["names"][0] == "--format") {
            EXPECT_EQ(option["choices"][1], "ply");
            EXPECT_EQ(option["value"], "FORMAT");
            return;
        }
    FAIL() << "no --format in " << (*found)["options"];
}

}  // namespace
