#include <TessaryMesh/Check.h>

#include <gtest/gtest.h>
#include <support/TriangleMeshes.h>

#include <mesh/check/EdgePlaces.h>
#include <mesh/check/EdgeReport.h>

#include <map>
#include <set>

namespace {

using namespace TestSupport;
using TessaryMesh::MeshShape;
using TessaryMesh::shapeOf;
using Strings = std::vector<std::string>;

TEST(MeshShape, TellsAnOpenSheetFromClosedSurfaces)
{
    // A quad and a triangle at its side; point 5 is of no face.
    const MeshShape sheet = shapeOf(*meshOf(6, {{0, 1, 2, 3}, {2, 1, 4}}));
    EXPECT_EQ(sheet.edges, 6u);
    EXPECT_EQ(sheet.boundaryEdges, 5u);
    EXPECT_EQ(sheet.components, 1u);
    EXPECT_EQ(sheet.unusedPoints, 1u);
    EXPECT_EQ(sheet.eulerCharacteristic, 1);
    EXPECT_EQ(sheet.least, 2u);
    EXPECT_EQ(sheet.most, 3u);
    EXPECT_FALSE(sheet.isClosed || sheet.genus);

    const MeshShape two = shapeOf(*meshOf(
        8,
        {{0, 1, 2}, {0, 3, 1}, {1, 3, 2}, {2, 3, 0}, {4, 5, 6}, {4, 7, 5}, {5, 7, 6}, {6, 7, 4}}));
    EXPECT_EQ(two.components, 2u);
    EXPECT_EQ(two.eulerCharacteristic, 4);
    EXPECT_EQ(two.genus, 0u);
    EXPECT_EQ(shapeOf(*meshOf(3, {})).components, 0u);
}

TEST(MeshShape, ClosedMeshesWithoutAGenusAreToldWhy)
{
    // Two tetrahedra with point 0 in common.
    const MeshShape touching = shapeOf(*meshOf(
        7,
        {{0, 1, 2}, {0, 3, 1}, {1, 3, 2}, {2, 3, 0}, {0, 5, 6}, {0, 4, 5}, {5, 4, 6}, {6, 4, 0}}));
    EXPECT_EQ(touching.components, 1u);
    EXPECT_EQ(touching.nonManifoldPoints, 1u);
    EXPECT_TRUE(touching.isClosed && !touching.genus);

    const MeshShape turned = shapeOf(*meshOf(4, {{0, 1, 2}, {0, 3, 1}, {1, 3, 2}, {2, 0, 3}}));
    EXPECT_EQ(turned.sameDirection.count, 3u);
    EXPECT_TRUE(turned.isClosed && !turned.genus);
    EXPECT_EQ(turned.nonManifoldPoints, 0u);
}

// "corner 7: its text" for each place.
Strings placesOf(const TessaryMesh::Problem& problem)
{
    Strings places;
    for (const auto& place : problem.places) {
        const bool isFace = place.element == TessaryMesh::Problem::Element::Face;
        places.push_back((isFace ? "face " : "corner ") + std::to_string(place.index) + ": " +
                         place.text);
    }
    return places;
}

TEST(EdgeWarnings, NameFacesAndCornersOfThePolygons)
{
    const auto mesh = meshOf(7, {{0, 1, 2, 3}, {1, 2, 4}, {2, 1, 5}, {1, 2, 6}});
    const auto warnings = TessaryMesh::edgeWarnings(*mesh);
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_EQ(warnings[0].code, "same-direction");
    EXPECT_EQ(placesOf(warnings[0]),
              Strings{"corner 1: edge 1-2: corner 1 of face 0 and corner 4 of face 1 run the same "
                      "way"});
    EXPECT_EQ(warnings[1].code, "non-manifold-edge");
    EXPECT_EQ(placesOf(warnings[1]),
              Strings{"corner 1: edge 1-2: corner 1 of face 0, corner 4 of face 1, "
                      "corner 7 of face 2, corner 10 of face 3"});

    // The diagonal 0-2 of the quad beside a triangle that runs from 2 to 0 before it.
    const auto diagonal = TessaryMesh::edgeWarnings(*meshOf(5, {{2, 0, 4}, {0, 1, 2, 3}}));
    ASSERT_EQ(diagonal.size(), 1u);
    EXPECT_EQ(diagonal[0].code, "diagonal-direction");
    EXPECT_EQ(placesOf(diagonal[0]),
              Strings{"face 0: edge 0-2: face 0 and face 1 run the same way"});
}

// Every edge by the corners that start there, in order.
using EdgeMap = std::map<std::pair<uint, uint>, std::vector<bool>>;

EdgeMap edgesOf(const Array<uint>& corners)
{
    EdgeMap edges;
    for (uint c = 0; c < corners.size(); ++c) {
        const uint a = corners[c], b = corners[c % 3 == 2 ? c - 2 : c + 1];
        edges[{std::min(a, b), std::max(a, b)}].push_back(a < b);
    }
    return edges;
}

TEST(MeshShape, CountsWhatAPlainMapOfEdgesHolds)
{
    for (NamedTriangles& mesh : triangleMeshes()) {
        SCOPED_TRACE(mesh.name);
        mesh.faceVertex.resize(mesh.faceVertex.size() / 3 * 3);
        Array<uint> offsets;
        for (uint c = 0; c <= mesh.faceVertex.size(); c += 3)
            offsets.push_back(c);
        std::size_t edges = 0, boundaries = 0, crowded = 0;
        for (const auto& [points, sides] : edgesOf(mesh.faceVertex)) {
            const bool isEdge = points.first != points.second;
            edges += isEdge;
            boundaries += isEdge && sides.size() == 1;
            crowded += isEdge && sides.size() > 2;
        }
        const std::set<uint> used(mesh.faceVertex.begin(), mesh.faceVertex.end());
        const MeshShape shape =
            shapeOf(*Geometry::makeMesh(Array<float3>(mesh.pointCount), offsets, mesh.faceVertex));
        EXPECT_EQ(shape.edges, edges);
        EXPECT_EQ(shape.boundaryEdges, boundaries);
        EXPECT_EQ(shape.nonManifold.count, crowded);
        EXPECT_EQ(shape.unusedPoints, mesh.pointCount - used.size());
        EXPECT_EQ(shape.sameDirection.count,
                  TessaryMesh::findSameDirectionEdges(mesh.faceVertex, mesh.pointCount).count);
    }
}

}  // namespace
