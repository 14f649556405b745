// Sweeps of the contact solver against the same projections one after the other in memory.

#include "reference/ContactSweeps.h"
#include "support/Inputs.h"
#include "support/Measure.h"

#include <Tessary/Solver.h>

#include <algorithm>
#include <cmath>
#include <string>

using namespace Bench;
using Tessary::Multicollider;
using float3 = Multicollider::float3;
using Side = Multicollider::Side;

namespace {

constexpr uint kColliders = 64;

class Solver : public Multicollider {
public:
    using Multicollider::solveInternal;
};

enum class Pairs {
    OneSide,  ///< one direction: most pairs come to rest without a push
    Mixed,    ///< any direction and side: about half of the pairs push
    Few,      ///< the same, but a contact is about one other collider in eight
};

Solver problem(Pairs pairs, uint contacts)
{
    const Array<float> values = randomFloats(std::size_t{1} << 20, 7);
    std::size_t next = 0;
    const auto unit = [&] { return 2 * values[next++ % values.size()] - 1; };
    Solver s;
    for (uint g = 0; g < kColliders; ++g) {
        s.addCollider(0.75f + 0.25f * unit(), {unit(), unit(), unit()});
        for (uint c = contacts * g / kColliders; c < contacts * (g + 1) / kColliders; ++c) {
            const float spread = pairs == Pairs::OneSide ? 0.2f : 1.0f;
            float3 n = {pairs == Pairs::OneSide ? 1.0f : unit(), spread * unit(), spread * unit()};
            const float length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z) + 1e-6f;
            s.addContact({n.x / length, n.y / length, n.z / length});
        }
    }
    s.preparePairs();
    for (std::size_t k = 0; k < s.pairLambdas.size() && pairs != Pairs::OneSide; ++k) {
        if (unit() < 0)
            s.setSide(k, Side::Ahead);
        if (pairs == Pairs::Few && unit() < 0.75f)
            s.ignore(k);
    }
    s.tolerance = 0;
    s.maxIterations = 10;
    return s;
}

std::uint64_t hashOfResult(const Multicollider& s)
{
    return hashOf(s.pairLambdas, hashOf(s.displacements));
}

Contender sweeps(Solver& solver, const Solver& start, void (*solve)(Solver&))
{
    Contender contender;
    contender.run = [&solver, solve] { solve(solver); };
    contender.prepare = [&solver, &start] { solver = start; };
    contender.hash = [&solver] { return hashOfResult(solver); };
    contender.release = [&solver] { solver = Solver(); };
    return contender;
}

void measure(Row& row, Pairs pairs)
{
    const Solver start = problem(pairs, static_cast<uint>(row.size() / (kColliders - 1)));
    Solver ours, plain;
    const std::uint64_t pairCount = start.pairLambdas.size();
    row.compare(
        {pairCount, "pair", 12 * pairCount * start.maxIterations, "10 sweeps, 64 colliders"},
        sweeps(ours, start, [](Solver& s) { s.solveInternal(); }),
        {"plain loop", sweeps(plain, start, [](Solver& s) { Reference::solve(s); }),
         "keeps nothing in registers"});
    const auto pushing = std::count_if(ours.pairLambdas.begin(), ours.pairLambdas.end(),
                                       [](float lambda) { return lambda != 0; });
    row.figure("pushing_%", 100.0 * static_cast<double>(pushing) / static_cast<double>(pairCount));
}

}  // namespace

int main(int argc, char** argv)
{
    const struct {
        const char* name;
        Pairs pairs;
    } inputs[] = {{"one side", Pairs::OneSide}, {"mixed", Pairs::Mixed}, {"few", Pairs::Few}};
    // Pairs of a contact and another collider: 10 thousand contacts make 630 thousand.
    for (const uint contacts :
         {1u, 16u, 1600u, 10000u, 127000u, 476000u, 1600000u, 3200000u, 6400000u})
        for (const auto& [name, pairs] : inputs)
            addRow({"Multicollider solve", name, std::uint64_t{contacts} * (kColliders - 1)},
                   [pairs = pairs](Row& row) { measure(row, pairs); });
    return run(argc, argv);
}
