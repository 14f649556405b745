#pragma once

#include <Korvane/Math.h>
#include <Pelon/Array.h>
#include <Tessary/Api.h>

#include <cstddef>
#include <cstring>

/// @file
/// Contacts between many colliders at once.

namespace Tessary {

/// Finds one displacement per collider such that the contacts between several colliders hold at once.
///
/// A contact belongs to a collider g and has a direction n. It is paired with every other collider
/// o, and each pair holds the two on one side of each other along n:
///
///     Side::Behind   n . (D[g] - D[o]) <= 0    g moves no further along n than o
///     Side::Ahead    n . (D[g] - D[o]) >= 0    g moves at least as far along n as o
///
/// A violated pair pushes the two apart along n, in proportion to their inverse masses. Sweeps over
/// all pairs in turn (projected Gauss-Seidel) go on until no multiplier changes by more than the
/// tolerance.
///
/// To use it: addCollider() and, after each, addContact() for its contacts; then preparePairs(),
/// setSide() and ignore() for the pairs that differ; then solve(), which tells whether the sweeps
/// converged. Or set the arrays directly: they are public, with the sizes that stand beside them for
/// N colliders and M contacts. Another solve() with other freeDisplacements begins with the pushes
/// that the last one found (warm start).
class Multicollider {
public:
    using float3 = Korvane::Math::float3;  ///< a vector of the host

    /// The direction of a contact.
    struct ContactDirection {
        float3 direction;  ///< used as it is, never normalised
        float reserved;    ///< for the caller; no part of the solve
    };

    /// On which side of the other collider a pair holds the contact's own.
    enum class Side {
        Behind,  ///< no further along the direction
        Ahead    ///< at least as far along the direction
    };

    Pelon::Array<ContactDirection> contactDirections;  ///< M
    Pelon::Array<uint> contactOffsets;       ///< N + 1; collider g has contacts [g] up to [g + 1]
    Pelon::Array<float3> displacements;      ///< N; the result, and where solveInternal() starts
    Pelon::Array<float3> freeDisplacements;  ///< N, the displacements without contacts; or none
    Pelon::Array<float> inverseMasses;       ///< N; 0 holds a collider where it is
    Pelon::Array<float> pairScales;          ///< M (N - 1); violation to multiplier
    Pelon::Array<float> pairLambdas;         ///< M (N - 1); multipliers, the sign chooses the side
    float3 fallbackDisplacement{0, 0, 0};    ///< of every collider where the sweeps do not converge
    float tolerance = 1e-5f;                 ///< the largest change of a multiplier that is none
    uint maxIterations = 100;                ///< sweeps

    /// N
    uint colliderCount() const { return static_cast<uint>(displacements.size()); }
    /// M
    uint contactCount() const { return static_cast<uint>(contactDirections.size()); }

    /// Adds a collider that would move by `freeDisplacement`, and returns its index.
    uint addCollider(float inverseMass, const float3& freeDisplacement = {0, 0, 0})
    {
        if (contactOffsets.empty())
            contactOffsets.push_back(contactCount());
        contactOffsets.push_back(contactCount());
        inverseMasses.push_back(inverseMass);
        freeDisplacements.push_back(freeDisplacement);
        displacements.push_back(freeDisplacement);
        return colliderCount() - 1;
    }

    /// Adds a contact to the collider added last, and returns its index.
    uint addContact(const float3& direction)
    {
        contactDirections.push_back({direction, 0.0f});
        return contactOffsets[contactOffsets.size() - 1]++;
    }

    /// Makes the pairs of the colliders and contacts so far, without pushes, all on one side.
    ///
    /// @param[in] side        of every pair
    /// @param[in] relaxation  the part of a violation that one projection takes away, 1 for all of it
    /// @note       A pair of two immovable colliders is ignored
    TESSARY_API void preparePairs(Side side = Side::Behind, float relaxation = 1.0f);

    /// The pair of a collider's contact and another collider, an index into the pair arrays.
    std::size_t pairIndex(uint collider, uint contact, uint other) const
    {
        return std::size_t{contact} * otherCount() + (other < collider ? other : other - 1);
    }

    /// Puts a pair on a side, without a push.
    void setSide(std::size_t pair, Side side)
    {
        setLambdaBits(pair, side == Side::Behind ? 0 : kSignBit);
    }

    /// Lets a pair move freely; preparePairs() undoes it.
    void ignore(std::size_t pair)
    {
        pairScales[pair] = 0.0f;
        withdrawPush(pair);
    }

    /// Forgets the pushes of earlier solves, so that the next one starts cold. Sides are kept.
    void withdrawPushes()
    {
        for (std::size_t pair = 0; pair < pairLambdas.size(); ++pair)
            withdrawPush(pair);
    }

    /// Solves for `displacements`, starting from the free displacements and the pushes of the last
    /// solve.
    ///
    /// Pushes that are not finite are forgotten first, so that a NaN once given spoils no later solve.
    /// Without freeDisplacements it starts from `displacements`, which must then hold the pushes of
    /// pairLambdas already.
    ///
    /// @returns    whether the sweeps converged; if not, every displacement is the fallback. Fewer than
    ///             two colliders constrain nothing: true
    /// @complexity that of solveInternal()
    bool solve()
    {
        withdrawPushesThatAreNotFinite();
        if (!freeDisplacements.empty())
            startFromFreeDisplacements();
        if (colliderCount() < 2)
            return true;
        // A fallback with bits that no arithmetic makes tells the two ends of the solve apart.
        const float3 fallback = fallbackDisplacement;
        const float3 mark = unreachable();
        fallbackDisplacement = mark;
        solveInternal();
        fallbackDisplacement = fallback;
        if (std::memcmp(&displacements[0], &mark, sizeof mark) != 0)
            return true;
        for (float3& displacement : displacements)
            displacement = fallback;
        return false;
    }

protected:
    /// The sweeps alone, on the arrays as they stand: reads all of them but freeDisplacements, writes
    /// displacements and pairLambdas, allocates nothing.
    ///
    /// @pre        the arrays have the sizes above; contactOffsets do not decrease, the last one is at
    ///             most M. Not checked
    /// @post       a multiplier keeps its sign (that of a zero too), so a pair keeps its side
    /// @failure    with N < 2 nothing changes. Where maxIterations sweeps do not converge, and where a
    ///             NaN reaches a pair, every displacement becomes fallbackDisplacement
    /// @complexity M (N - 1) projections per sweep, on the caller's thread
    TESSARY_API void solveInternal();

private:
    uint otherCount() const { return colliderCount() < 2 ? 0 : colliderCount() - 1; }

    // What follows treats floats as bits, and what computes with them is in the library: a caller's
    // compiler may fuse multiply-adds, drop the signs of zeros or take every number for finite.
    static constexpr uint kSignBit = 0x80000000;
    static constexpr uint kInfinityBits = 0x7F800000;

    uint lambdaBits(std::size_t pair) const
    {
        uint bits;
        std::memcpy(&bits, &pairLambdas[pair], sizeof bits);
        return bits;
    }

    void setLambdaBits(std::size_t pair, uint bits)
    {
        std::memcpy(&pairLambdas[pair], &bits, sizeof bits);
    }

    void withdrawPush(std::size_t pair) { setLambdaBits(pair, lambdaBits(pair) & kSignBit); }

    void withdrawPushesThatAreNotFinite()
    {
        for (std::size_t pair = 0; pair < pairLambdas.size(); ++pair)
            if ((lambdaBits(pair) & kInfinityBits) == kInfinityBits)
                withdrawPush(pair);
    }

    static float3 unreachable()
    {
        const uint bits = 0x7FEDCBA9;  // a quiet NaN
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return {value, value, value};
    }

    TESSARY_API void startFromFreeDisplacements();
};

}  // namespace Tessary
