#include "sampling/Elimination.h"

#include "host/ParallelLoop.h"
#include "sampling/CandidateGrid.h"
#include "sampling/PairTest.h"

#include <atomic>
#include <limits>
#include <vector>

// The walk leaves the only set of candidates in which one lives exactly where no earlier one that lives
// is within the distance. So whether a candidate lives is settled as soon as that is known of the earlier
// ones near it, in whatever order, and the candidates are taken cell by cell, in parallel. Where an
// earlier neighbour is not decided yet, it is decided first. Threads that meet at a border may decide
// the same candidate, and come to the same result.

namespace Tessary {
namespace {

enum State : unsigned char { Undecided, Kept, Removed };

class Elimination {
public:
    explicit Elimination(const CandidateGrid& grid) : m_grid(grid), m_state(grid.candidateCount())
    {}

    void removeAround(const float3& fixedPoint);

    /// Decides the candidates of some bins, and clears the entries in `rejected` of those kept.
    void decide(uint firstBin, uint endBin, Array<unsigned char>& rejected);

private:
    struct Candidate {
        std::size_t index;
        uint bin;
    };

    State state(std::size_t i) const
    {
        return static_cast<State>(m_state[i].load(std::memory_order_relaxed));
    }
    void set(std::size_t i, State state) { m_state[i].store(state, std::memory_order_relaxed); }

    PairEnd pairEnd(std::size_t i) const;
    template <Partners partners, class Visit>
    void forEachPartner(const PairEnd& end, const CandidateGrid::Neighbours& neighbours,
                        const Visit& visit) const;
    State earliestBefore(const Candidate& candidate, Candidate& earliest) const;
    void settle(const Candidate& candidate, std::vector<Candidate>& pending);
    void keep(const Candidate& candidate);

    const CandidateGrid& m_grid;
    std::vector<std::atomic<unsigned char>> m_state;
};

PairEnd Elimination::pairEnd(std::size_t i) const
{
    return {m_grid.localA()[i], m_grid.localB()[i], m_grid.localC()[i], m_grid.slotC()[i],
            m_grid.rank()[i]};
}

// Calls visit(partner, first bin of its row) for the candidates within the distance of `end`.
template <Partners partners, class Visit>
void Elimination::forEachPartner(const PairEnd& end, const CandidateGrid::Neighbours& neighbours,
                                 const Visit& visit) const
{
    for (uint row = 0; row < CandidateGrid::kRows; ++row) {
        const uint firstBin = neighbours.firstBin[row];
        const std::size_t runEnd = m_grid.begin(firstBin + neighbours.count(row));
        const PairTest<partners> test(m_grid, end, row);
        for (std::size_t i = m_grid.begin(firstBin); i < runEnd; i += test.kLanes) {
            uint hits = test(i, runEnd);
            for (std::size_t hit = i; hits != 0; ++hit, hits >>= 1)
                if (hits & 1)
                    visit(hit, firstBin);
        }
    }
}

void Elimination::removeAround(const float3& fixedPoint)
{
    const CandidateGrid::Place at = m_grid.place(fixedPoint);
    if (at.isNearNobody() || m_grid.binCount() == 0)
        return;
    forEachPartner<Partners::All>({at.a.local, at.b.local, at.c.local, at.c.slot, 0},
                                  m_grid.neighboursOf(at),
                                  [this](std::size_t i, uint) { set(i, Removed); });
}

// What is known of the earlier candidates near `candidate`: that one is kept, that all are removed, or
// else the first one that is undecided. To go on with the first leads to one without earlier
// neighbours in few steps, and that one settles the most others.
State Elimination::earliestBefore(const Candidate& candidate, Candidate& earliest) const
{
    State known = Removed;
    std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
    forEachPartner<Partners::Earlier>(pairEnd(candidate.index), m_grid.neighbours(candidate.bin),
                                      [&](std::size_t partner, uint firstBin) {
                                          const State found = state(partner);
                                          if (found == Removed || known == Kept)
                                              return;
                                          known = found;
                                          if (m_grid.rank()[partner] < lowest) {
                                              lowest = m_grid.rank()[partner];
                                              earliest = {partner, firstBin};
                                          }
                                      });
    while (known == Undecided && earliest.index >= m_grid.begin(earliest.bin + 1))
        ++earliest.bin;
    return known;
}

void Elimination::settle(const Candidate& candidate, std::vector<Candidate>& pending)
{
    pending.assign(1, candidate);
    while (!pending.empty()) {
        const Candidate next = pending.back();
        if (state(next.index) == Undecided) {
            Candidate earliest{};
            const State known = earliestBefore(next, earliest);
            if (known == Undecided) {
                pending.push_back(earliest);
                continue;
            }
            if (known == Kept)
                set(next.index, Removed);
            else
                keep(next);
        }
        pending.pop_back();
    }
}

void Elimination::keep(const Candidate& candidate)
{
    set(candidate.index, Kept);
    forEachPartner<Partners::Later>(pairEnd(candidate.index), m_grid.neighbours(candidate.bin),
                                    [this](std::size_t later, uint) { set(later, Removed); });
}

void Elimination::decide(uint firstBin, uint endBin, Array<unsigned char>& rejected)
{
    std::vector<Candidate> pending;
    for (uint bin = firstBin; bin < endBin; ++bin)
        for (std::size_t i = m_grid.begin(bin); i < m_grid.begin(bin + 1); ++i) {
            if (state(i) == Undecided)
                settle({i, bin}, pending);
            if (state(i) == Kept)
                rejected[m_grid.id(i)] = 0;
        }
}

}  // namespace

Array<unsigned char> eliminate(const Array<float3>& positions, float distance,
                               const Array<float3>* fixedPoints)
{
    CandidateGrid grid(positions, 1.0f / distance);
    Array<unsigned char> rejected = grid.takeFiled();
    Elimination elimination(grid);
    if (fixedPoints)
        for (const float3& p : *fixedPoints)
            elimination.removeAround(p);
    parallelLoop(0, grid.binCount(), 1, LoopContext::Bound, [&](uint firstBin, uint endBin) {
        elimination.decide(firstBin, endBin, rejected);
    });
    return rejected;
}

}  // namespace Tessary
