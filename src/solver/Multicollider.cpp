#include <Tessary/Solver.h>

#include "host/Float4.h"

#include <cmath>
#include <cstdint>
#include <cstring>

// One projection of a pair, a contact with direction n of collider g and another collider o:
//   lambda   the pair's multiplier, lambda' the new one
//   w_g, w_o the inverse masses of the two
//   D_g, D_o their displacements, A and B the same without the pair's previous push
//   d        the violation n . (A - B), m its amount on the side that the sign of lambda chooses
// Everything is rounded in this order, operation by operation, so that vector registers change
// nothing.

namespace Tessary {
namespace {

struct Contact {
    Float4 n;
    Float4 w_g_n;
};

// The others of one collider that lie on one side of it in the arrays.
struct Others {
    float3* D;
    const float* w;
    const float* scale;
    float* lambda;
    uint count;
};

std::uint32_t bitsOf(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

bool isZero(float value)
{
    return bitsOf(value) << 1 == 0;
}

// Projects the pairs of one contact and returns D_g, which stays in a register from pair to pair, as
// each needs what the one before has made of it.
Float4 project(const Contact contact, const Others others, float tolerance, Float4 D_g,
               bool& converged)
{
    bool allConverged = true;
    for (uint j = 0; j < others.count; ++j) {
        const float lambda = others.lambda[j];
        const Float4 w_o_n = mul(splat(others.w[j]), contact.n);
        const Float4 A = add(mul(contact.w_g_n, splat(lambda)), D_g);
        const Float4 B = sub(load3(others.D[j]), mul(w_o_n, splat(lambda)));
        // The sign of lambda goes into n and the scale, which are there before A and B are.
        const Float4 signed_n = timesSignOf(contact.n, lambda);
        const float scale = std::copysign(others.scale[j], lambda);
        const float m = sum3(mul(sub(A, B), signed_n));
        const float push = zeroUnlessPositive(m, m * scale);
        const float next = std::copysign(push, lambda);
        // Most pairs do not push and go on not to. A jump that foresees it frees the next pair from
        // waiting for this one's violation.
        if (isZero(lambda) && bitsOf(next) == bitsOf(lambda)) {
            D_g = sub(A, mul(contact.w_g_n, splat(lambda)));
            store3(others.D[j], add(mul(w_o_n, splat(lambda)), B));
            allConverged &= tolerance >= 0.0f;
            continue;
        }
        D_g = sub(A, mul(contact.w_g_n, splat(next)));
        store3(others.D[j], add(mul(w_o_n, splat(next)), B));
        allConverged &= tolerance >= std::fabs(lambda - next);
        others.lambda[j] = next;
    }
    converged &= allConverged;
    return D_g;
}

}  // namespace

void Multicollider::solveInternal()
{
    const auto N = static_cast<uint>(displacements.size());
    if (N < 2)
        return;
    const float* const w = inverseMasses.data();
    float3* const D = displacements.data();
    for (uint iteration = 0; iteration < maxIterations; ++iteration) {
        bool converged = true;
        for (uint g = 0; g < N; ++g) {
            Float4 D_g = load3(D[g]);
            for (uint c = contactOffsets[g]; c < contactOffsets[g + 1]; ++c) {
                const Float4 n = load3(contactDirections[c].direction);
                const Contact contact = {n, mul(splat(w[g]), n)};
                const std::size_t k = std::size_t{c} * (N - 1);
                const float* const scale = pairScales.data() + k;
                float* const lambda = pairLambdas.data() + k;
                D_g = project(contact, {D, w, scale, lambda, g}, tolerance, D_g, converged);
                D_g = project(contact, {D + g + 1, w + g + 1, scale + g, lambda + g, N - 1 - g},
                              tolerance, D_g, converged);
            }
            store3(D[g], D_g);
        }
        if (converged)
            return;
    }
    for (float3& displacement : displacements)
        displacement = fallbackDisplacement;
}

}  // namespace Tessary
