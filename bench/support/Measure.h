#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>

namespace Bench {

/// Bytes per second, read plus written, at which two threads copy arrays larger than the caches
/// into memory that was touched before. Measured once per run.
double copyBandwidth();

/// One way to do a job. `prepare` and `clear` run before and after each run and are not timed.
struct Contender {
    std::function<void()> run;
    std::function<void()> prepare = [] {};
    std::function<void()> clear = [] {};
};

/// Times `kernel` and `reference` in turn and reports the kernel's time together with
///   ref_ms     the reference's time
///   ratio      kernel time / reference time
///   x_copy     kernel time / time in which `bytes` could be copied
/// all from medians, and the hash of the kernel's output, which must equal the reference's: the run
/// fails otherwise.
void compare(benchmark::State& state, const Contender& kernel, const Contender& reference,
             std::uint64_t bytes, std::uint64_t kernelHash, std::uint64_t referenceHash);

/// The program: prints the machine's copy bandwidth, then runs the benchmarks.
int run(int argc, char** argv);

}  // namespace Bench
