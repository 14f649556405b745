#include "Program.h"

#include <sys/resource.h>

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
