#include "support/Timing.h"

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace Bench {
namespace {

constexpr double kShortestSample = 20e-6;  // a look at the clock costs about 25e-9

std::size_t runsPerSample(const Contender& contender, double first)
{
    if (contender.prepare || contender.clear || first > kShortestSample)
        return 1;
    return static_cast<std::size_t>(kShortestSample / std::max(first, 1e-9)) + 1;
}

}  // namespace

Timings::Timings(const Contender& contender, double first, double longest)
    : m_contender(contender),
      m_runsPerSample(runsPerSample(contender, first)),
      m_isSlow(first > longest)
{
    if (m_isSlow)
        m_seconds.push_back(first);
}

void Timings::sample()
{
    if (m_runsPerSample == 1) {
        m_seconds.push_back(secondsOfRun(m_contender));
        return;
    }
    const double seconds = secondsOf([this] {
        for (std::size_t i = 0; i < m_runsPerSample; ++i)
            m_contender.run();
    });
    m_seconds.push_back(seconds / static_cast<double>(m_runsPerSample));
}

double Timings::quantile(double share) const
{
    return quantileOf(m_seconds, share);
}

double secondsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double secondsOfRun(const Contender& contender)
{
    if (contender.prepare)
        contender.prepare();
    const double seconds = secondsOf(contender.run);
    if (contender.clear)
        contender.clear();
    return seconds;
}

double quantileOf(std::vector<double> values, double share)
{
    const auto index = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size()));
    const auto at = values.begin() + std::min(index, std::ptrdiff_t(values.size()) - 1);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

}  // namespace Bench
