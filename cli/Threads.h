#pragma once

#include <functional>
#include <memory>

/// How many threads the kernels use.
namespace Cli {

/// Keeps the whole program to so many threads as long as it lives; 0 is no limit.
class ThreadLimit {
public:
    explicit ThreadLimit(unsigned threads);
    ~ThreadLimit();

private:
    struct Control;
    std::unique_ptr<Control> m_control;
};

/// How many work for the calling thread.
unsigned threadCount();

/// Runs `work` on the calling thread, with so many threads to help itself to, that one included.
void withThreads(unsigned threads, const std::function<void()>& work);

}  // namespace Cli
