#include "Program.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <chrono>
#include <csignal>
#include <thread>

using namespace TestSupport;

namespace {

void waitForEntry(const Folder& folder)
{
    for (int i = 0; i < 3000 && folder.names().empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_FALSE(folder.names().empty());
}

// Standard input is a pipe that stays open and silent, so the program surely waits.
TEST(Interrupt, EndsTheWaitForInputAndLeavesNothing)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        const Folder folder, streams;
        const std::string pipe = streams.path("pipe");
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        const int held = open(pipe.c_str(), O_RDWR);
        Started program({"triangulate", "-", "-o", folder.path("out.obj")}, streams,
                        {pipe, "", {}});
        waitForEntry(folder);
        program.signal(signal);
        const Outcome outcome = program.finish();
        close(held);
        EXPECT_EQ(outcome.exitCode, 130) << outcome.err;
        EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
        EXPECT_NE(outcome.err.find("standard input: interrupted"), std::string::npos);
        EXPECT_EQ(folder.names(), std::vector<std::string>());
    }
}

TEST(Interrupt, EndsLongWorkWithoutAHalfFile)
{
    const Folder folder, streams;
    Started program({"demo", "--output", folder.path("demo"), "--resolution", "512"}, streams, {});
    waitForEntry(folder);
    program.signal(SIGINT);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.exitCode, 130) << outcome.err;
    EXPECT_TRUE(outcome.saidOneLine()) << outcome.err;
    EXPECT_FALSE(std::filesystem::exists(folder.path("demo/demo_triangles.ply")));
    for (const auto& entry : std::filesystem::directory_iterator(folder.path("demo")))
        EXPECT_EQ(entry.path().string().find(".part"), std::string::npos) << entry.path();
}

}  // namespace
