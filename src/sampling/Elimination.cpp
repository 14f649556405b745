#include "sampling/Elimination.h"

#include "base/Assert.h"
#include "base/ParallelLoop.h"
#include "base/Progress.h"
#include "sampling/CandidateGrid.h"
#include "sampling/Neighbourhood.h"
#include "sampling/Phases.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <vector>

// Dart throwing (R. L. Cook, "Stochastic sampling in computer graphics", ACM Transactions on Graphics
// 5(1), 1986) over given candidates, but in parallel.
//
//   L = { i : no j < i in L is within the distance of i }
//
// The walk in order leaves this set L, and no other set is equal to the right-hand side: candidate 0 is
// in it, and whether i is follows from those before it. So a candidate is decided as soon as its earlier
// neighbours are, in whatever order, and the candidates are taken cell by cell, in parallel. Where an
// earlier neighbour is undecided, it is decided first. Threads that meet at a border may both decide a
// candidate, and come to the same result.

namespace Tessary {
namespace {

enum State : unsigned char { Undecided, Kept, Removed };

// What is known of every candidate of a grid. Relaxed: a state says all there is to say.
class States {
public:
    explicit States(std::size_t count) : m_states(count) {}

    State operator[](std::size_t i) const
    {
        return static_cast<State>(m_states[i].load(std::memory_order_relaxed));
    }
    void set(std::size_t i, State state) { m_states[i].store(state, std::memory_order_relaxed); }

private:
    std::vector<std::atomic<unsigned char>> m_states;
};

void removeAround(const Array<float3>& fixedPoints, const CandidateGrid& grid, States& states)
{
    Neighbourhood neighbourhood(grid);
    for (const float3& p : fixedPoints) {
        const CandidateGrid::Place at = grid.place(p);
        if (at.isIsolated() || grid.binCount() == 0)
            continue;
        neighbourhood.set(grid.neighboursOf(at));
        neighbourhood.find<Partners::All>({at.a.local, at.b.local, at.c.local, at.c.slot, 0});
        for (const uint near : neighbourhood)
            states.set(near, Removed);
    }
}

// Decides candidates, one thread's share.
class Decision {
public:
    Decision(const CandidateGrid& grid, States& states)
        : m_grid(grid), m_states(states), m_neighbourhood(grid)
    {}

    void decide(uint candidate, uint bin)
    {
        m_pending.assign(1, {candidate, bin});
        while (!m_pending.empty())
            if (m_states[m_pending.back().index] != Undecided || settle(m_pending.back()))
                m_pending.pop_back();
    }

private:
    struct Candidate {
        uint index;
        uint bin;
    };

    bool settle(Candidate candidate);
    uint binOf(uint candidate, uint nearBin) const;

    const CandidateGrid& m_grid;
    States& m_states;
    Neighbourhood m_neighbourhood;
    std::vector<Candidate> m_pending;
};

// Decides a candidate if the earlier ones near it are decided; if not, puts the first of them before it
// and returns false. To go on with the first leads to one without earlier neighbours in few steps,
// and that one settles the most others.
bool Decision::settle(Candidate candidate)
{
    const uint i = candidate.index;
    const PairEnd end = {m_grid.localA()[i], m_grid.localB()[i], m_grid.localC()[i],
                         m_grid.slotC()[i], m_grid.rank()[i]};
    m_neighbourhood.set(m_grid.neighbours(candidate.bin));
    m_neighbourhood.find<Partners::Earlier>(end);

    bool isKeptNear = false;
    std::int32_t lowestRank = end.rank;
    uint earliest = i;
    for (const uint near : m_neighbourhood) {
        const State known = m_states[near];
        isKeptNear |= known == Kept;
        const std::int32_t rank = known == Undecided ? m_grid.rank()[near] : end.rank;
        earliest = rank < lowestRank ? near : earliest;
        lowestRank = std::min(lowestRank, rank);
    }
    if (isKeptNear) {
        m_states.set(i, Removed);
        return true;
    }
    if (earliest != i) {
        m_pending.push_back({earliest, binOf(earliest, candidate.bin)});
        return false;
    }
    m_states.set(i, Kept);
    m_neighbourhood.find<Partners::Later>(end);
    for (const uint near : m_neighbourhood)
        m_states.set(near, Removed);
    return true;
}

// The bin of a candidate near another one of bin `nearBin`.
uint Decision::binOf(uint candidate, uint nearBin) const
{
    const CandidateGrid::Neighbours& neighbours = m_grid.neighbours(nearBin);
    for (uint row = 0; row < CandidateGrid::kRows; ++row) {
        const uint first = neighbours.firstBin[row];
        for (uint bin = first; bin < first + neighbours.count(row); ++bin)
            if (m_grid.begin(bin) <= candidate && candidate < m_grid.begin(bin + 1))
                return bin;
    }
    return nearBin;
}

}  // namespace

Array<unsigned char> eliminate(const Array<float3>& positions, float distance,
                               const Array<float3>* fixedPoints)
{
    TESSARY_ASSERT(distance > std::numeric_limits<float>::min(), "distance " << distance);
    CandidateGrid grid(positions, 1.0f / distance);
    Array<unsigned char> rejected = grid.takeIsInGrid();
    States states(grid.candidateCount());
    if (fixedPoints)
        removeAround(*fixedPoints, grid, states);
    beginPhase(kLinked, kEliminated);
    parallelLoop(0, grid.binCount(), 1, LoopContext::Bound, [&](uint firstBin, uint endBin) {
        Decision decision(grid, states);
        for (uint bin = firstBin; bin < endBin; ++bin)
            for (uint i = grid.begin(bin); i < grid.begin(bin + 1); ++i) {
                if (states[i] == Undecided)
                    decision.decide(i, bin);
                if (states[i] == Kept)
                    rejected[grid.id(i)] = 0;
            }
    });
    return rejected;
}

}  // namespace Tessary
