#include <Tessary/Solver.h>

#include "base/Assert.h"
#include "base/Simd.h"

#include <algorithm>
#include <cmath>

// Projected Gauss-Seidel (C. W. Cryer, "The solution of a quadratic programming problem using
// systematic overrelaxation", SIAM Journal on Control 9(3), 1971). Each pair, a contact with direction
// n of collider g and another collider o, is projected in turn onto its side:
//
//   A = D_g + (w_g n) lambda             D   displacement; A, B without the pair's own push
//   B = D_o - (w_o n) lambda             w   inverse mass
//   m = s n . (A - B)                    s   sign of lambda, the side; m the violation on that side
//   lambda' = s max(0, m scale)          lambda, lambda'   the pair's multiplier, old and new
//   D_g = A - (w_g n) lambda'
//   D_o = B + (w_o n) lambda'
//
// Everything is rounded in this order, operation by operation, so vector registers change nothing:
// the three axes of one projection, or four pairs that may rest, share a register.
//
// A pair rests where lambda and lambda' are both zero. As long as no w n overflows, its projection
// adds and subtracts zeros: that makes 0 of a -0 in D_g or D_o and changes nothing else. No
// projection makes a -0, since lambda' has the sign of lambda. So once there is none, a pair that
// rests is read and not written, and the next pair does not depend on it.

namespace Tessary {
namespace {

struct Contact {
    Float4 n;
    Float4 w_g_n;
    bool mayRest;  // no product of n and an inverse mass overflows
};

// The others of one collider that lie on one side of it in the arrays.
struct Others {
    float3* D;
    const float* w;
    const float* scale;
    float* lambda;
    uint count;
};

// Without these, a displacement has no -0 from the beginning.
void dropNegativeZeros(Array<float3>& displacements)
{
    for (float3& D : displacements)
        D = {D.x + 0.0f, D.y + 0.0f, D.z + 0.0f};
}

float largestOf(const Array<float>& inverseMasses)
{
    float largest = 0.0f;
    for (const float w : inverseMasses) {
        if (std::isnan(w))
            return w;
        largest = std::max(largest, std::fabs(w));
    }
    return largest;
}

// Whether those of pairs first to first + 3 that are in `lanes`, a bit for each, rest.
bool fourRest(const Contact& contact, const Others& others, uint first, uint lanes, Float4 D_g)
{
    const Float4 zero = splat(0.0f);
    const Float4 lambda = load4(others.lambda + first);
    if ((bitsOf(notEqual(lambda, zero)) & lanes) != 0)
        return false;
    const FourPoints D_o(others.D + first);
    const Float4 n = contact.n;
    const Float4 x = mul(sub(lane<0>(D_g), D_o.x), lane<0>(n));
    const Float4 y = mul(sub(lane<1>(D_g), D_o.y), lane<1>(n));
    const Float4 z = mul(sub(lane<2>(D_g), D_o.z), lane<2>(n));
    const Float4 m = timesSignOf(add(add(x, y), z), lambda);
    const Mask4 apart = lessOrEqual(m, zero);
    if ((bitsOf(apart) & lanes) == lanes)
        return true;  // without a look at the scales
    const Float4 push = mul(m, load4(others.scale + first));
    return (bitsOf(either(apart, equal(push, zero))) & lanes) == lanes;
}

// Whether the pairs from `begin` to `end`, at most four, rest. The register is filled up with pairs
// before `begin`, which are ignored.
bool allRest(const Contact& contact, const Others& others, uint begin, uint end, Float4 D_g)
{
    if (!contact.mayRest || end < 4)
        return false;
    return fourRest(contact, others, end - 4, 15u << (4 - (end - begin)) & 15, D_g);
}

// Whether a pair with scale 0, which cannot push, rests. That much of it depends on no earlier
// projection, so the processor gets there ahead of D_g.
bool restsIgnored(const Contact& contact, const Others& others, uint j, Float4 D_g)
{
    if (others.scale[j] != 0.0f || others.lambda[j] != 0.0f || !contact.mayRest)
        return false;
    return sum3(mul(sub(D_g, load3(others.D[j])), contact.n)) * others.scale[j] == 0.0f;
}

// Projects pair j and returns D_g. Branchless: about half of the pairs that move begin or cease to push
// from one sweep to the next, unpredictably.
Float4 project(const Contact& contact, const Others& others, uint j, float tolerance, Float4 D_g,
               bool& converged)
{
    const Float4 lambda = splat(others.lambda[j]);
    const Float4 w_o_n = mul(splat(others.w[j]), contact.n);
    const Float4 A = add(mul(contact.w_g_n, lambda), D_g);
    const Float4 B = sub(load3(others.D[j]), mul(w_o_n, lambda));
    // The sign of lambda goes into n and the scale, which are there before A and B are.
    const Float4 m = splatSum3(mul(sub(A, B), timesSignOf(contact.n, lambda)));
    const Float4 scale = withSignOf(splat(others.scale[j]), lambda);
    const Float4 push = zeroUnlessPositive(m, mul(m, scale));  // lambda', but perhaps for its sign
    const Float4 next = withSignOf(push, lambda);
    store3(others.D[j], add(mul(w_o_n, next), B));
    others.lambda[j] = firstOf(next);
    converged &= tolerance >= std::fabs(firstOf(sub(lambda, next)));
    return sub(A, mul(contact.w_g_n, push));
}

Float4 projectAll(const Contact contact, const Others others, float tolerance, Float4 D_g,
                  bool& converged)
{
    bool allConverged = true;
    for (uint begin = 0; begin < others.count;) {
        const uint end = std::min(begin + 4, others.count);
        if (!allRest(contact, others, begin, end, D_g))
            for (uint j = begin; j < end; ++j)
                if (!restsIgnored(contact, others, j, D_g))
                    D_g = project(contact, others, j, tolerance, D_g, allConverged);
        begin = end;
    }
    converged &= allConverged;
    return D_g;
}

void assertSizes(const Multicollider& s)
{
    const uint N = s.colliderCount();
    const std::size_t pairs = std::size_t{s.contactCount()} * (N - 1);
    TESSARY_ASSERT(s.contactOffsets.size() == std::size_t{N} + 1,
                   s.contactOffsets.size() << " contact offsets of " << N << " colliders");
    for (uint g = 0; g < N; ++g)
        TESSARY_ASSERT(s.contactOffsets[g] <= s.contactOffsets[g + 1],
                       "the contacts of collider " << g << " end before they begin");
    TESSARY_ASSERT(s.contactOffsets[N] <= s.contactCount(),
                   "offset " << s.contactOffsets[N] << " of " << s.contactCount() << " contacts");
    TESSARY_ASSERT(s.inverseMasses.size() == N, s.inverseMasses.size()
                                                    << " inverse masses of " << N << " colliders");
    TESSARY_ASSERT(s.pairScales.size() == pairs && s.pairLambdas.size() == pairs,
                   s.pairScales.size() << " scales and " << s.pairLambdas.size()
                                       << " multipliers of " << pairs << " pairs");
    static_cast<void>(pairs);
}

}  // namespace

void Multicollider::solveInternal()
{
    const auto N = static_cast<uint>(displacements.size());
    if (N < 2)
        return;
    if (maxIterations > 0)
        assertSizes(*this);
    const bool hasPairs = maxIterations > 0 && contactOffsets[0] != contactOffsets[N];
    if (hasPairs)
        dropNegativeZeros(displacements);
    const Float4 w_max = splat(largestOf(inverseMasses));
    const float* const w = inverseMasses.data();
    float3* const D = displacements.data();
    for (uint iteration = 0; iteration < maxIterations; ++iteration) {
        bool converged = !hasPairs || tolerance >= 0.0f;
        for (uint g = 0; g < N; ++g) {
            Float4 D_g = load3(D[g]);
            for (uint c = contactOffsets[g]; c < contactOffsets[g + 1]; ++c) {
                const Float4 n = load3(contactDirections[c].direction);
                const Contact contact = {n, mul(splat(w[g]), n), areFinite3(mul(w_max, n))};
                const std::size_t k = std::size_t{c} * (N - 1);
                const float* const scale = pairScales.data() + k;
                float* const lambda = pairLambdas.data() + k;
                D_g = projectAll(contact, {D, w, scale, lambda, g}, tolerance, D_g, converged);
                D_g = projectAll(contact, {D + g + 1, w + g + 1, scale + g, lambda + g, N - 1 - g},
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
