#include "Program.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cstdlib>
#include <map>

using namespace TestSupport;

namespace {

using StandardStreams = AtTheHouse;

TEST_F(StandardStreams, AMeshFlowsThroughStandardInputAndOutput)
{
    const Outcome outcome =
        run({"triangulate", "-", "-o", "-", "--format", "ply-ascii", "--quiet"}, {house, "", {}});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out.find("ply\nformat ascii 1.0\n"), 0u) << outcome.out;
    EXPECT_EQ(infoOf(folder.file("a", outcome.out))["faces"], 6);
}

TEST_F(StandardStreams, AFullOrClosedOutputExitsWithThreeAndALine)
{
    const Streams full = {"/dev/null", "/dev/full", {}}, closed = {"/dev/null", "", {1}};
    const Names info = {"info", house}, help = {"--help"},
                flow = {"triangulate", house, "-o", "-", "--format", "obj"};
    for (const Names& arguments : {info, help, flow})
        for (const Streams& streams : {full, closed})
            expectRefusal(run(arguments, streams), 3, "standard output: ");
}

TEST_F(StandardStreams, TooMuchInputIsRefusedWithTheOption)
{
    for (const Names& verb : {Names{"info", "-"}, Names{"validate", "-"},
                              Names{"view", "-", "-o", folder / "page.html"}}) {
        Names arguments = verb;
        arguments.insert(arguments.end(), {"--max-input", "100"});
        expectRefusal(run(arguments, {house, "", {}}), 3, "--max-input");
    }
    EXPECT_EQ(run({"info", "-", "--max-input", "1K"}, {house, "", {}}).exitCode, 0);
    expectRefusal(run({"validate", "/dev/zero"}), 3, "byte 0 is 0");
}

// However little memory there is: the new file and a report, or the old one and a line.
TEST_F(StandardStreams, TooLittleMemoryLeavesTheOldFileAndALine)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "takes memory without end";
#endif
    std::map<int, int> codes;
    for (int megabytes = 12; megabytes <= 60; megabytes += 2) {
        SCOPED_TRACE(megabytes);
        const Folder streams;
        const std::string out = folder.file("out.obj", "old");
        const std::string command = "ulimit -v " + std::to_string(megabytes << 10) + "; exec " +
                                    TESSARY_PROGRAM " triangulate " + house + " -o " + out +
                                    " -f --json --threads 1 > " + (streams / "out") + " 2> " +
                                    (streams / "err");
        const int code = WEXITSTATUS(std::system(command.c_str()));
        ++codes[code];
        const bool isDone = code == 0;
        EXPECT_TRUE(isDone || code == 3 || code == 127)
            << contentOf(streams / "err");  // 127: no room for the program
        EXPECT_EQ(contentOf(out) != "old", isDone);
        EXPECT_EQ(contentOf(streams / "out").find("\"faces\"") != std::string::npos, isDone);
        EXPECT_EQ(contentOf(streams / "err").empty(), isDone);
        EXPECT_EQ(folder.names(), (Names{"house.obj", "out.obj"}));
    }
    EXPECT_GT(codes[0], 0);
}

TEST_F(StandardStreams, ThreadsThatCannotBeMadeExitWithThree)
{
    const std::string as = ::geteuid() == 0 ? "setpriv --reuid=65534 --clear-groups " : "";
    const std::string command = "exec 2> " + (folder / "err") + "; " + as + "prlimit --nproc=1 " +
                                TESSARY_PROGRAM " sample - -d 1% --threads 8 -o - --format ply < " +
                                house + " > " + (folder / "out");
    const int code = WEXITSTATUS(std::system(command.c_str()));
    if (code == 0 || code > 125)
        GTEST_SKIP() << "the limit does not hold here, or the program cannot be run so";
    EXPECT_EQ(code, 3);
    EXPECT_TRUE(contains(contentOf(folder / "err"), "use fewer --threads"));
}

TEST_F(StandardStreams, AnEmptyMeshIsAWarningToEveryVerb)
{
    const std::string empty = folder.file("empty.obj", "# nothing\n"),
                      points = folder.file("points.obj", "v 0 0 0\nv 1 0 0\n");
    const auto expectWarning = [](const Names& arguments, const char* text) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << arguments[0];
        EXPECT_TRUE(contains(outcome.err, text)) << outcome.err;
    };
    for (const char* verb : {"info", "validate", "sphere"})
        expectWarning({verb, empty}, "there are no points, so there is no mesh");
    for (const Names& options : {Names{"triangulate"}, Names{"quads"}, Names{"adjacency"},
                                 Names{"voxels", "--cell", "1"}, Names{"sample", "-d", "1%"}}) {
        const std::string out =
            folder / (options[0] + (options[0] == "adjacency" ? ".npz" : ".ply"));
        const auto on = [&](const std::string& input) {
            Names arguments = options;
            arguments.insert(arguments.end(), {input, "-o", out, "-f"});
            return arguments;
        };
        expectWarning(on(empty), "there are no points, so there is no mesh");
        expectWarning(on(points), "there are no faces, so the output has none");
    }
}

TEST_F(StandardStreams, AFileBeyondTheUsersLimitLeavesALineAndNoHalfFile)
{
    const Folder streams;
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small = {4096, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    Started program({"sample", house, "-d", "0.02", "-o", folder / "out.ply"}, streams, {});
    setrlimit(RLIMIT_FSIZE, &before);
    expectRefusal(program.finish(), 3, "out.ply: cannot be written");
    EXPECT_EQ(folder.names(), Names{"house.obj"});
}

// A file opened by a program without standard streams takes their numbers.
TEST_F(StandardStreams, ClosedStreamsNeverLeadIntoTheMeshFile)
{
    const std::string out = folder / "out.obj", good = folder / "good.obj";
    ASSERT_EQ(run({"triangulate", house, "-o", good, "--quiet"}).exitCode, 0);
    const Outcome outcome =
        run({"triangulate", house, "-o", out, "--json"}, {"/dev/null", "", {0, 1, 2}});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(contentOf(out), contentOf(good));

    // The summary had nowhere to go.
    const Streams mute = {"/dev/null", "", {2}};
    EXPECT_EQ(run({"triangulate", house, "-o", out, "--force"}, mute).exitCode, 3);
    EXPECT_EQ(run({"triangulate", house, "-o", out, "--force", "--quiet"}, mute).exitCode, 0);
}

}  // namespace
