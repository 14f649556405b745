#pragma once

#include <tbb/task_arena.h>

namespace TestSupport {

/// Runs `work` with room for 1, 2, 3 and 8 threads, however many cores there are: loops are cut for
/// that many.
template <class Work>
void atSeveralThreadCounts(const Work& work)
{
    for (const int threads : {1, 2, 3, 8}) {
        tbb::task_arena arena(threads);
        arena.execute([&] { work(threads); });
    }
}

}  // namespace TestSupport
