#include "Program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <chrono>
#include <csignal>
#include <thread>

using namespace TestSupport;

namespace {

void waitForEntry(const Folder& folder)
{
    for (int i = 0; i < 60000 && folder.names().empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_FALSE(folder.names().empty());
}

// Whoever took what there was waits for more.
void waitUntilRead(int pipe)
{
    int left = 1;
    for (int i = 0; i < 6000 && left > 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ASSERT_EQ(ioctl(pipe, FIONREAD, &left), 0);
    }
    ASSERT_EQ(left, 0);
}

// Standard input is a pipe that stays open and silent, so the program surely waits.
TEST(Interrupt, EndsTheWaitForInputAndLeavesNothing)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        const Folder folder, streams;
        const std::string pipe = streams / "pipe";
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        const int held = open(pipe.c_str(), O_RDWR);
        Started program({"triangulate", "-", "-o", folder / "out.obj"}, streams, {pipe, "", {}});
        ASSERT_EQ(write(held, "#", 1), 1);
        waitUntilRead(held);
        program.signal(signal);
        expectRefusal(program.finish(), 130, "standard input: interrupted");
        close(held);
        EXPECT_EQ(folder.names(), Names());
    }
}

TEST(Interrupt, EndsLongWorkWithoutAHalfFile)
{
    const Folder folder, streams;
    Started program({"demo", "--output", folder / "demo", "--resolution", "512"}, streams, {});
    waitForEntry(folder);
    program.signal(SIGINT);
    expectRefusal(program.finish(), 130);
    EXPECT_FALSE(std::filesystem::exists(folder / "demo/demo_triangles.ply"));
    for (const auto& entry : std::filesystem::directory_iterator(folder / "demo"))
        EXPECT_EQ(entry.path().string().find(".part"), std::string::npos) << entry.path();
}

// A full pipe takes nothing, and whoever writes to it looks at nothing else.
TEST(Interrupt, EndsTheWaitForAReaderOfTheOutput)
{
    const Folder folder, streams;
    const std::string pipe = streams / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int held = open(pipe.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_EQ(run({"demo", "--output", folder / "demo", "--resolution", "64"}).exitCode, 0);
    Started program({"triangulate", folder / "demo/demo.ply", "-o", "-", "--format", "ply"},
                    streams, {"/dev/null", pipe, {}});
    pollfd full = {held, POLLOUT, 0};
    for (int i = 0; i < 6000 && poll(&full, 1, 10) > 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    program.signal(SIGINT);
    const Outcome outcome = program.finish();
    close(held);
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_TRUE(contains(outcome.err, "interrupted")) << outcome.err;
}

}  // namespace
