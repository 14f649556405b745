#include "support/Measure.h"

#include "support/PeakMemory.h"
#include "support/Program.h"
#include "support/Timing.h"

#include <tbb/global_control.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <thread>
#include <vector>

namespace Bench {
namespace {

double measureCopyBandwidth()
{
    constexpr std::size_t kBytes = std::size_t{256} << 20;
    const std::size_t threadCount = std::max(1u, std::thread::hardware_concurrency());
    std::vector<char> from(kBytes, 1);
    std::vector<char> to(kBytes, 2);
    const auto copyShare = [&](std::size_t share) {
        const std::size_t begin = kBytes * share / threadCount;
        const std::size_t end = kBytes * (share + 1) / threadCount;
        std::memcpy(to.data() + begin, from.data() + begin, end - begin);
    };
    std::vector<double> seconds;
    for (int i = 0; i < 9; ++i)
        seconds.push_back(secondsOf([&] {
            std::vector<std::thread> others;
            for (std::size_t share = 1; share < threadCount; ++share)
                others.emplace_back(copyShare, share);
            copyShare(0);
            for (std::thread& other : others)
                other.join();
        }));
    return 2.0 * kBytes / quantileOf(seconds, 0.5);
}

// A run from released memory on. The first one of a contender in a row warms the caches up, too, and
// tells the time for planning.
struct ColdRun {
    double seconds = 0;
    PeakMemory peak;
    std::optional<std::uint64_t> hash;

    explicit ColdRun(const Contender& contender)
    {
        if (contender.release)
            contender.release();
        peak = peakMemoryOf([&] {
            if (contender.prepare)
                contender.prepare();
            seconds = secondsOf(contender.run);
        });
        if (contender.hash)
            hash = contender.hash();
        if (contender.clear)
            contender.clear();
    }
};

// Seconds up to which a run is repeated often, and up to which a second one is made, into memory
// that the first has warmed up.
constexpr double kLongestRepeated = 2;
constexpr double kLongestWarm = 10;

// An odd number, so that the median is one of them.
std::size_t samplesFor(double secondsPerSample)
{
    constexpr double kMost = 1001;
    const double fitting = programOptions().rowSeconds / std::max(secondsPerSample, 20e-6);
    const auto samples = static_cast<std::size_t>(std::min(std::ceil(fitting), kMost));
    return std::max(samples, programOptions().leastSamples) | 1;
}

double megabytes(std::uint64_t bytes)
{
    return 1e-6 * static_cast<double>(bytes);
}

void reportTimes(benchmark::State& state, const Timings& timings, const std::string& prefix,
                 const std::string& median)
{
    state.counters[median] = 1e3 * timings.quantile(0.5);
    state.counters[prefix + "low_ms"] = 1e3 * timings.quantile(0.25);
    state.counters[prefix + "high_ms"] = 1e3 * timings.quantile(0.75);
}

void reportWork(benchmark::State& state, const Work& work, double seconds)
{
    const auto elements = static_cast<double>(work.elements);
    const auto bytes = static_cast<double>(work.bytes);
    state.counters["elements"] = elements;
    state.counters["per_s"] = elements / seconds;
    if (work.bytes == 0)
        return;
    state.counters["GB_per_s"] = 1e-9 * bytes / seconds;
    if (copyBandwidth() > 0)
        state.counters["x_copy"] = seconds / (bytes / copyBandwidth());
}

void reportPeak(benchmark::State& state, const PeakMemory& peak, std::uint64_t elements)
{
    constexpr std::uint64_t kFewest = 50000;  // of which the system's pages do not drown the figure
    state.counters["peak_MB"] = megabytes(peak.ofWork);
    state.counters["process_MB"] = megabytes(peak.ofProcess);
    if (elements >= kFewest)
        state.counters["B_per_element"] =
            static_cast<double>(peak.ofWork) / static_cast<double>(elements);
}

std::string labelOf(const Work& work, const Other* other, const ColdRun& first)
{
    std::string label = "unit=" + work.unit;
    if (first.hash)
        label += " | hash=" + hexOf(*first.hash);
    if (other != nullptr)
        label += " | other=" + other->name;
    if (other != nullptr && !other->difference.empty())
        label += " | difference=" + other->difference;
    if (!work.note.empty())
        label += " | note=" + work.note;
    return label;
}

}  // namespace

double copyBandwidth()
{
    const double given = programOptions().copyBandwidth;
    static const double bandwidth = given >= 0 ? given : measureCopyBandwidth();
    return bandwidth;
}

void Row::measure(const Work& work, const Contender& kernel)
{
    measureBeside(work, kernel, nullptr);
}

void Row::compare(const Work& work, const Contender& kernel, const Other& other)
{
    measureBeside(work, kernel, isAlone() ? nullptr : &other);
}

void Row::measureBeside(const Work& work, const Contender& kernel, const Other* other)
{
    std::optional<tbb::global_control> limit;
    if (m_name.threads > 0)
        limit.emplace(tbb::global_control::max_allowed_parallelism, m_name.threads);
    const ColdRun first(kernel);
    m_state.SetLabel(labelOf(work, other, first));
    if (first.hash && !checkHash(m_name, *first.hash))
        return fail("the output's hash " + hexOf(*first.hash) + " is not the recorded one");
    std::optional<ColdRun> othersFirst;
    if (other != nullptr)
        othersFirst.emplace(other->contender);
    if (othersFirst && othersFirst->hash && othersFirst->hash != first.hash)
        return fail("the output differs from that of " + other->name);

    const bool isLong = first.seconds > kLongestRepeated;
    Timings ours(kernel, first.seconds, kLongestWarm);
    std::optional<Timings> others;
    if (other != nullptr)
        others.emplace(other->contender, othersFirst->seconds, kLongestRepeated);
    const bool inTurn = others && !others->isSlow();
    const std::size_t samples =
        isLong ? 1 : samplesFor(first.seconds + (inTurn ? othersFirst->seconds : 0));
    for (auto _ : m_state) {
        while (ours.count() < samples) {
            if (inTurn)
                others->sample();
            ours.sample();
        }
        m_state.SetIterationTime(ours.quantile(0.5));
    }

    const double median = ours.quantile(0.5);
    reportTimes(m_state, ours, "", "median_ms");
    m_state.counters["samples"] = static_cast<double>(samples);
    m_state.counters["threads"] = m_name.threads > 0 ? m_name.threads : allThreads();
    reportWork(m_state, work, median);
    // The first run's memory includes what the scheduler takes once, of which millions of elements
    // hide all.
    reportPeak(m_state, isLong ? first.peak : ColdRun(kernel).peak, work.elements);
    if (!others)
        return;
    reportTimes(m_state, *others, "other_", "other_ms");
    if (inTurn)
        m_state.counters["other_peak_MB"] = megabytes(ColdRun(other->contender).peak.ofWork);
    m_state.counters["ratio"] = median / others->quantile(0.5);
}

void Row::expectNear(const char* what, double ours, double others, double tolerance)
{
    if (isAlone())
        return;
    if (!(std::fabs(ours - others) <= tolerance * std::fabs(ours)))
        fail(std::string(what) + " differs: " + std::to_string(ours) + " here, " +
             std::to_string(others) + " there");
}

bool Row::isAlone() const
{
    return m_name.threads > 0 || programOptions().alone;
}

void Row::figure(const char* name, double value)
{
    m_state.counters[name] = value;
}

void Row::fail(const std::string& message)
{
    noteFailure(m_name, message);
    m_state.SkipWithError(message.c_str());
}

}  // namespace Bench
