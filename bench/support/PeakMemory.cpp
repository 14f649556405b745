#include "support/PeakMemory.h"

#include <tbb/scalable_allocator.h>

#include <fstream>
#include <string>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace Bench {
namespace {

// A line "VmHWM:   1234 kB" of the process's status; 0 where there is none.
std::uint64_t statusBytes(const std::string& field)
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word)
        if (word == field + ":") {
            std::uint64_t kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    return 0;
}

// Makes the present size the largest so far.
bool resetPeak()
{
    std::ofstream refs("/proc/self/clear_refs");
    refs << "5" << std::flush;
    return refs.good();
}

// What allocators keep would be used again unseen. The scheduler's containers have one of their own.
void giveBackFreeMemory()
{
    scalable_allocation_command(TBBMALLOC_CLEAN_ALL_BUFFERS, nullptr);
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

}  // namespace

PeakMemory peakMemoryOf(const std::function<void()>& work)
{
    giveBackFreeMemory();
    const bool known = resetPeak();
    const std::uint64_t before = statusBytes("VmRSS");
    work();
    const std::uint64_t peak = statusBytes("VmHWM");
    return known && peak >= before ? PeakMemory{peak - before, peak} : PeakMemory{};
}

}  // namespace Bench
