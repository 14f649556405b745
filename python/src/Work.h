#pragma once

#include <Pelon/Job.h>

#include <pybind11/pybind11.h>

#include <atomic>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

/// Kernels at work while the interpreter is free.
///
///     calling thread   hand over -> wait, every 50 ms: signals? progress? -> take the result
///     worker           job + threads limit: work(), which polls the job where the kernel does
///
/// Signals reach Python only on its main thread, between instructions: were that thread inside a kernel,
/// Ctrl-C would wait for its end. So long work is done by another thread. When a signal's handler raises,
/// the job is cancelled; work that does not end soon after is left to itself, and what it makes is dropped.
/// Therefore work owns whatever it reads and writes.
namespace TessaryPython {

namespace py = pybind11;

/// What a call is told beside its inputs.
struct Call {
    unsigned threads = 0;  ///< at most so many; 0 for as many as there are
    py::object progress;   ///< called with what was done since the last time, in percent; or None
};

/// How far work has come: it has phases, within which kernels tell their share where they can.
class Stage {
public:
    /// The phase that went on is done; what follows takes the work on to `percent`.
    void next(int percent) noexcept
    {
        m_from = m_to.exchange(percent);
        m_share = 0;
    }

    /// Any thread. May be a little off, and fall, in the moment in which a phase ends.
    int percent() const noexcept
    {
        const int from = m_from, to = m_to;
        return from + static_cast<int>(m_share * static_cast<float>(to - from));
    }

    std::atomic<float>& share() noexcept { return m_share; }

private:
    std::atomic<int> m_from{0}, m_to{0};
    std::atomic<float> m_share{0};
};

/// Work on fewer elements is done on the calling thread: at 20 ns for each it takes 20 ms, after which
/// nobody misses the answer to Ctrl-C. To hand it over would take 30 us.
inline constexpr std::size_t kFewElements = 1000000;

/// Of work whose time the size of its inputs does not tell.
inline constexpr std::size_t kUnknownEffort = ~std::size_t{0};

namespace Internal {

class Task {
public:
    virtual ~Task() = default;
    virtual void work() = 0;

    Pelon::Job job;
    Stage stage;
    unsigned threads = 0;
};

// Both are called with the interpreter's lock, and rethrow what work() throws.
void runHere(Task& task, const Call& call);
void runWatched(const std::shared_ptr<Task>& task, const Call& call);

template <class Work, class Result>
class TaskOf final : public Task {
public:
    explicit TaskOf(Work work) : m_work(std::move(work)) {}
    void work() override { result.emplace(m_work(stage)); }

    std::optional<Result> result;

private:
    Work m_work;
};

}  // namespace Internal

/// The result of `work(stage)`, which does not touch the interpreter. Throws what it throws, and what
/// handlers of signals and the progress callable raise.
template <class Work>
auto compute(const Call& call, std::size_t elements, Work work)
{
    using Result = std::invoke_result_t<Work&, Stage&>;
    using Task = Internal::TaskOf<Work, Result>;
    if (elements < kFewElements) {
        Task task(std::move(work));
        Internal::runHere(task, call);
        return std::move(*task.result);
    }
    const auto task = std::make_shared<Task>(std::move(work));
    Internal::runWatched(task, call);
    return std::move(*task->result);
}

}  // namespace TessaryPython
