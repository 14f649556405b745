#include "support/Measure.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>
#include <vector>

namespace Bench {
namespace {

double secondsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double secondsOf(const Contender& contender)
{
    contender.prepare();
    const double seconds = secondsOf(contender.run);
    contender.clear();
    return seconds;
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double measureCopyBandwidth()
{
    constexpr std::size_t kBytes = std::size_t{128} << 20;
    std::vector<char> from(kBytes, 1);
    std::vector<char> to(kBytes, 2);
    const auto copyHalf = [&](std::size_t begin) {
        std::memcpy(to.data() + begin, from.data() + begin, kBytes / 2);
    };
    std::vector<double> seconds;
    for (int i = 0; i < 9; ++i)
        seconds.push_back(secondsOf([&] {
            std::thread other(copyHalf, kBytes / 2);
            copyHalf(0);
            other.join();
        }));
    return 2.0 * kBytes / median(seconds);
}

}  // namespace

double copyBandwidth()
{
    static const double bandwidth = measureCopyBandwidth();
    return bandwidth;
}

void compare(benchmark::State& state, const Contender& kernel, const Contender& reference,
             std::uint64_t bytes, std::uint64_t kernelHash, std::uint64_t referenceHash)
{
    if (kernelHash != referenceHash) {
        state.SkipWithError("the output differs from the reference's");
        return;
    }
    std::vector<double> kernelSeconds;
    std::vector<double> referenceSeconds;
    for (auto _ : state) {
        referenceSeconds.push_back(secondsOf(reference));
        kernelSeconds.push_back(secondsOf(kernel));
        state.SetIterationTime(kernelSeconds.back());
    }
    const double kernelMedian = median(kernelSeconds);
    const double referenceMedian = median(referenceSeconds);
    state.counters["median_ms"] = 1e3 * kernelMedian;
    state.counters["ref_ms"] = 1e3 * referenceMedian;
    state.counters["ratio"] = kernelMedian / referenceMedian;
    state.counters["x_copy"] = kernelMedian / (static_cast<double>(bytes) / copyBandwidth());
    char hash[32];
    std::snprintf(hash, sizeof hash, "%016llx", static_cast<unsigned long long>(kernelHash));
    state.SetLabel(hash);
}

int run(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    std::printf("copy bandwidth, two threads, touched memory: %.1f GB/s read + written\n",
                copyBandwidth() * 1e-9);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace Bench
