#pragma once

#include "support/Hashes.h"
#include "support/Measure.h"

namespace Bench {

struct ProgramOptions {
    bool record = false;
    std::string hashes;
    std::uint64_t minSize = 0;
    std::uint64_t maxSize = 8000000;
    double rowSeconds = 0.25;
    std::uint64_t leastSamples = 3;
    double copyBandwidth = -1;  ///< bytes per second; 0: not reported, below: to be measured
    bool alone = false;
};

const ProgramOptions& programOptions();

/// Whether this is the recorded hash of the row's output. A hash that is missing is remembered to be
/// named at the end; where hashes are recorded, every one is right.
bool checkHash(const RowName& name, std::uint64_t hash);

void noteFailure(const RowName& name, const std::string& message);

/// How many threads the kernels use where a row sets no limit.
int allThreads();

}  // namespace Bench
