#pragma once

#include <cstdint>
#include <functional>

namespace Bench {

/// By how many bytes the process's resident memory grows at most while `work` runs, over what it
/// was before. Memory that allocators kept from earlier work is given back first. The system counts
/// in pages and in batches, huge pages at a time for large arrays: differences below about 1 MB mean
/// nothing. 0 where the system does not tell.
std::uint64_t peakMemoryOf(const std::function<void()>& work);

}  // namespace Bench
