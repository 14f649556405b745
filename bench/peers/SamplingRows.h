#pragma once

#include "peers/PeerInputs.h"
#include "support/SamplingInputs.h"

#include <Korvane/Geometry.h>
#include <Tessary/Sampling.h>

namespace Bench {

using Samples = Array<Korvane::Math::float3>;

/// A sampling job, and what is known of its outcome.
struct SamplingJob {
    const Surface& surface;
    float distance;
    std::size_t candidates;  ///< that the kernel draws
    std::size_t samples;     ///< that it leaves
};

/// Points uniform over the surface's area.
Samples uniformCloud(const Surface& surface, std::size_t count);

/// Makes a peer ready for a job; it has to put its samples into `left` when it is cleared.
using MakeSampler = std::function<Other(const SamplingJob&, Samples& left)>;

/// Adds poissonSampleTriMesh beside a peer, on a sphere and a torus, with up to `largest` samples
/// left. The figures "left" and "other_left" are numbers of samples, "apart" and "other_apart" the
/// least distances between them over the one that was asked for.
void addSamplingRows(const char* peer, std::uint64_t largest, const MakeSampler& makePeer);

}  // namespace Bench
