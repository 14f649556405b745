#include "Threads.h"

#include <tbb/global_control.h>
#include <tbb/task_arena.h>

namespace Cli {

struct ThreadLimit::Control {
    tbb::global_control limit;
};

ThreadLimit::ThreadLimit(unsigned threads)
{
    if (threads > 0)
        m_control.reset(new Control{
            tbb::global_control(tbb::global_control::max_allowed_parallelism, threads)});
}

ThreadLimit::~ThreadLimit() = default;

unsigned threadCount()
{
    return static_cast<unsigned>(tbb::this_task_arena::max_concurrency());
}

void withThreads(unsigned threads, const std::function<void()>& work)
{
    tbb::task_arena(static_cast<int>(threads)).execute(work);
}

}  // namespace Cli
