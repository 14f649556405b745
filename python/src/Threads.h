#pragma once

#include <functional>

namespace TessaryPython {

/// Runs `work` on the calling thread and at most so many altogether; 0 for as many as there are.
void withThreads(unsigned threads, const std::function<void()>& work);

/// Runs `body(begin, end)` over pieces of 0 up to `count`, in parallel.
void parallelPieces(std::size_t count, const std::function<void(std::size_t, std::size_t)>& body);

}  // namespace TessaryPython
