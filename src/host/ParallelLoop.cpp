#include "host/ParallelLoop.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <stdexcept>

namespace Tessary {

void parallelLoop(uint begin, uint end, uint grain, LoopContext context, LoopBody body)
{
    if (begin >= end)
        return;
    if (end - begin <= grain) {
        body(begin, end);
        return;
    }
    tbb::task_group_context group(context == LoopContext::Isolated
                                      ? tbb::task_group_context::isolated
                                      : tbb::task_group_context::bound);
    tbb::parallel_for(
        tbb::blocked_range<uint>(begin, end, grain),
        [&body](const tbb::blocked_range<uint>& range) { body(range.begin(), range.end()); },
        tbb::auto_partitioner(), group);
    if (context == LoopContext::Bound && Pelon::isJobCancelled())
        throw std::runtime_error(KOR::exceptionMessage.c_str());
}

uint loopConcurrency()
{
    return static_cast<uint>(tbb::this_task_arena::max_concurrency());
}

}  // namespace Tessary
