#include "Threads.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

namespace TessaryPython {

void withThreads(unsigned threads, const std::function<void()>& work)
{
    if (threads == 0)
        return work();
    tbb::task_arena arena(static_cast<int>(threads));
    arena.execute(work);
}

void parallelPieces(std::size_t count, const std::function<void(std::size_t, std::size_t)>& body)
{
    constexpr std::size_t kPiece = 4096;
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, count, kPiece),
                      [&body](const auto& range) { body(range.begin(), range.end()); });
}

}  // namespace TessaryPython
