#pragma once

// What all targets share.

#include <oneapi/tbb/global_control.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace Fuzz {

/// One thread: a case that fails does so every time, and the threads of a scheduler would cost more than
/// inputs of some hundred bytes are worth.
inline void useOneThread()
{
    static const tbb::global_control kControl(tbb::global_control::max_allowed_parallelism, 1);
}

/// Ends the run as a finding where `holds` is false.
inline void require(bool holds, const std::string& what)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what.c_str());
    std::abort();
}

}  // namespace Fuzz
