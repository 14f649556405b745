#include "support/Program.h"

#include <oneapi/tbb/info.h>
#include <oneapi/tbb/version.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <set>
#include <utility>
#include <vector>

namespace Bench {
namespace {

struct RowToRun {
    RowName name;
    std::function<void(Row&)> fill;
};

struct Program {
    ProgramOptions options;
    std::vector<RowToRun> rows;
    std::set<std::string> rowsWithoutHash;
    std::vector<std::string> failures;
    Hashes hashes{""};
};

Program& program()
{
    static Program instance;
    return instance;
}

// Outputs depend neither on threads nor on what runs beside the kernel.
std::string hashName(const RowName& name)
{
    return name.kernel + "/" + name.input + "/" + std::to_string(name.size);
}

std::string fullName(const RowName& name)
{
    return hashName(name) + (name.threads > 0 ? "/threads:" + std::to_string(name.threads) : "") +
           (name.beside.empty() ? "" : "/beside:" + name.beside);
}

// The value of "--name=value", or null.
const char* valueOf(const char* argument, const char* name)
{
    const std::size_t length = std::strlen(name);
    return std::strncmp(argument, name, length) == 0 && argument[length] == '='
               ? argument + length + 1
               : nullptr;
}

bool takeOption(const char* argument, ProgramOptions& options)
{
    const auto sizeOf = [](const char* text) { return std::strtoull(text, nullptr, 10); };
    if (std::strcmp(argument, "--record") == 0)
        options.record = true;
    else if (const char* const file = valueOf(argument, "--hashes"))
        options.hashes = file;
    else if (const char* const smallest = valueOf(argument, "--min-size"))
        options.minSize = sizeOf(smallest);
    else if (const char* const largest = valueOf(argument, "--max-size"))
        options.maxSize = sizeOf(largest);
    else if (const char* const seconds = valueOf(argument, "--row-seconds"))
        options.rowSeconds = std::strtod(seconds, nullptr);
    else if (const char* const samples = valueOf(argument, "--least-samples"))
        options.leastSamples = sizeOf(samples);
    else if (const char* const bandwidth = valueOf(argument, "--copy"))
        options.copyBandwidth = 1e9 * std::strtod(bandwidth, nullptr);
    else if (std::strcmp(argument, "--alone") == 0)
        options.alone = true;
    else
        return false;
    return true;
}

void takeOptions(int& argc, char** argv, ProgramOptions& options)
{
    int kept = 1;
    for (int i = 1; i < argc; ++i)
        if (!takeOption(argv[i], options))
            argv[kept++] = argv[i];
    argc = kept;
}

void runRow(const RowToRun& row, benchmark::State& state)
{
    Row running(row.name, state);
    try {
        row.fill(running);
    } catch (const std::bad_alloc&) {
        running.fail("not enough memory");
    } catch (const std::exception& error) {
        running.fail(error.what());
    }
}

void registerRows(const Program& all)
{
    for (const RowToRun& row : all.rows) {
        if (row.name.size < all.options.minSize || row.name.size > all.options.maxSize)
            continue;
        // One iteration: how often to repeat is decided inside it.
        benchmark::RegisterBenchmark(fullName(row.name).c_str(),
                                     [&row](benchmark::State& state) { runRow(row, state); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(1);
    }
}

void describeRun()
{
    benchmark::AddCustomContext("compiler", __VERSION__);
    benchmark::AddCustomContext("tbb", TBB_runtime_version());
    benchmark::AddCustomContext("threads", std::to_string(allThreads()));
    if (copyBandwidth() <= 0)
        return;
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", copyBandwidth() * 1e-9);
    benchmark::AddCustomContext("copy_GB_per_s", text);
    std::printf("copy bandwidth, all threads, touched memory: %s GB/s read + written\n", text);
}

// One line a row, as soon as it is measured; everything else goes into the JSON file.
class OneLineReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override
    {
        std::printf("%-64s %12s %9s %9s %8s %8s %8s\n", "kernel/input/size", "median ms", "low",
                    "high", "x copy", "B/elem", "ratio");
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            report(run);
        std::fflush(stdout);
    }

private:
    static void report(const Run& run)
    {
        const std::string name = run.run_name.function_name;
        if (run.error_occurred) {
            std::printf("%-64s %s\n", name.c_str(), run.error_message.c_str());
            return;
        }
        const auto figure = [&](const char* counter) {
            const auto found = run.counters.find(counter);
            return found == run.counters.end() ? std::nan("") : found->second.value;
        };
        std::printf("%-64s %12.6g %9.4g %9.4g %8.3g %8.3g %8.3g\n", name.c_str(),
                    figure("median_ms"), figure("low_ms"), figure("high_ms"), figure("x_copy"),
                    figure("B_per_element"), figure("ratio"));
    }
};

int finish(const Program& all)
{
    if (all.options.record)
        all.hashes.save();
    for (const std::string& name : all.rowsWithoutHash)
        std::fprintf(stderr, "%s: no hash is recorded: --record stores it\n", name.c_str());
    for (const std::string& failure : all.failures)
        std::fprintf(stderr, "%s\n", failure.c_str());
    return all.failures.empty() && all.rowsWithoutHash.empty() ? 0 : 1;
}

}  // namespace

const ProgramOptions& programOptions()
{
    return program().options;
}

bool checkHash(const RowName& name, std::uint64_t hash)
{
    Program& all = program();
    if (all.options.record) {
        all.hashes.record(hashName(name), hash);
        return true;
    }
    const Hashes::Verdict verdict = all.hashes.verdict(hashName(name), hash);
    if (verdict == Hashes::Verdict::Missing)
        all.rowsWithoutHash.insert(hashName(name));
    return verdict != Hashes::Verdict::Wrong;
}

void noteFailure(const RowName& name, const std::string& message)
{
    program().failures.push_back(fullName(name) + ": " + message);
}

int allThreads()
{
    return oneapi::tbb::info::default_concurrency();
}

void addRow(RowName name, std::function<void(Row&)> fill)
{
    program().rows.push_back({std::move(name), std::move(fill)});
}

void addParallelRow(const RowName& name, const std::function<void(Row&)>& fill)
{
    addRow(name, fill);
    if (name.size < 100000 || allThreads() == 1)
        return;
    RowName onOneThread = name;
    onOneThread.threads = 1;
    addRow(std::move(onOneThread), fill);
}

int run(int argc, char** argv)
{
    Program& all = program();
    all.options.hashes = BENCH_HASHES;
    takeOptions(argc, argv, all.options);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    try {
        all.hashes = Hashes(all.options.hashes);
        registerRows(all);
        describeRun();
        OneLineReporter reporter;
        benchmark::RunSpecifiedBenchmarks(&reporter);
        benchmark::Shutdown();
        return finish(all);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}

}  // namespace Bench
