#include "base/ParallelBlocks.h"

#include <TessaryMesh/Errors.h>

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_pipeline.h>
#include <tbb/task_arena.h>

namespace TessaryMesh {

// The job belongs to the calling thread, which takes its share of the blocks and asks before each.
void forEachBlock(std::size_t count, const std::function<void(std::size_t)>& body)
{
    throwIfCancelled();
    if (count == 1)
        return body(0);
    tbb::task_group_context context(tbb::task_group_context::isolated);
    tbb::parallel_for(
        tbb::blocked_range<std::size_t>(0, count),
        [&body](const tbb::blocked_range<std::size_t>& range) {
            for (std::size_t block = range.begin(); block < range.end(); ++block) {
                throwIfCancelled();
                body(block);
            }
        },
        tbb::simple_partitioner(), context);
    throwIfCancelled();
}

std::size_t blockSlots()
{
    return 2 * static_cast<std::size_t>(tbb::this_task_arena::max_concurrency());
}

void pipeBlocks(std::size_t count, const std::function<void(std::size_t, std::size_t)>& make,
                const std::function<void(std::size_t, std::size_t)>& take)
{
    throwIfCancelled();
    const std::size_t slots = blockSlots();
    std::size_t next = 0;
    tbb::task_group_context context(tbb::task_group_context::isolated);
    tbb::parallel_pipeline(
        slots,
        tbb::make_filter<void, std::size_t>(tbb::filter_mode::serial_in_order,
                                            [&](tbb::flow_control& control) {
                                                throwIfCancelled();
                                                if (next == count)
                                                    control.stop();
                                                return next == count ? count : next++;
                                            }) &
            tbb::make_filter<std::size_t, std::size_t>(tbb::filter_mode::parallel,
                                                       [&](std::size_t block) {
                                                           throwIfCancelled();
                                                           make(block, block % slots);
                                                           return block;
                                                       }) &
            tbb::make_filter<std::size_t, void>(
                tbb::filter_mode::serial_in_order,
                [&](std::size_t block) { take(block, block % slots); }),
        context);
    throwIfCancelled();
}

}  // namespace TessaryMesh
