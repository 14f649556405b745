#pragma once

// Poisson-disk sampling done the plain way, step by step, on plain arrays: what the library's
// sampler is compared with, and timed against. A concurrent vector of candidates sorted by
// comparison, a concurrent map from cell to bin, and a serial walk with 27 look-ups a candidate.

#include <Korvane/Math.h>
#include <Pelon/Array.h>
#include <Pelon/TypeRep.h>

#include <cstdint>

namespace LiteralSampling {

using Korvane::Math::float3;
using Pelon::Array;
using Pelon::uint;

struct Mesh {
    Array<float3> points;
    Array<uint> faceVertex;  // 3 per triangle
};

struct Samples {
    Array<float> weights;  // 3 per sample
    Array<float3> positions;
    Array<uint> faceIds;
};

struct AliasTable {
    Array<uint> alias;
    Array<uint> threshold;
};

struct Result {
    Samples samples;
    Array<uint> faceOffset;
};

Array<float> triangleAreas(const Mesh& mesh);
float totalArea(const Array<float>& areas);
AliasTable aliasTable(const Array<float>& areas, float total);
uint candidateCount(float total, float distance);
Samples drawCandidates(const Mesh& mesh, float distance, uint seed);
/// 1 for every candidate that an earlier survivor or a fixed point eliminates; empty where the
/// distance is too small for a grid.
Array<unsigned char> reject(const Array<float3>& positions, float distance,
                            const Array<float3>& fixedPoints = {});

/// All steps.
Result sample(const Mesh& mesh, float distance, uint seed);

}  // namespace LiteralSampling
