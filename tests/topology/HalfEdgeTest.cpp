#include "support/TriangleMeshes.h"

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

// The neighbours of all half-edges of a mesh.
Array<HalfEdge> neighboursIn(const NamedTriangles& mesh)
{
    const Dual dual = dualOf(mesh);
    Array<HalfEdge> found;
    for (uint c = 0; c < mesh.faceVertex.size(); ++c)
        found.push_back(
            Tessary::findAdjacentHalfEdge(mesh.faceVertex, dual.offset, dual.corners, {c, c / 3}));
    return found;
}

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
    for (const HalfEdge diagonal : {HalfEdge{2, 0}, HalfEdge{3, 1}})
        EXPECT_EQ(Tessary::triEdgeToPolyEdge(offsets, diagonal), (HalfEdge{kNone, 0}));
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

TEST(FindAdjacentHalfEdge, TakesTheFirstOfSeveralAndNeverTheSameWayOrTheSameTriangle)
{
    // Edge 0-1: once this way, again this way, then twice the other way.
    const Array<HalfEdge> pages = neighboursIn(book(4, 0b1100));
    EXPECT_EQ(pages[0], (HalfEdge{6, 2}));
    EXPECT_EQ(pages[3], (HalfEdge{6, 2}));
    EXPECT_EQ(pages[9], (HalfEdge{0, 0}));

    // This triangle holds both directions of its own edge.
    EXPECT_EQ(neighboursIn({"", 2, {0, 1, 0}}), (Array<HalfEdge>(3, kNoEdge)));
}

TEST(FindAdjacentHalfEdge, AnIncompleteLastTriangleIsNeverReadPastTheArray)
{
    // Corner 4 has no next corner; the dual lists it for point 0 all the same.
    EXPECT_EQ(neighboursIn({"", 3, {0, 1, 2, 1, 0}}),
              (Array<HalfEdge>{{3, 1}, kNoEdge, kNoEdge, {0, 0}, kNoEdge}));
}
