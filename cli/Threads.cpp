#include "Threads.h"

#include <tbb/global_control.h>
#include <tbb/task_arena.h>

namespace Cli {

void limitThreads(unsigned threads)
{
    using tbb::global_control;
    static const global_control* const limit =
        threads > 0 ? new global_control(global_control::max_allowed_parallelism, threads)
                    : nullptr;
    static_cast<void>(limit);
}

unsigned threadCount()
{
    return static_cast<unsigned>(tbb::this_task_arena::max_concurrency());
}

void withThreads(unsigned threads, const std::function<void()>& work)
{
    tbb::task_arena(static_cast<int>(threads)).execute(work);
}

}  // namespace Cli
