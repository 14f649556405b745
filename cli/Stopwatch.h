#pragma once

#include <chrono>

namespace Cli {

class Stopwatch {
public:
    /// Seconds since the last lap, or since the watch was made.
    double lap()
    {
        const Clock::time_point now = Clock::now();
        const std::chrono::duration<double> passed = now - m_since;
        m_since = now;
        return passed.count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point m_since = Clock::now();
};

}  // namespace Cli
