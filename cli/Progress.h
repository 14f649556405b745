#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace Cli {

/// One line on a terminal that says what is being done and for how long, once that takes more than
/// half a second. It is gone again when anything else is to be printed.
class Progress {
public:
    ~Progress();

    /// Without a call of start() nothing is ever shown.
    void start();

    /// What goes on from now on; an empty text for nothing worth telling.
    void show(std::string line);

    /// Clears the line and keeps it away while the returned lock is held.
    std::unique_lock<std::mutex> clear();

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void draw(Clock::duration elapsed);
    void erase();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_line;
    Clock::time_point m_since;
    bool m_drawn = false;
    bool m_stopped = false;
    std::thread m_thread;
};

}  // namespace Cli
