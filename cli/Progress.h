#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace Cli {

/// One line on a terminal that says what is being done, how much of it and for how long, once that takes
/// more than half a second. It is gone again when anything else is to be printed.
class Progress {
public:
    ~Progress();

    /// Without a call of start() nothing is ever shown. Where `isStopping` holds, the line says so.
    void start(std::function<bool()> isStopping);

    /// What goes on from now on, of which nothing is done yet; an empty text for nothing worth telling.
    void show(std::string line);

    /// How the line and the share that is done change while the same work goes on.
    void change(std::string line, float share);

    /// What part of it is done, 0 to 1, which any thread may raise; 0 shows none.
    std::atomic<float>& share() { return m_share; }

    /// Clears the line and keeps it away while the returned lock is held.
    std::unique_lock<std::mutex> clear();

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void draw(Clock::duration elapsed);
    void erase();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::function<bool()> m_isStopping;
    std::string m_line;
    std::atomic<float> m_share{0};
    Clock::time_point m_since;
    bool m_drawn = false;
    bool m_stopped = false;
    std::thread m_thread;
};

}  // namespace Cli
