#include <TessaryMesh/Operations.h>

#include <Korvane/Geometry.h>
#include <Tessary/Topology.h>

#include <gtest/gtest.h>
#include <support/TriangleMeshes.h>

#include <TessaryMesh/Check.h>
#include <mesh/check/EdgeReport.h>
#include <mesh/ops/Creases.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace {

using namespace Korvane::Geometry;
using namespace TestSupport;
using TessaryMesh::Carry;
using TessaryMesh::QuadOptions;

//  3---2---5     two quads in the plane; corner 1 starts the edge 1-2, corner 7 the edge 2-1
//  |   |   |
//  0---1---4
MutablePtr<Object> twoQuads()
{
    return makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}, {2, 1, 0}}, {0, 4, 8},
                    {0, 1, 2, 3, 1, 4, 5, 2});
}

TessaryMesh::QuadResult quadsWithCreases(const MutablePtr<Object>& mesh,
                                         const Ptr<Array<float>>& weights)
{
    addDataGeoProperty<float>(*mesh, "crease", sFaceVertexComp, weights);
    QuadOptions options;
    options.creaseProperty = "crease";
    return TessaryMesh::makeQuads(*mesh, options, Carry::none());
}

TEST(QuadMeshOfObjects, NewPointsLieOnTheEdgesAndInTheTriangles)
{
    QuadOptions options;
    options.edgeWeight = 0.25f;
    options.innerWeights[0] = 0.5f;
    options.innerWeights[1] = 0.5f;
    options.innerWeights[2] = 0;
    const auto quads = TessaryMesh::makeQuads(*meshOf(4, {{0, 1, 2}}), options, Carry::none())
                           .mesh;  // 3 is unused
    EXPECT_EQ(*dataOf<uint>(*quads, sFaceVertex),
              (Array<uint>{0, 4, 7, 5, 1, 6, 7, 4, 2, 5, 7, 6}));
    EXPECT_EQ(*dataOf<uint>(*quads, sFaceOffset), (Array<uint>{0, 4, 8, 12}));
    const float expected[] = {0, 1, 2, 3, .75f, 1.5f, 1.75f, .5f};
    ASSERT_EQ(getElementCount(*quads, sPointComp), 8u);
    for (uint p = 0; p < 8; ++p)
        EXPECT_EQ((*dataOf<float3>(*quads, sPointPosition))[p], (float3{expected[p], 0, 0}));
    options.innerWeights[2] = 0.5f;
    EXPECT_THROW(TessaryMesh::makeQuads(*meshOf(4, {{0, 1, 2}}), options),
                 TessaryMesh::ArgumentError)
        << "shares of more than all";

    const auto points = shared<float3>({{1, 2, 3}, {4, 5, 6}});
    const auto cloud = Korvane::createObject();
    populatePointCloud(points, *cloud);
    EXPECT_EQ(
        *dataOf<float3>(*TessaryMesh::makeQuads(*cloud, {}, Carry::none()).mesh, sPointPosition),
        *points);
}

TEST(QuadMeshOfObjects, EachQuadKnowsItsFaceItsCornerAndItsTriangle)
{
    const auto parents = TessaryMesh::makeQuads(*meshOf(5, {{0, 1, 2, 3}, {2, 1, 4}})).parents;
    EXPECT_EQ(*parents.face, (Array<uint>{0, 0, 0, 0, 0, 0, 1, 1, 1}));
    EXPECT_EQ(*parents.corner, (Array<uint>{0, 1, 2, 0, 2, 3, 4, 5, 6}));
    EXPECT_EQ(*parents.triangle, (Array<uint>{0, 0, 0, 1, 1, 1, 2, 2, 2}));
}

TEST(QuadMeshOfObjects, PropertiesCreaseTheEdgeThatStartsAtTheirCorner)
{
    for (const std::size_t corner : {0, 3, 1, 7}) {
        const auto weights = makeMutable<Array<float>>(8, std::numeric_limits<float>::infinity());
        (*weights)[corner] = 1;
        const auto quads = quadsWithCreases(twoQuads(), weights);
        EXPECT_EQ(quads.edges, 9u);
        EXPECT_EQ(quads.creasedEdges, 1u) << corner;
    }
    const auto mesh = twoQuads();
    addDataGeoProperty<bool>(*mesh, "all", sFaceVertexComp, makeMutable<Array<bool>>(8, true));
    QuadOptions options;
    options.creaseProperty = "all";
    EXPECT_EQ(TessaryMesh::makeQuads(*mesh, options, Carry::none()).creasedEdges, 7u)
        << "no diagonals";

    EXPECT_THROW(quadsWithCreases(mesh, shared<float>({1, 2})), TessaryMesh::ArgumentError);
    addDataGeoProperty<double>(*mesh, "all", sFaceVertexComp, makeMutable<Array<double>>(8));
    EXPECT_THROW(TessaryMesh::makeQuads(*mesh, options, Carry::none()), TessaryMesh::ArgumentError);
}

TEST(QuadMeshOfObjects, AnglesAreThoseOfPolygonsWhateverTheirShape)
{
    // A concave polygon, whose first fan triangle is turned over, beside a triangle of its plane.
    const auto flat = makeMesh({{1, 1, 0}, {3, 0, 0}, {3, 3, 0}, {0, 3, 0}, {0, 0, 0}, {4, 1, 0}},
                               {0, 5, 8}, {4, 0, 1, 2, 3, 2, 1, 5});
    QuadOptions options;
    options.creaseAngle = 1;
    EXPECT_EQ(TessaryMesh::makeQuads(*flat, options, Carry::none()).creasedEdges, 0u);

    const float s = std::sqrt(.5f);  // folded by 45 degrees
    const auto folded =
        makeMesh({{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {-s, 0, s}}, {0, 3, 6}, {0, 2, 1, 0, 1, 3});
    for (const double degrees : {44.9, 45.1}) {
        options.creaseAngle = degrees;
        EXPECT_EQ(TessaryMesh::makeQuads(*folded, options, Carry::none()).creasedEdges,
                  degrees < 45 ? 1u : 0u);
    }
}

TEST(EdgeReport, FindsAnEdgeExactlyWhereTheEdgeTableGivesUp)
{
    std::size_t refused = 0;
    for (const NamedTriangles& mesh : triangleMeshes()) {
        SCOPED_TRACE(mesh.name);
        const TriEdges edges = triEdgesOf(mesh.faceVertex);
        const bool gaveUp = !edges.messages.empty();
        const TessaryMesh::EdgeReport report =
            TessaryMesh::findSameDirectionEdges(mesh.faceVertex, mesh.pointCount, 1000);
        EXPECT_EQ(report.count > 0, gaveUp);
        const Array<uint> separated =
            TessaryMesh::separatedTriEdges(mesh.faceVertex, mesh.pointCount);
        if (!gaveUp) {
            EXPECT_EQ(separated, edges.pairs);
        }
        EXPECT_EQ(std::set<uint>(separated.begin(), separated.end()).size() -
                      (std::count(separated.begin(), separated.end(), kNone) > 0 ? 1 : 0),
                  mesh.faceVertex.size() / 3 * 3)
            << "every half-edge is listed";
        EXPECT_EQ(report.first.size(), report.count);
        refused += gaveUp ? 1 : 0;
        for (const auto& edge : report.first) {
            EXPECT_LT(edge.corner, edge.another);
            for (const uint corner : {edge.corner, edge.another}) {
                EXPECT_EQ(mesh.faceVertex[corner], edge.start);
                EXPECT_EQ(mesh.faceVertex[corner % 3 == 2 ? corner - 2 : corner + 1], edge.end);
            }
        }
    }
    EXPECT_GT(refused, 100u);
}

}  // namespace
