#pragma once

// The contact solver's sweeps, one projection after the other and everything in memory.

#include <Tessary/Solver.h>

#include <cmath>

namespace Reference {

using Tessary::Multicollider;
using Tessary::uint;

// Whether no multiplier changed by more than the tolerance.
inline bool sweep(Multicollider& s)
{
    using float3 = Multicollider::float3;
    bool converged = true;
    const uint N = s.colliderCount();
    for (uint g = 0; g < N; ++g)
        for (uint c = s.contactOffsets[g]; c < s.contactOffsets[g + 1]; ++c) {
            const float3 n = s.contactDirections[c].direction;
            for (uint j = 0; j + 1 < N; ++j) {
                const uint o = j < g ? j : j + 1;
                const std::size_t k = std::size_t{c} * (N - 1) + j;
                const float lambda = s.pairLambdas[k];
                const float wg = s.inverseMasses[g], wo = s.inverseMasses[o];
                float3 &G = s.displacements[g], &O = s.displacements[o];
                const float3 A = {(wg * n.x) * lambda + G.x, (wg * n.y) * lambda + G.y,
                                  (wg * n.z) * lambda + G.z};
                const float3 B = {O.x - (wo * n.x) * lambda, O.y - (wo * n.y) * lambda,
                                  O.z - (wo * n.z) * lambda};
                const float d = ((A.y - B.y) * n.y + (A.x - B.x) * n.x) + (A.z - B.z) * n.z;
                float m = std::copysign(1.0f, lambda) * d;
                m = 0 >= m ? 0 : m * s.pairScales[k];
                const float next = std::copysign(m, lambda);
                G = {A.x - (wg * n.x) * next, A.y - (wg * n.y) * next, A.z - (wg * n.z) * next};
                O = {(wo * n.x) * next + B.x, (wo * n.y) * next + B.y, (wo * n.z) * next + B.z};
                converged = converged && s.tolerance >= std::fabs(lambda - next);
                s.pairLambdas[k] = next;
            }
        }
    return converged;
}

inline void solve(Multicollider& s)
{
    if (s.colliderCount() < 2)
        return;
    for (uint iteration = 0; iteration < s.maxIterations; ++iteration)
        if (sweep(s))
            return;
    for (Multicollider::float3& D : s.displacements)
        D = s.fallbackDisplacement;
}

}  // namespace Reference
