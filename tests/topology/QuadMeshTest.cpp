#include "support/Threads.h"
#include "support/TriangleMeshes.h"

#include <Tessary/Topology.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace TestSupport;

namespace {

constexpr float kLargest = std::numeric_limits<float>::max();

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

// Which of a triangle's inner points its corners take, by its creased edges: 1 for the first, 2, 4.
constexpr uint kInner[8][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {1, 0, 1},
                               {0, 0, 0}, {0, 1, 1}, {1, 1, 0}, {0, 1, 2}};

// Edge by edge, then triangle by triangle.
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
        const auto& choice = kInner[mark[3 * t] + 2 * mark[3 * t + 1] + 4 * mark[3 * t + 2]];
        for (uint k = 0; k < 3; ++k)
            quads.corners[4 * (3 * t + k) + 2] = next + choice[k];
        next += 1 + *std::max_element(choice, choice + 3);
    }
    quads.next = next;
    return quads;
}

}  // namespace

// Edges in the order of the table: 0-1 is point 3, 0-2 point 4, 1-2 point 5.
TEST(QuadMesh, ATriangleBecomesThreeQuadsAndACreasedEdgeGetsAPointForEachEnd)
{
    const auto quads = [](const auto& creases) {
        return quadsOf(Array<uint>{0, 1, 2}, Array<uint>{0, kNone, 2, kNone, 1, kNone}, creases, 3);
    };
    const Quads smooth = quads(Array<bool>(3));
    EXPECT_EQ(smooth.next, 7u);
    EXPECT_EQ(smooth.corners, (Array<uint>{0, 3, 6, 4, 1, 5, 6, 3, 2, 4, 6, 5}));
    EXPECT_EQ(quads(Array<bool>{true, false, false}).corners,
              (Array<uint>{0, 3, 7, 5, 1, 6, 7, 4, 2, 5, 7, 6}));
    const Quads creased = quads(Array<bool>(3, true));
    EXPECT_EQ(creased.corners, (Array<uint>{0, 3, 9, 6, 1, 7, 10, 4, 2, 5, 11, 8}));

    // Weights crease below the largest finite float.
    const float inf = std::numeric_limits<float>::infinity();
    for (const float weight : {kLargest, inf, std::nanf("")})
        EXPECT_EQ(quads(Array<float>(3, weight)).corners, smooth.corners) << weight;
    for (const float weight : {std::nextafter(kLargest, 0.f), 0.f, -inf})
        EXPECT_EQ(quads(Array<float>(3, weight)).corners, creased.corners) << weight;
}

TEST(QuadMesh, EqualsTheLiteralRulesWithFlagsAndWeightsAtAnyThreadCount)
{
    std::vector<NamedTriangles> meshes = triangleMeshes();
    meshes.push_back(fan(60000, 7));  // several blocks of edges and of triangles
    for (const NamedTriangles& mesh : meshes)
        for (const bool hasCreases : {true, false}) {
            SCOPED_TRACE(mesh.name);
            const Array<uint> edges = triEdgesOf(mesh.faceVertex).pairs;
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
