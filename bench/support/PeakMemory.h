#pragma once

#include <cstdint>
#include <functional>

namespace Bench {

/// Bytes of resident memory at their peak; 0 where the system does not tell.
struct PeakMemory {
    std::uint64_t ofWork = 0;  ///< above what the process held before
    std::uint64_t ofProcess = 0;
};

/// The peak while `work` runs. Memory that allocators kept from earlier work is given back first. The
/// system counts in pages and in batches, huge pages at a time for large arrays: differences below
/// about 1 MB mean nothing.
PeakMemory peakMemoryOf(const std::function<void()>& work);

}  // namespace Bench
