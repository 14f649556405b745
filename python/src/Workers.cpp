#include "Workers.h"

#include <pthread.h>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace TessaryPython {
namespace {

class Workers {
public:
    void start(std::function<void()> work)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_waiting.push_back(std::move(work));
        if (m_waiting.size() > m_idle)
            addThread();
        else
            m_changed.notify_one();
    }

private:
    // Signals belong to the threads that Python knows.
    void addThread()
    {
        sigset_t all, old;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &old);
        try {
            std::thread([this] { run(); }).detach();
        } catch (...) {
            m_waiting.pop_back();
            pthread_sigmask(SIG_SETMASK, &old, nullptr);
            throw;
        }
        pthread_sigmask(SIG_SETMASK, &old, nullptr);
    }

    [[noreturn]] void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        for (;;) {
            ++m_idle;
            m_changed.wait(lock, [this] { return !m_waiting.empty(); });
            --m_idle;
            {
                std::function<void()> work = std::move(m_waiting.front());
                m_waiting.pop_front();
                lock.unlock();
                work();
            }
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_waiting;
    std::size_t m_idle = 0;
};

// Never destroyed: detached threads wait in it until the process ends. A child of fork() has none of
// its parent's threads and begins anew.
Workers* workers = nullptr;

void makeWorkers()
{
    workers = new Workers;
}

}  // namespace

void startOnWorker(std::function<void()> work)
{
    static const int once = (makeWorkers(), pthread_atfork(nullptr, nullptr, makeWorkers));
    static_cast<void>(once);
    workers->start(std::move(work));
}

}  // namespace TessaryPython
