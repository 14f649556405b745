#pragma once

#include <functional>

/// How many threads the kernels use.
namespace Cli {

/// Keeps the whole program to so many threads from now on; 0 is no limit. For good: lifting a limit makes
/// threads, and where the system makes no more of them, nobody could catch what the scheduler throws.
void limitThreads(unsigned threads);

/// How many work for the calling thread.
unsigned threadCount();

/// Runs `work` on the calling thread, with so many threads to help itself to, that one included.
void withThreads(unsigned threads, const std::function<void()>& work);

}  // namespace Cli
