// Many hosts at a time: every call from eight threads, inside of parallel loops, in arenas of 1 to 16, and
// cancelled at any moment. The thread sanitizer looks on (./dev test tsan); the results are the usual ones.

#include "trials/Calls.h"

#include <KOR/ExceptionMessage.h>
#include <Pelon/Job.h>
#include <TessaryMesh/Errors.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>

#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

namespace {

using namespace Trials;

// Large enough that most loops are cut into pieces; all of them where TESSARY_TRIALS is set.
Tessary::uint resolution()
{
    return std::getenv("TESSARY_TRIALS") ? 64 : 24;
}

struct Expected {
    Call call;
    std::uint64_t hash;
};

std::vector<Expected> expectedCalls(const std::string& folder)
{
    std::vector<Expected> all;
    for (Call& call : allCalls(resolution(), folder))
        if (call.name.compare(0, 6, "write ") != 0) {
            const std::uint64_t hash = call.run();
            all.push_back({std::move(call), hash});
        }
    return all;
}

struct Race : testing::Test {
    const TestSupport::Folder folder;
    const tbb::global_control four{tbb::global_control::max_allowed_parallelism, 4};
    const std::vector<Expected> calls = expectedCalls(folder / "");
    std::atomic<int> wrong{0};

    // Each thread begins elsewhere, so that different calls meet.
    void runAll(std::size_t first)
    {
        for (std::size_t i = 0; i < calls.size(); ++i) {
            const Expected& each = calls[(first + i) % calls.size()];
            if (each.call.run() != each.hash)
                ++wrong;
        }
    }

    template <class Work>
    static void onThreads(std::size_t count, const Work& work)
    {
        std::vector<std::thread> threads;
        for (std::size_t t = 0; t < count; ++t)
            threads.emplace_back([&work, t] { work(t); });
        for (std::thread& thread : threads)
            thread.join();
    }
};

TEST_F(Race, EightHostThreads)
{
    onThreads(8, [&](std::size_t t) { runAll(5 * t); });
    EXPECT_EQ(wrong, 0);
}

TEST_F(Race, InsideOfParallelLoops)
{
    tbb::parallel_for(std::size_t{0}, std::size_t{8}, [&](std::size_t t) { runAll(7 * t); });
    EXPECT_EQ(wrong, 0);
}

TEST_F(Race, ArenasOfOneToSixteen)
{
    onThreads(2, [&](std::size_t t) {
        for (const int slots : {1, 2, 3, 5, 8, 16})
            tbb::task_arena(slots).execute(
                [&] { runAll(static_cast<std::size_t>(slots) + 11 * t); });
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(Race, JobsCancelledAtAnyMoment)
{
    std::atomic<int> cancelled{0};
    onThreads(4, [&](std::size_t t) {
        std::mt19937 random(static_cast<unsigned>(t));
        for (const Expected& each : calls) {
            Pelon::Job job;
            std::thread canceller([&job, pause = random() % 3000] {
                std::this_thread::sleep_for(std::chrono::microseconds(pause));
                job.cancel();
            });
            try {
                const Pelon::JobScope scope(job);
                if (each.call.run() != each.hash)
                    ++wrong;
            } catch (const TessaryMesh::Cancelled&) {
                ++cancelled;
            } catch (const std::runtime_error& error) {
                ++(error.what() == std::string(KOR::exceptionMessage.c_str()) ? cancelled : wrong);
            }
            canceller.join();
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(cancelled, 0);
}

}  // namespace
