#pragma once

#include <algorithm>
#include <ctime>

namespace TestSupport {

/// How many times as much processor time `work` takes as `other`, each at its best of three runs in turn.
/// Time on the wall would tell how busy the machine is.
template <class Work, class Other>
double costRatio(const Work& work, const Other& other)
{
    const auto ticksOf = [](const auto& each) {
        const std::clock_t start = std::clock();
        each();
        return std::max<std::clock_t>(std::clock() - start, 1);
    };
    std::clock_t ticks = ticksOf(work), others = ticksOf(other);
    for (int i = 1; i < 3; ++i) {
        ticks = std::min(ticks, ticksOf(work));
        others = std::min(others, ticksOf(other));
    }
    return static_cast<double>(ticks) / static_cast<double>(others);
}

}  // namespace TestSupport
