// Every allocation of every call fails once, alone and with all that follow it: the call says so, leaves nothing
// behind, and works again.

#include "trials/Allocations.h"
#include "trials/Calls.h"

#include <TessaryMesh/Errors.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>

#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <cstdlib>
#include <new>

using namespace Trials;
using TestSupport::Folder;

namespace {

// So many allocations of a call are made to fail, evenly spread; all of them where TESSARY_TRIALS is set.
long mostFailures()
{
    return std::getenv("TESSARY_TRIALS") ? 1000000 : 30;
}

enum class End { Done, OutOfMemory, Other };

End endOf(const Call& call, std::uint64_t expected)
{
    try {
        EXPECT_EQ(call.run(), expected) << call.name;
        return End::Done;
    } catch (const std::bad_alloc&) {
        return End::OutOfMemory;
    } catch (const TessaryMesh::OutOfMemory&) {
        return End::OutOfMemory;
    } catch (const std::exception& error) {
        ADD_FAILURE() << call.name << ": " << error.what();
        return End::Other;
    }
}

long allocationsOf(const Call& call, Failing failing)
{
    long most = 1;
    for (bool failed = true; failed; most *= 2) {
        const Starvation starvation(most, failing);
        try {
            call.run();
        } catch (const std::exception&) {
        }
        failed = starvation.hasFailed();
    }
    return most;
}

// Fails allocations of a call until one is left unasked for; `check` runs after every failure.
template <class Check>
void starve(const Call& call, Failing failing, std::uint64_t expected, const Check& check)
{
    const long step = 1 + allocationsOf(call, failing) / (2 * mostFailures());
    check(End::Done);
    for (long n = 0;; n += step) {
        End end = End::Other;
        bool failed = false;
        {
            const Starvation starvation(n, failing);
            end = endOf(call, expected);
            failed = starvation.hasFailed();
        }
        check(end);
        ASSERT_NE(end, End::Other) << call.name << ", allocation " << n;
        if (!failed)
            return;
    }
}

// The JSON library behind glTF and NPZ allocates in destructors and leaves halves of values, so that a failure
// of one of its own small allocations ends the program.
bool needsJson(const Call& call)
{
    return call.name.find(" gl") != std::string::npos || call.name.find("npz") != std::string::npos;
}

template <class Check>
void starve(const Call& call, const Check& check)
{
    const std::uint64_t expected = call.run();
    const auto failures = needsJson(call) ? std::vector<Failing>{Failing::Large}
                                          : std::vector<Failing>{Failing::Once, Failing::OnAndOn};
    for (const Failing failing : failures)
        starve(call, failing, expected, check);
    EXPECT_EQ(call.run(), expected) << call.name << " after it was starved";
}

// A second round shows leaks; the first one fills what the scheduler and the C library keep for good.
void starveAndLookForLeaks(const Call& call)
{
    const auto nothing = [](End) {};
    starve(call, nothing);
    const long before = blocksInUse();
    starve(call, nothing);
    EXPECT_EQ(blocksInUse(), before) << call.name << " leaks";
}

void onOneThread(const std::vector<Call>& calls)
{
    const tbb::global_control one(tbb::global_control::max_allowed_parallelism, 1);
    for (const Call& call : calls)
        starveAndLookForLeaks(call);
}

void onFourThreads(const std::vector<Call>& calls)
{
    const tbb::global_control four(tbb::global_control::max_allowed_parallelism, 4);
    tbb::task_arena(4).execute([&] {
        for (const Call& call : calls)
            starve(call, [](End) {});
    });
}

TEST(Starvation, KernelsOnOneThread)
{
    onOneThread(kernelCalls(8));
}

TEST(Starvation, KernelsOnFourThreads)
{
    onFourThreads(kernelCalls(60));
}

TEST(Starvation, OperationsOnOneThread)
{
    onOneThread(operationCalls(8));
}

TEST(Starvation, OperationsOnFourThreads)
{
    onFourThreads(operationCalls(60));
}

// `name` is what a call writes; no other file comes or goes.
void starveFile(const Call& call, const std::string& name, const Folder& folder)
{
    call.run();
    folder.file(name, "old");
    const auto names = folder.names();
    starve(call, [&](End end) {
        EXPECT_EQ(folder.names(), names) << call.name;
        if (end == End::OutOfMemory) {
            EXPECT_TRUE(TestSupport::contentOf(folder / name) == "old") << call.name;
        }
        folder.file(name, "old");
    });
}

TEST(Starvation, FilesAreTheOldOrTheNewOnes)
{
    const Folder folder;
    const auto small = fileCalls(8, folder / ""), large = fileCalls(48, folder / "");
    for (std::size_t i = 0; i < small.size(); ++i) {
        const Call& call = needsJson(small[i]) ? large[i] : small[i];
        const bool writes = call.name.compare(0, 6, "write ") == 0;
        starveFile(call, writes ? call.name.substr(6) : "unused", folder);
    }
}

}  // namespace
