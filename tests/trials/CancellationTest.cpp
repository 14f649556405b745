// Every call is cancelled at fifty moments of its work: it ends by saying so, nothing half done is left, and it
// works again.

#include "trials/Calls.h"

#include <KOR/ExceptionMessage.h>
#include <Pelon/Job.h>
#include <TessaryMesh/Errors.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>

#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <thread>

namespace {

// Asked so often, the job of the calling thread is cancelled; kNever: never.
constexpr long kNever = -1;
thread_local long t_questionsLeft = kNever;
thread_local long t_questions = 0;

}  // namespace

// In the place of the host's own, which the libraries find here first: moments of time would be others in every
// run, questions are not.
bool Pelon::isJobCancelled() noexcept
{
    ++t_questions;
    if (t_questionsLeft > 0)
        --t_questionsLeft;
    return t_questionsLeft == 0;
}

namespace {

using namespace Trials;

constexpr long kMoments = 50;

// Whether the call was cancelled.
bool cancelAt(long question, const Call& call, std::uint64_t expected)
{
    t_questionsLeft = question;
    bool cancelled = true;
    try {
        EXPECT_EQ(call.run(), expected) << call.name;
        cancelled = false;
    } catch (const TessaryMesh::Cancelled&) {
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), KOR::exceptionMessage.c_str()) << call.name;
    }
    t_questionsLeft = kNever;
    return cancelled;
}

// The calls that were not cancelled at any moment.
std::vector<std::string> cancelAll(const std::vector<Call>& calls)
{
    std::vector<std::string> deaf;
    for (const Call& call : calls) {
        t_questions = 0;
        const std::uint64_t expected = call.run();
        const long questions = t_questions;
        long times = 0;
        for (long moment = 0; moment < std::min(questions, kMoments); ++moment)
            times += cancelAt(1 + moment * questions / kMoments, call, expected);
        EXPECT_EQ(call.run(), expected) << call.name << " after it was cancelled";
        if (times == 0)
            deaf.push_back(call.name);
    }
    return deaf;
}

// As their headers say; the area of a mesh is one short loop.
const std::vector<std::string> kThatNeverAsk = {"computeTriangulation",
                                                "computeTriEdges",
                                                "constructDualMesh",
                                                "addDual",
                                                "populateAdjacentTri",
                                                "addAdjacentTri",
                                                "computeQuadMesh, weights",
                                                "computeQuadMesh, flags",
                                                "quadFaceIndexedInterpolation",
                                                "computeBoundingSphere",
                                                "intersect_triangle_with_axis_aligned_box",
                                                "PointBins::sortDedup",
                                                "Multicollider",
                                                "half-edges",
                                                "Scratch"};

TEST(Cancellation, EndsCallsAtAnyMoment)
{
    const TestSupport::Folder folder;
    const auto calls = fileCalls(24, folder / "");
    for (const Call& call : calls)
        call.run();
    const auto names = folder.names();
    const tbb::global_control four(tbb::global_control::max_allowed_parallelism, 4);
    tbb::task_arena(4).execute([&] {
        EXPECT_EQ(cancelAll(kernelCalls(60)), kThatNeverAsk);
        EXPECT_EQ(cancelAll(operationCalls(60)), std::vector<std::string>{"areaOf"});
        EXPECT_EQ(cancelAll(calls), std::vector<std::string>());
    });
    EXPECT_EQ(folder.names(), names);
}

}  // namespace
