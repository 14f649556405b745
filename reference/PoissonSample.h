#pragma once

// Poisson-disk sampling step by step on one thread and plain arrays: a hash map from cell to candidates,
// and a walk with 27 look-ups for each candidate that is left.

#include <Korvane/Math.h>
#include <Pelon/Array.h>
#include <Pelon/TypeRep.h>

#include <cstdint>

namespace Reference {

using Korvane::Math::float3;
using Pelon::Array;
using Pelon::uint;

struct TriangleMesh {
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

struct SampleResult {
    Samples samples;
    Array<uint> faceOffset;
};

Array<float> triangleAreas(const TriangleMesh& mesh);
float totalArea(const Array<float>& areas);
AliasTable aliasTable(const Array<float>& areas, float total);
uint candidateCount(float total, float distance);

/// Appends candidates to those in `drawn`, of which `counted` were drawn by earlier calls.
void drawCandidates(const TriangleMesh& mesh, float distance, uint seed, uint& counted,
                    Samples& drawn);
Samples drawCandidates(const TriangleMesh& mesh, float distance, uint seed);

/// 1 for every candidate that an earlier survivor or a fixed point eliminates; empty where the
/// distance is too small for a grid.
Array<unsigned char> reject(const Array<float3>& positions, float distance,
                            const Array<float3>& fixedPoints = {});

/// All steps.
SampleResult poissonSample(const TriangleMesh& mesh, float distance, uint seed);

}  // namespace Reference
