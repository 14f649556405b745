#pragma once

#include "support/Measure.h"

#include <vector>

namespace Bench {

/// Repeated timings of one contender, in seconds a run.
class Timings {
public:
    /// `first` is the time of a run that was made already, from which repetitions are planned. Above
    /// `longest` seconds, it is the only one.
    Timings(const Contender& contender, double first, double longest);

    /// Whether the run made already is all that there is time for: it is the one sample then.
    bool isSlow() const { return m_isSlow; }

    /// One more sample: a run, or the mean of many where one is too short for the clock.
    void sample();

    std::size_t count() const { return m_seconds.size(); }

    /// `share` 0.5 is the median, 0.25 and 0.75 are the quartiles.
    double quantile(double share) const;

private:
    const Contender& m_contender;
    std::size_t m_runsPerSample;
    bool m_isSlow;
    std::vector<double> m_seconds;
};

double secondsOf(const std::function<void()>& work);

/// One timed run between `prepare` and `clear`.
double secondsOfRun(const Contender& contender);

double quantileOf(std::vector<double> values, double share);

}  // namespace Bench
