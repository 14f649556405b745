#pragma once

#include "peers/PeerInputs.h"
#include "support/PrimitiveInputs.h"

#include <Tessary/Primitives.h>

#include <string>
#include <utility>
#include <vector>

namespace Bench {

/// Adds computeBoundingSphere beside a peer on points of every kind.
inline void addSphereRows(const char* peer, void (*fill)(Row&, const Array<Korvane::Math::float3>&))
{
    for (const Points kind : kPointSets)
        for (const std::size_t count : {100000u, 1000000u, 8000000u})
            addRow({"computeBoundingSphere", nameOf(kind), count, 0, peer},
                   [=](Row& row) { fill(row, makePoints(kind, count)); });
}

/// Answers to 10 000 pairs, which stay in the caches so that it is the test that takes time.
constexpr std::size_t kPairs = 10000;

template <class Pairs, class Test>
void answer(const Pairs& pairs, std::size_t rounds, Array<bool>& answers, const Test& test)
{
    for (std::size_t round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < kPairs; ++i)
            answers[i] = test(pairs[i]);
}

/// A peer's triangle/box test; `Pair` is what it tests, made of ours outside the timing.
template <class Pair>
struct OverlapTest {
    const char* name;
    const char* difference;
    Pair (*convert)(const TriangleAndBox&);
};

/// The kernel beside a peer. Rounding may decide otherwise about pairs that just touch: at most one
/// in a thousand, how many of the 10 000 is the figure "other_answers".
template <class Pair, class Test>
void fillOverlapRow(Row& row, const OverlapTest<Pair>& peer, const Test& test, float distance)
{
    const Array<TriangleAndBox> pairs = trianglesAndBoxes(kPairs, distance);
    std::vector<Pair> othersPairs;
    for (const TriangleAndBox& pair : pairs)
        othersPairs.push_back(peer.convert(pair));
    const std::size_t rounds = row.size() / kPairs;
    Array<bool> ours(kPairs), others(kPairs);
    const Contender kernel{[&] {
                               answer(pairs, rounds, ours, [](const TriangleAndBox& t) {
                                   return Tessary::intersect_triangle_with_axis_aligned_box(
                                       t.a, t.b, t.c, t.center, t.half);
                               });
                           },
                           nullptr, nullptr, [&] { return hashOf(ours); }};
    const Contender other{[&] { answer(othersPairs, rounds, others, test); }};
    row.compare({row.size(), "pair", 0, ""}, kernel, {peer.name, other, peer.difference});
    std::size_t different = 0;
    for (std::size_t i = 0; i < kPairs; ++i)
        different += ours[i] != others[i] ? 1 : 0;
    row.figure("other_answers", static_cast<double>(different));
    row.expectNear("the count of the same answers", kPairs, static_cast<double>(kPairs - different),
                   1e-3);
}

/// `test` is a parameter of its own so that it can be inlined, as ours cannot.
template <class Pair, class Test>
void addOverlapRows(const OverlapTest<Pair>& peer, const Test& test)
{
    const std::pair<const char*, float> sets[] = {
        {"mostly separated", 2.5f}, {"mostly overlapping", 0.1f}, {"nearly touching", 1.2f}};
    for (const auto& [name, distance] : sets)
        addRow({"intersect_triangle_with_axis_aligned_box", name, 1000000, 0, peer.name},
               [=, distance = distance](Row& row) { fillOverlapRow(row, peer, test, distance); });
}

}  // namespace Bench
