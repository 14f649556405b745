#include "base/ParallelReduce.h"

#include "support/Cancellation.h"
#include "support/Threads.h"

#include <gtest/gtest.h>
#include <tbb/task_group.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace Tessary;

TEST(ParallelLoop, CoversTheRangeOnceAtAnyThreadCount)
{
    TestSupport::atSeveralThreadCounts([](int) {
        for (const uint end : {0u, 1u, 2u, 7u, 1000u, 100000u}) {
            const uint begin = end / 3;
            std::vector<std::atomic<int>> visits(end);
            parallelLoop(begin, end, 4, LoopContext::Isolated, [&](uint b, uint e) {
                for (uint i = b; i < e; ++i)
                    ++visits[i];
            });
            for (uint i = 0; i < end; ++i)
                ASSERT_EQ(visits[i], i >= begin ? 1 : 0) << i << " of " << end;
        }
    });
}

TEST(ParallelLoop, ARangeWithinItsGrainRunsInOnePieceOnTheCallerAndIsNeverPolled)
{
    std::vector<std::pair<uint, uint>> pieces;
    std::thread::id thread;
    const auto note = [&](uint begin, uint end) {
        pieces.emplace_back(begin, end);
        thread = std::this_thread::get_id();
    };
    EXPECT_FALSE(TestSupport::endsWhenCancelled(
        [&] { parallelLoop(5, 105, 100, LoopContext::Bound, note); }));
    EXPECT_EQ(pieces, (std::vector<std::pair<uint, uint>>{{5, 105}}));
    EXPECT_EQ(thread, std::this_thread::get_id());

    parallelLoop(5, 5, 1, LoopContext::Bound, note);
    EXPECT_EQ(pieces.size(), 1u) << "an empty range has no piece";
}

TEST(ParallelLoop, OnlyABoundLoopEndsEarlyAndSaysSo)
{
    std::atomic<uint> count{0};
    const auto countUp = [&count](uint begin, uint end) { count += end - begin; };
    const auto loop = [&](LoopContext context) { parallelLoop(0, 1000, 1, context, countUp); };
    EXPECT_NO_THROW(loop(LoopContext::Bound));
    EXPECT_FALSE(TestSupport::endsWhenCancelled([&] { loop(LoopContext::Isolated); }));
    EXPECT_EQ(count, 2000u);
    EXPECT_TRUE(TestSupport::endsWhenCancelled([&] { loop(LoopContext::Bound); }));
    EXPECT_LT(count, 3000u);
}

// The scheduler forgets what a task of a cancelled group throws, so it is caught inside.
TEST(ParallelLoop, ABoundLoopInACancelledContextDoesNotPassForDone)
{
    for (const uint size : {100u, 100000u})
        for (const LoopContext context : {LoopContext::Bound, LoopContext::Isolated}) {
            std::atomic<uint> count{0};
            bool threw = false;
            tbb::task_group tasks;
            tasks.run_and_wait([&] {
                tasks.cancel();
                try {
                    parallelForEach(size, context, [&](uint) { ++count; });
                } catch (const std::runtime_error& error) {
                    EXPECT_STREQ(error.what(), KOR::exceptionMessage.c_str());
                    threw = true;
                }
            });
            EXPECT_EQ(threw, context == LoopContext::Bound) << size;
            EXPECT_TRUE(threw || count == size) << size;
        }
}

TEST(ParallelLoop, AnExceptionOfTheBodyReachesTheCaller)
{
    const auto body = [](uint begin, uint) {
        if (begin == 0)
            throw std::length_error("body");
    };
    EXPECT_THROW(parallelLoop(0, 100, 1, LoopContext::Isolated, body), std::length_error);
}

TEST(ParallelReduce, SeesEveryIndexOnceAtAnyThreadCount)
{
    TestSupport::atSeveralThreadCounts([](int) {
        for (const uint size : {0u, 1u, 2u, 1000u, 100000u}) {
            SCOPED_TRACE(size);
            const auto isLast = [size](std::size_t i) { return i + 1 == size; };
            EXPECT_EQ(parallelAny(size, isLast), size > 0);
            EXPECT_FALSE(parallelAny(size, [size](std::size_t i) { return i >= size; }));
            EXPECT_EQ(parallelCount(size, [](std::size_t i) { return i % 3 == 0; }),
                      (size + 2) / 3);
            EXPECT_EQ(parallelMax(size, [](std::size_t i) { return uint(i ^ 1); }),
                      size < 2 ? size : size - 1);
        }
    });
}
