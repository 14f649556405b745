#include "support/Threads.h"
#include "support/TriangleMeshes.h"

#include <Tessary/Topology.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using namespace TestSupport;

namespace {

constexpr const char* kGaveUp =
    "Non manifold or inconsistently oriented mesh detected\nEdge computation canceled\n";

// Records in corner order, a stable sort, one scan over neighbours.
TriEdges literalEdges(const Array<uint>& fv)
{
    const auto ends = [&fv](uint c) { return std::pair(fv[c], fv[c % 3 == 2 ? c - 2 : c + 1]); };
    const auto key = [&ends](uint c) {
        const auto [p, q] = ends(c);
        return std::pair(std::max(p, q), std::min(p, q));
    };
    std::vector<uint> corners(fv.size() / 3 * 3);
    std::iota(corners.begin(), corners.end(), 0u);
    std::stable_sort(corners.begin(), corners.end(),
                     [&key](uint a, uint b) { return key(a) < key(b); });
    TriEdges edges;
    for (std::size_t i = 0; i < corners.size();) {
        const auto [p, q] = ends(corners[i]);
        const bool hasNext = i + 1 < corners.size();
        if (hasNext && ends(corners[i + 1]) == std::pair(p, q))
            return {{}, kGaveUp};
        const bool isPair = hasNext && ends(corners[i + 1]) == std::pair(q, p);
        edges.pairs.push_back(corners[i]);
        edges.pairs.push_back(isPair ? corners[i + 1] : kNone);
        i += isPair ? 2 : 1;
    }
    return edges;
}

}  // namespace

//  2---3     triangles 0 1 2 and 2 1 3;
//  | \ |     corner 1 (1 to 2) and corner 3 (2 to 1) share an edge
//  0---1
TEST(TriEdges, TwoTrianglesOfOppositeOrientationShareOnePair)
{
    const TriEdges edges = triEdgesOf({0, 1, 2, 2, 1, 3});
    EXPECT_EQ(edges.pairs, (Array<uint>{0, kNone, 2, kNone, 1, 3, 4, kNone, 5, kNone}));
    EXPECT_EQ(edges.messages, "");
}

TEST(TriEdges, GivesUpOnTwoHalfEdgesInOneDirectionButNotOnAThirdAfterAPair)
{
    const TriEdges sameWay = triEdgesOf({0, 1, 2, 0, 1, 3});
    EXPECT_TRUE(sameWay.pairs.empty());
    EXPECT_EQ(sameWay.messages, kGaveUp);

    const TriEdges third = triEdgesOf({0, 1, 2, 1, 0, 3, 0, 1, 4});
    EXPECT_EQ(third.messages, "");
    EXPECT_EQ(third.pairs, (Array<uint>{0, 3, 6, kNone, 2, kNone, 1, kNone, 4, kNone, 5, kNone, 8,
                                        kNone, 7, kNone}));
}

TEST(TriEdges, FewerThanThreeCornersAndTrailingOnesYieldNothing)
{
    for (const Array<uint>& corners : {Array<uint>{}, Array<uint>{4}, Array<uint>{4, 5}})
        EXPECT_TRUE(triEdgesOf(corners).pairs.empty());
    EXPECT_EQ(triEdgesOf({0, 1, 2, 0, 1}).pairs, triEdgesOf({0, 1, 2}).pairs);
}

TEST(TriEdges, EqualTheLiteralRulesAndListEveryCornerOnceAtAnyThreadCount)
{
    for (const NamedTriangles& mesh : triangleMeshes()) {
        SCOPED_TRACE(mesh.name);
        const TriEdges expected = literalEdges(mesh.faceVertex);
        const TriEdges edges = triEdgesOf(mesh.faceVertex);
        EXPECT_EQ(edges.pairs, expected.pairs);
        EXPECT_EQ(edges.messages, expected.messages);
    }
    // Large enough for several pieces, with points far apart and with one that most triangles share.
    NamedTriangles large = fan(100000, 99999);
    for (uint seed = 0; large.faceVertex.size() < 600000; ++seed)
        for (const uint point : randomPatch(seed).faceVertex)
            large.faceVertex.push_back(100002 + seed * 169 + point);
    Array<uint> farApart, scattered;
    for (const uint point : large.faceVertex) {
        farApart.push_back(4294967295u - 40 * point % 4294967291u);
        // Points in no order at all: 7919 has no factor in common with their number, 2^19.
        scattered.push_back(7919 * point % 524288);
    }
    for (const Array<uint>& faceVertex : {large.faceVertex, farApart, scattered}) {
        const TriEdges expected = literalEdges(faceVertex);
        ASSERT_FALSE(expected.pairs.empty());
        atSeveralThreadCounts([&](int threads) {
            EXPECT_TRUE(triEdgesOf(faceVertex).pairs == expected.pairs) << threads << " threads";
        });
    }
    for (uint corner = 300000; corner < 300003; ++corner)
        scattered.push_back(scattered[corner]);
    EXPECT_EQ(triEdgesOf(scattered).messages, kGaveUp);
}
