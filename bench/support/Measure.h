#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <string>

namespace Bench {

/// Bytes per second, read plus written, at which all threads together copy arrays larger than the
/// caches into memory that was touched before. Measured once per run.
double copyBandwidth();

/// One way to do a job. Only `run` is timed; `prepare` and `clear` run before and after each run.
/// A contender without these two is run many times between two looks at the clock where it is short.
struct Contender {
    std::function<void()> run;
    std::function<void()> prepare = nullptr;
    std::function<void()> clear = nullptr;
    std::function<std::uint64_t()> hash = nullptr;  ///< of the output, asked after a run
    /// Gives the output's storage back, so that peak memory counts the output as well. `prepare`
    /// must then be able to make it anew.
    std::function<void()> release = nullptr;
};

/// Another way to do a kernel's job: a plain loop, or another library.
struct Other {
    std::string name;     ///< "plain loop", "CGAL Surface_mesh"
    Contender contender;  ///< where it has a hash, it must be the kernel's

    /// How its work differs: "builds a whole mesh"; empty where it does not.
    std::string difference = {};
};

/// What a row's job consists of.
struct Work {
    std::uint64_t elements = 0;    ///< triangles, polygons, points: what `unit` says
    std::string unit = "element";  ///< in the singular
    std::uint64_t bytes = 0;       ///< that must be read and written at least once; 0: not stated
    std::string note = {};         ///< one more thing that the reader must know
};

/// Names a row: kernel/input/size, then threads:N and beside:OTHER where they are given. No part may
/// contain a slash.
struct RowName {
    std::string kernel;  ///< the exported function
    std::string input;   ///< "torus random"
    std::uint64_t size = 0;
    int threads = 0;          ///< 0: as many as the machine has
    std::string beside = {};  ///< the other way that the row compares with
};

/// A row while it is measured. Call measure() or compare() once.
class Row {
public:
    Row(const RowName& name, benchmark::State& state) : m_name(name), m_state(state) {}

    std::uint64_t size() const { return m_name.size; }

    /// Times the kernel and reports
    ///   median_ms, low_ms, high_ms   time: median and quartiles
    ///   elements, per_s              the work's elements, and how many a second
    ///   GB_per_s, x_copy             the work's bytes a second; time / time of copying so many
    ///   peak_MB, B_per_element       peak memory of a call (see PeakMemory.h), with its output; per
    ///                                element of at least 50000 only
    ///   process_MB                   peak memory of the whole process meanwhile, with the inputs
    ///   threads
    /// and the hash, which must be the recorded one of this kernel, input and size, whatever the
    /// number of threads. What takes more than two seconds is timed once, what
    /// takes more than ten without a run before.
    void measure(const Work& work, const Contender& kernel);

    /// The same beside another way, both in turn, with
    ///   other_ms, other_low_ms, other_high_ms, other_peak_MB
    ///   ratio                        kernel time / other's time
    /// Without the other way, and expectNear(), where the row has a limit on threads, which that may
    /// not heed, or the program runs the kernels alone.
    void compare(const Work& work, const Contender& kernel, const Other& other);

    /// Fails the row unless the two agree up to `tolerance`, relative to ours. Call it before or
    /// after measuring, for outputs that can be compared but have no common hash.
    void expectNear(const char* what, double ours, double others, double tolerance = 0);

    /// One more figure, under a name of its own.
    void figure(const char* name, double value);

    void fail(const std::string& message);

private:
    bool isAlone() const;
    void measureBeside(const Work& work, const Contender& kernel, const Other* other);

    const RowName& m_name;
    benchmark::State& m_state;
};

/// The sizes of most inputs. --max-size leaves the last ones out, where it is not raised.
constexpr std::uint32_t kSizes[] = {1,         10,        100,       1000,      10000,
                                    100000,    1000000,   8000000,   30000000,  100000000,
                                    200000000, 300000000, 400000000, 600000000, 1000000000};

/// Elements from which on the other ways use two threads, where they do.
constexpr std::uint32_t kWorthAThread = 50000;

/// Adds a row to the program. `fill` calls Row::measure or Row::compare; inputs are best made inside
/// it, as rows may be filtered out. Rows run in the order in which they are added.
void addRow(RowName name, std::function<void(Row&)> fill);

/// The same for a parallel kernel: from 100000 elements on, a row on one thread follows.
void addParallelRow(const RowName& name, const std::function<void(Row&)>& fill);

/// The program: measures the rows that its arguments choose. Beside Google Benchmark's own:
///   --record         store the hashes of these rows as the right ones
///   --hashes=FILE    keep them in this file instead of bench/hashes.txt
///   --min-size=N     leave out rows of a smaller size
///   --max-size=N     leave out rows of a larger size (default 8000000)
///   --row-seconds=S  measure each row about S seconds long (default 0.25)
///   --least-samples=N  but at least N times (default 3)
///   --copy=G         take G GB per second for the copy bandwidth; 0 leaves x_copy out
///   --alone          the kernels alone, without the other ways
/// Returns 1 if a row failed: its hash is not the recorded one, none is recorded, outputs differ, or
/// memory ran out.
int run(int argc, char** argv);

}  // namespace Bench
