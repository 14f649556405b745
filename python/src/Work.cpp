#include "Work.h"

#include "Errors.h"
#include "Threads.h"
#include "Workers.h"

#include <Tessary/Progress.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace TessaryPython {
namespace {

using Internal::Task;
using std::chrono::milliseconds;

// A tenth of the quarter of a second within which Ctrl-C ends a call, and little work in itself.
constexpr milliseconds kPeriod{25};
constexpr milliseconds kPatience{100};  // with work that was cancelled

/// Where the worker says that it has ended.
class Ending {
public:
    void set(std::exception_ptr error)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_error = std::move(error);
        m_isSet = true;
        m_changed.notify_all();
    }

    bool waitFor(milliseconds time)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, time, [this] { return m_isSet; });
    }

    const std::exception_ptr& error() const { return m_error; }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::exception_ptr m_error;
    bool m_isSet = false;
};

void work(Task& task)
{
    withThreads(task.threads, [&task] {
        const Pelon::JobScope job(task.job);
        const Tessary::ProgressScope progress(task.stage.share());
        task.work();
    });
}

/// Tells the progress callable what it has not been told yet.
class Told {
public:
    explicit Told(const Call& call) : m_call(call) {}

    void tell(int percent)
    {
        if (!m_call.progress || m_call.progress.is_none())
            return;
        const int step = std::max(0, percent - m_percent);
        m_percent += step;
        m_call.progress(step);
    }

private:
    const Call& m_call;
    int m_percent = 0;
};

bool isInterpreterEnding()
{
#if PY_VERSION_HEX >= 0x030D0000
    return Py_IsFinalizing() != 0;
#else
    return _Py_IsFinalizing() != 0;
#endif
}

// Does `wait` while other threads of Python run. A daemon thread that comes back when the interpreter is
// about to end waits for the end of the process: Python would end it with an exception of its own,
// which C++ code cannot be left by.
template <class Wait>
void withoutLock(const Wait& wait)
{
    PyThreadState* const thread = PyEval_SaveThread();
    std::exception_ptr error;
    try {
        wait();
    } catch (...) {
        error = std::current_exception();
    }
    while (isInterpreterEnding())
        std::this_thread::sleep_for(std::chrono::seconds(1));
    PyEval_RestoreThread(thread);
    if (error)
        std::rethrow_exception(error);
}

std::shared_ptr<Ending> start(const std::shared_ptr<Task>& task)
{
    auto ending = std::make_shared<Ending>();
    startOnWorker([task = std::shared_ptr<Task>(task), ending]() mutable {
        std::exception_ptr error;
        try {
            work(*task);
        } catch (...) {
            error = std::current_exception();
        }
        // Before the end is told: a caller that still waits is then the only one to hold the result.
        task.reset();
        ending->set(std::move(error));
    });
    return ending;
}

void runSignalHandlers()
{
    if (PyErr_CheckSignals() != 0)
        throw py::error_already_set();
}

void watch(Task& task, Ending& ending, Told& told)
{
    for (bool hasEnded = false;;) {
        withoutLock([&] { hasEnded = ending.waitFor(kPeriod); });
        if (hasEnded)
            return;
        runSignalHandlers();
        told.tell(task.stage.percent());
    }
}

}  // namespace

namespace Internal {

void runHere(Task& task, const Call& call)
{
    task.threads = call.threads;
    withoutLock([&task] { work(task); });
    Told(call).tell(100);
}

void runWatched(const std::shared_ptr<Task>& task, const Call& call)
{
    task->threads = call.threads;
    const auto ending = start(task);
    Told told(call);
    try {
        watch(*task, *ending, told);
    } catch (py::error_already_set& error) {
        task->job.cancel();
        withoutLock([&ending] { ending->waitFor(kPatience); });
        throwCancelled(error);
    }
    if (ending->error())
        std::rethrow_exception(ending->error());
    told.tell(100);
}

}  // namespace Internal
}  // namespace TessaryPython
