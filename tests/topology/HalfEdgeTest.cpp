#include "support/MeshBuilding.h"

#include <Tessary/HalfEdge.h>
#include <Tessary/Topology.h>
#include <Tessary/Triangulation.h>
#include <gtest/gtest.h>

using namespace TestSupport;
using Tessary::HalfEdge;

namespace Tessary {

bool operator==(HalfEdge a, HalfEdge b)
{
    return a.faceVertex == b.faceVertex && a.face == b.face;
}
void PrintTo(HalfEdge edge, std::ostream* out)
{
    *out << edge.faceVertex << " of " << edge.face;
}

}  // namespace Tessary

namespace {

const HalfEdge kNoEdge{kNone, kNone};

struct TriangleMesh {
    Array<uint> faceVertex;
    Array<uint> dualOffset;
    Array<uint> dualCorners;

    TriangleMesh(uint pointCount, Array<uint> corners)
        : faceVertex(std::move(corners)),
          dualOffset(std::size_t{pointCount} + 1),
          dualCorners(faceVertex.size(), kNone)
    {
        Tessary::constructDualMesh(faceVertex, dualOffset, dualCorners);
    }

    HalfEdge across(uint corner) const
    {
        return Tessary::findAdjacentHalfEdge(faceVertex, dualOffset, dualCorners,
                                             {corner, corner / 3});
    }
};

}  // namespace

//  3---2     face 0 is the quad 0 1 2 3: triangles 0 1 2 and 0 2 3;
//  | / | \   face 1 the triangle 1 4 2
//  0---1--4
TEST(HalfEdge, ConvertsBetweenAPolygonAndItsFan)
{
    const Array<uint> offsets{0, 4, 7};
    const HalfEdge polygon[] = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 1}, {5, 1}, {6, 1}};
    const HalfEdge triangle[] = {{0, 0}, {1, 0}, {4, 1}, {5, 1}, {6, 2}, {7, 2}, {8, 2}};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(Tessary::polyEdgeToTriEdge(offsets, polygon[i]), triangle[i]);
        EXPECT_EQ(Tessary::triEdgeToPolyEdge(offsets, triangle[i]), polygon[i]);
    }
    EXPECT_EQ(Tessary::triEdgeToPolyEdge(offsets, {2, 0}), (HalfEdge{kNone, 0}));  // the diagonal
    EXPECT_EQ(Tessary::triEdgeToPolyEdge(offsets, {3, 1}),
              (HalfEdge{kNone, 0}));  // from both sides
}

TEST(HalfEdge, ConvertsThereAndBackOnRandomPolygonsAndRunsAlongTheSamePoints)
{
    for (std::uint32_t seed = 0; seed < 50; ++seed) {
        SCOPED_TRACE(seed);
        const PolygonMesh mesh = randomPolygons(seed, 1 + seed);
        Array<uint> triangleOffsets;
        Array<uint> triangles;
        ASSERT_TRUE(Tessary::computeTriangulation(mesh.faceOffset, mesh.faceVertex, triangleOffsets,
                                                  triangles));
        for (uint f = 0; f < mesh.faceCount(); ++f)
            for (uint c = mesh.faceOffset[f]; c < mesh.faceOffset[f + 1]; ++c) {
                const HalfEdge there = Tessary::polyEdgeToTriEdge(mesh.faceOffset, {c, f});
                EXPECT_EQ(there.face, there.faceVertex / 3);
                EXPECT_EQ(triangles[there.faceVertex], mesh.faceVertex[c]);
                EXPECT_EQ(Tessary::triEdgeToPolyEdge(mesh.faceOffset, there), (HalfEdge{c, f}));
            }
    }
}

TEST(HalfEdge, FacesWithoutTrianglesArePassedOverAndTrianglesPastTheEndMapToTheLastFace)
{
    // A triangle, a face of two corners, a quad.
    EXPECT_EQ(Tessary::triEdgeToPolyEdge({0, 3, 5, 9}, {3, 1}), (HalfEdge{5, 2}));
    EXPECT_EQ(Tessary::triEdgeToPolyEdge({0, 3, 7}, {1 + 3 * 90, 90}).face, 1u);
    EXPECT_EQ(Tessary::triEdgeToPolyEdge({0}, {0, 0}), kNoEdge);
    EXPECT_EQ(Tessary::triEdgeToPolyEdge({0}, {7, 2}).face, kNone);
    EXPECT_EQ(Tessary::triEdgeToPolyEdge({}, {0, 0}), kNoEdge);
}

TEST(FindAdjacentHalfEdge, FindsTheOppositeHalfEdgeAndNothingOnTheBoundary)
{
    const TriangleMesh mesh(5, {0, 1, 2, 2, 1, 3});
    EXPECT_EQ(mesh.across(1), (HalfEdge{3, 1}));
    EXPECT_EQ(mesh.across(3), (HalfEdge{1, 0}));
    for (const uint boundary : {0, 2, 4, 5})
        EXPECT_EQ(mesh.across(boundary), kNoEdge) << boundary;
}

TEST(FindAdjacentHalfEdge, TakesTheFirstOfSeveralAndNeverTheSameWayOrTheSameTriangle)
{
    // Edge 0-1: once this way, again this way, then twice the other way.
    const TriangleMesh book(6, {0, 1, 2, 0, 1, 3, 1, 0, 4, 1, 0, 5});
    EXPECT_EQ(book.across(0), (HalfEdge{6, 2}));
    EXPECT_EQ(book.across(3), (HalfEdge{6, 2}));
    EXPECT_EQ(book.across(9), (HalfEdge{0, 0}));

    // The degenerate triangle 0 1 0 holds both directions of its own edge.
    const TriangleMesh degenerate(2, {0, 1, 0});
    for (uint corner = 0; corner < 3; ++corner)
        EXPECT_EQ(degenerate.across(corner), kNoEdge);
}

TEST(FindAdjacentHalfEdge, AnIncompleteLastTriangleIsNeverReadPastTheArray)
{
    // Corner 4 has no next corner; the dual lists it for point 0 all the same.
    const TriangleMesh mesh(3, {0, 1, 2, 1, 0});
    EXPECT_EQ(mesh.across(2), kNoEdge);
    EXPECT_EQ(mesh.across(3), (HalfEdge{0, 0}));
    EXPECT_EQ(mesh.across(4), kNoEdge);
}
