#include <Tessary/Solver.h>

#include "base/Assert.h"
#include "base/Host.h"

// What a solve starts from. With the letters of Sweeps.cpp, a pair of collider g and another one, o:
//
//   scale = relaxation / (w_g + w_o)     0 where neither can move
//   D_g = free_g - (sum of w_g n lambda over g's own pairs) + (sum over those where g is the other)

namespace Tessary {
namespace {

// Calls visit(pair, g, contact, o) in the order of the sweeps.
template <class Visit>
void forEachPair(const Multicollider& s, const Visit& visit)
{
    const uint N = s.colliderCount();
    TESSARY_ASSERT(N == 0 || s.contactOffsets.size() == std::size_t{N} + 1,
                   s.contactOffsets.size() << " contact offsets of " << N << " colliders");
    for (uint g = 0; g < N; ++g)
        for (uint c = s.contactOffsets[g]; c < s.contactOffsets[g + 1]; ++c)
            for (uint o = 0; o < N; ++o)
                if (o != g)
                    visit(s.pairIndex(g, c, o), g, c, o);
}

float3 moved(const float3& from, const float3& along, float by)
{
    return {from.x + along.x * by, from.y + along.y * by, from.z + along.z * by};
}

}  // namespace

void Multicollider::preparePairs(Side side, float relaxation)
{
    const std::size_t pairs = std::size_t{contactCount()} * otherCount();
    pairScales.resize(0);
    pairScales.resize(pairs);
    pairLambdas.resize(0);
    pairLambdas.resize(pairs, side == Side::Behind ? 0.0f : -0.0f);
    forEachPair(*this, [&](std::size_t pair, uint g, uint, uint o) {
        const float weight = inverseMasses[g] + inverseMasses[o];
        pairScales[pair] = weight > 0.0f ? relaxation / weight : 0.0f;
    });
}

void Multicollider::startFromFreeDisplacements()
{
    displacements = freeDisplacements;
    forEachPair(*this, [&](std::size_t pair, uint g, uint contact, uint o) {
        const float lambda = pairLambdas[pair];
        if (lambda == 0.0f)
            return;
        const float3& n = contactDirections[contact].direction;
        displacements[g] = moved(displacements[g], n, -inverseMasses[g] * lambda);
        displacements[o] = moved(displacements[o], n, inverseMasses[o] * lambda);
    });
}

}  // namespace Tessary
