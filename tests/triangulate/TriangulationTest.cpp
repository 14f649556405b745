#include "support/MeshBuilding.h"
#include "support/Threads.h"

#include <Tessary/Triangulation.h>
#include <gtest/gtest.h>

using namespace TestSupport;
using Tessary::computeTriangulation;

namespace {

struct Triangles {
    bool succeeded = true;
    Array<uint> offsets;
    Array<uint> corners;
};

Triangles triangulate(const Array<uint>& faceOffset, const Array<uint>& faceVertex,
                      Triangles reused = {})
{
    reused.succeeded = computeTriangulation(faceOffset, faceVertex, reused.offsets, reused.corners);
    return reused;
}

// Face by face, appending.
Triangles literalTriangulation(const Array<uint>& faceOffset, const Array<uint>& faceVertex)
{
    Triangles out;
    for (std::size_t i = 1; i < faceOffset.size(); ++i) {
        const uint begin = faceOffset[i - 1];
        const uint end = faceOffset[i];
        out.succeeded = end - begin >= 3;
        if (!out.succeeded)
            return out;
        for (std::size_t c = std::size_t{begin} + 2; c < end; ++c) {
            out.offsets.push_back(static_cast<uint>(out.corners.size()));
            for (const std::size_t corner : {std::size_t{begin}, c - 1, c})
                out.corners.push_back(faceVertex[corner]);
        }
    }
    if (!out.offsets.empty())
        out.offsets.push_back(static_cast<uint>(out.corners.size()));
    return out;
}

void expectEqual(const Triangles& a, const Triangles& b)
{
    EXPECT_EQ(a.succeeded, b.succeeded);
    EXPECT_EQ(a.offsets, b.offsets);
    EXPECT_EQ(a.corners, b.corners);
}

}  // namespace

TEST(Triangulation, SplitsFacesAsFansFromTheirFirstCornerUpToAFaceOfTwo)
{
    const Triangles old{false, {1, 2}, {3}};
    expectEqual(
        triangulate({0, 3, 7, 12}, {7, 8, 9, 0, 1, 2, 3, 4, 5, 6, 5, 4}, old),
        {true, {0, 3, 6, 9, 12, 15, 18}, {7, 8, 9, 0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 5, 4, 5, 4}});
    expectEqual(triangulate({}, {}, old), {true, {}, {}});
    expectEqual(triangulate({0}, {}, old), {true, {}, {}});
    // A failure leaves the triangles of the faces before, and no closing offset.
    expectEqual(triangulate({0, 3, 5, 8}, {4, 5, 6, 0, 1, 2, 3, 4}, old), {false, {0}, {4, 5, 6}});
}

TEST(Triangulation, EqualsTheLiteralRulesForGoodAndBadOffsetsAndReusedOutputs)
{
    Triangles reused;
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        PolygonMesh mesh = randomPolygons(seed, 1 + seed * 3 % 400);
        if (seed % 3 == 1)  // a face of fewer than three corners, or offsets that decrease
            mesh.faceOffset[1 + seed % mesh.faceCount()] =
                (seed * 7) % (mesh.faceVertex.size() + 1);
        const Triangles expected = literalTriangulation(mesh.faceOffset, mesh.faceVertex);
        expectEqual(triangulate(mesh.faceOffset, mesh.faceVertex), expected);
        reused = triangulate(mesh.faceOffset, mesh.faceVertex, std::move(reused));
        expectEqual(reused, expected);
    }
}

// Large enough to be cut into pieces, each of which must know where its triangles go.
TEST(Triangulation, IsTheSameAtAnyThreadCountAndOffsetsNeedNotStartAtZero)
{
    PolygonMesh mesh = randomPolygons(1, 30000);
    for (const uint first : {0u, 2u}) {
        for (uint& offset : mesh.faceOffset)
            offset += first;
        mesh.faceVertex.resize(mesh.faceVertex.size() + first, 5);
        const Triangles expected = literalTriangulation(mesh.faceOffset, mesh.faceVertex);
        atSeveralThreadCounts([&](int threads) {
            SCOPED_TRACE(threads);
            expectEqual(triangulate(mesh.faceOffset, mesh.faceVertex), expected);
        });
    }
}
