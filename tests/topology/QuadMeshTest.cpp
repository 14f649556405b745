#include "support/Threads.h"
#include "support/TriangleMeshes.h"

#include <Tessary/Topology.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

using namespace TestSupport;

namespace {

constexpr float kLargest = std::numeric_limits<float>::max();

Array<uint> edgesOf(const Array<uint>& faceVertex)
{
    Array<uint> edges;
    testing::internal::CaptureStderr();
    Tessary::computeTriEdges(faceVertex, edges);
    testing::internal::GetCapturedStderr();
    return edges;
}

struct Quads {
    uint next = 0;
    Array<uint> corners;
};

template <class Crease>
Quads quadsOf(const Array<uint>& faceVertex, const Array<uint>& edges, const Array<Crease>& creases,
              uint first)
{
    Quads quads;
    quads.next = Tessary::computeQuadMesh(faceVertex, edges, creases, first, quads.corners);
    return quads;
}

uint after(uint c)
{
    return c % 3 == 2 ? c - 2 : c + 1;
}

// Edge by edge, then triangle by triangle, by the table of cases.
Quads literalQuads(const Array<uint>& fv, const Array<uint>& edges, const Array<bool>& crease,
                   uint next)
{
    Quads quads{0, Array<uint>(4 * fv.size())};
    std::vector<bool> mark(fv.size());
    for (std::size_t c = 0; c < fv.size() / 3 * 3; ++c)
        quads.corners[4 * c] = fv[c];
    for (std::size_t e = 0; 2 * e + 1 < edges.size(); ++e) {
        const uint h = edges[2 * e];
        const uint o = edges[2 * e + 1];
        const uint first = next++;
        const bool counts = o != kNone && fv[o] == fv[after(h)] && fv[after(o)] == fv[h];
        const bool creased = crease[h] || (counts && crease[o]);
        const uint second = creased ? next++ : first;
        quads.corners[4 * h + 1] = first;
        quads.corners[4 * after(h) + 3] = second;
        if (creased)
            mark[h] = true;
        if (o == kNone)
            continue;
        if (creased)
            mark[o] = true;
        quads.corners[4 * o + 1] = second;
        quads.corners[4 * after(o) + 3] = first;
    }
    for (std::size_t t = 0; t < fv.size() / 3; ++t) {
        const bool m0 = mark[3 * t], m1 = mark[3 * t + 1], m2 = mark[3 * t + 2];
        uint choice[3] = {0, 0, 0};
        const auto choose = [&choice](uint a, uint b, uint c) {
            choice[0] = a, choice[1] = b, choice[2] = c;
        };
        if (m0 && m1 && m2)
            choose(0, 1, 2);
        else if (m0 && m1)
            choose(1, 0, 1);
        else if (m0 && m2)
            choose(0, 1, 1);
        else if (m1 && m2)
            choose(1, 1, 0);
        for (uint k = 0; k < 3; ++k)
            quads.corners[4 * (3 * t + k) + 2] = next + choice[k];
        next += 1 + *std::max_element(choice, choice + 3);
    }
    quads.next = next;
    return quads;
}

}  // namespace

TEST(QuadMesh, ASingleTriangleBecomesThreeQuadsAroundItsInnerPoint)
{
    // Edges in the order of the table: 0-1 is point 3, 0-2 point 4, 1-2 point 5.
    const Quads quads = quadsOf(Array<uint>{0, 1, 2}, edgesOf({0, 1, 2}), Array<bool>(3), 3);
    EXPECT_EQ(quads.next, 7u);
    EXPECT_EQ(quads.corners, (Array<uint>{0, 3, 6, 4, 1, 5, 6, 3, 2, 4, 6, 5}));
}

TEST(QuadMesh, ACreasedEdgeGetsAPointForEachEnd)
{
    const Array<uint> triangle{0, 1, 2};
    const Quads boundary = quadsOf(triangle, edgesOf(triangle), Array<bool>{true, false, false}, 3);
    EXPECT_EQ(boundary.next, 8u);
    EXPECT_EQ(boundary.corners[1], 3u);
    EXPECT_EQ(boundary.corners[4 + 3], 4u);

    const Quads all = quadsOf(triangle, edgesOf(triangle), Array<bool>(3, true), 3);
    EXPECT_EQ(all.next, 12u);
    EXPECT_EQ(std::set<uint>(all.corners.begin(), all.corners.end()).size(), 12u)
        << "corners separated by creases share nothing";
}

TEST(QuadMesh, WeightsCreaseBelowTheLargestFiniteFloat)
{
    const Array<uint> triangle{0, 1, 2};
    const float inf = std::numeric_limits<float>::infinity();
    for (const float weight : {kLargest, inf, std::nanf("")})
        EXPECT_EQ(quadsOf(triangle, edgesOf(triangle), Array<float>(3, weight), 3).next, 7u);
    for (const float weight : {std::nextafter(kLargest, 0.f), 0.f, -inf})
        EXPECT_EQ(quadsOf(triangle, edgesOf(triangle), Array<float>(3, weight), 3).next, 12u);
}

TEST(QuadMesh, EqualsTheLiteralRulesWithFlagsAndWeightsAtAnyThreadCount)
{
    std::vector<NamedTriangles> meshes = triangleMeshes();
    meshes.push_back(fan(60000, 7));  // several blocks of edges and of triangles
    for (const NamedTriangles& mesh : meshes)
        for (const bool hasCreases : {true, false}) {
            SCOPED_TRACE(mesh.name);
            const Array<uint> edges = edgesOf(mesh.faceVertex);
            std::mt19937 random(5);
            Array<bool> flags(mesh.faceVertex.size());
            Array<float> weights(mesh.faceVertex.size(), kLargest);
            for (std::size_t c = 0; c < flags.size(); ++c)
                if (hasCreases && random() % 4 == 0)
                    flags[c] = true, weights[c] = 1.5f;
            const Quads expected = literalQuads(mesh.faceVertex, edges, flags, mesh.pointCount);
            const auto expectEqual = [&](const Quads& quads) {
                EXPECT_EQ(quads.next, expected.next);
                EXPECT_TRUE(quads.corners == expected.corners);
            };
            expectEqual(quadsOf(mesh.faceVertex, edges, weights, mesh.pointCount));
            atSeveralThreadCounts(
                [&](int) { expectEqual(quadsOf(mesh.faceVertex, edges, flags, mesh.pointCount)); });
        }
}

TEST(QuadMesh, APartnerThatDoesNotRunOppositeIsNumberedButItsCreaseDoesNotCount)
{
    // A table that pairs corner 0 (0 to 1) with corner 3 (0 to 3).
    const Array<uint> faceVertex{0, 1, 2, 0, 3, 4};
    Array<bool> flags(6);
    flags[3] = true;
    const Quads quads = quadsOf(faceVertex, Array<uint>{0, 3}, flags, 5);
    EXPECT_EQ(quads.next, 5u + 1 + 2);
    EXPECT_EQ(quads.corners[4 * 3 + 1], 5u);
}

TEST(QuadMesh, WithoutAnEdgeTableEdgeEntriesKeepTheirResizedValue)
{
    Array<uint> corners(20, 9);
    EXPECT_EQ(Tessary::computeQuadMesh({0, 1, 2}, {}, Array<bool>(3), 3, corners), 4u);
    EXPECT_EQ(corners, (Array<uint>{0, 9, 3, 9, 1, 9, 3, 9, 2, 9, 3, 9}));
}

TEST(QuadFaceIndexedInterpolation, RepeatsThePolygonsValueOnItsQuads)
{
    Array<uint> values(9, 8);  // a quad, a face of two corners, a triangle
    Tessary::quadFaceIndexedInterpolation({0, 4, 6, 9}, {1, 2, 3}, values);
    EXPECT_EQ(values, (Array<uint>{1, 1, 1, 1, 1, 1, 3, 3, 3}));
    Array<uint> untouched{4};
    Tessary::quadFaceIndexedInterpolation({}, {}, untouched);
    EXPECT_EQ(untouched, (Array<uint>{4}));
}
