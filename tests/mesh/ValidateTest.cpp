#include <TessaryMesh/Check.h>

#include <gtest/gtest.h>
#include <support/MeshBuilding.h>

#include "MeshFiles.h"

#include <algorithm>
#include <limits>
#include <new>

namespace {

using namespace MeshFiles;
using namespace TestSupport;
using namespace Korvane::Geometry;
using TessaryMesh::Problem;
using TessaryMesh::validateMesh;

MutablePtr<Object> meshOfArrays(Array<uint> offset, Array<uint> corners, uint pointCount = 4)
{
    return makeMesh(Array<float3>(pointCount), std::move(offset), std::move(corners));
}

// "kind xCOUNT: first place", one problem a line.
std::string summary(const Object& mesh)
{
    std::string text;
    for (const Problem& problem : validateMesh(mesh).problems)
        text += problem.code + " x" + std::to_string(problem.count) + ": " +
                problem.places.at(0).text + "\n";
    return text;
}

TEST(Validate, FindsNothingWrongWithSoundMeshes)
{
    EXPECT_EQ(summary(*meshOf(6, {{0, 1, 2, 3}, {3, 2, 5}})), "");
    EXPECT_EQ(summary(*meshOf(0, {})), "");
    EXPECT_EQ(validateMesh(*meshOf(3, {{0, 1, 2}})).firstError(), nullptr);
}

TEST(Validate, NamesEachKindOfBadTopology)
{
    const struct {
        Array<uint> offset, corners;
        const char* expected;
    } cases[] = {
        {{0, 3, 6},
         {0, 1, 9, 0, 1, 2},
         "index-out-of-range x1: corner 2 of face 0, which names point 9 of 4\n"},
        {{0, 2, 3, 6}, {0, 1, 2, 0, 1, 2}, "small-face x2: face 0, which has 2\n"},
        {{1, 3},
         {0, 1, 2},
         "offset-order x1: face 0, which starts at corner 1, not 0\nsmall-face x1: face 0, which "
         "has 2\n"},
        {{0, 4, 3}, {0, 1, 2}, "offset-order x1: face 1, which starts at corner 4 and ends at 3\n"},
        {{0, 3},
         {0, 1, 2, 3},
         "offset-order x1: the end of the last face, which is 3 in a mesh of 4 corners\n"},
        {{0, 4, 0xFFFFFFFF},
         {0, 1, 2, 3},
         "offset-order x1: the end of the last face, which is 4294967295 in a mesh of 4 corners\n"},
        {{0, 4},
         {0, 1, 2, 0},
         "repeated-corner x1: corner 3 of face 0, which names point 0 again\n"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(summary(*meshOfArrays(one.offset, one.corners)), one.expected);
    EXPECT_EQ(summary(*meshOfArrays({}, {})),
              "offset-order x1: the list of offsets, which is empty and should hold a 0\n"
              "length-mismatch x1: \"face_offset\", which has 0 entries and should have 1 "
              "(\"face_component\")\n");
}

TEST(Validate, RequiresTheTopologyWithItsTypes)
{
    EXPECT_EQ(summary(Object()), "topology-missing x3: point_position\n");
    const auto mesh = meshOf(3, {{0, 1, 2}});
    addValues<int>(*mesh, sFaceVertex, sFaceVertexComp, {0, 1, 2});
    EXPECT_EQ(summary(*mesh), "topology-type x1: face_vertex, which should be an array of uint\n");
}

TEST(Validate, FindsPointsThatAreNotFinite)
{
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float large = std::numeric_limits<float>::max();
    const auto mesh =
        makeMesh({{large, -large, large}, {0, inf, 0}, {0, 0, nan}}, {0, 3}, {0, 1, 2});
    EXPECT_EQ(summary(*mesh), "point-not-finite x2: point 1 (0.000000 inf 0.000000)\n");
}

TEST(Validate, ListsTheFirstPlacesAndCountsAll)
{
    Array<uint> corners;
    for (uint i = 0; i < 30; ++i)
        corners.push_back(100 + i);
    const auto report = validateMesh(*meshOfArrays({0, 30}, corners));
    ASSERT_EQ(report.problems.size(), 1u);
    EXPECT_EQ(report.problems[0].count, 30u);
    EXPECT_EQ(report.problems[0].places.size(), 5u);
    EXPECT_EQ(
        TessaryMesh::InvalidMesh("a.obj", report).what(),
        std::string("a.obj: corners that name no point (30 times), first at corner 0 of face 0, "
                    "which names point 100 of 4; add the missing points or correct the faces"));
}

TEST(Validate, ComparesArraysWithTheirComponents)
{
    const auto mesh = meshOf(4, {{0, 1, 2}, {0, 2, 3}});
    addValues<int>(*mesh, "id", sFaceComp, {1, 2});
    addValues<String>(*mesh, "short", sPointComp, {"a"});
    addValues<int>(*mesh, "lost", "nowhere", {1});
    EXPECT_EQ(summary(*mesh),
              "length-mismatch x2: \"short\", which has 1 entries and should have 4 "
              "(\"point_component\")\n");
}

TEST(Validate, FollowsIndexedProperties)
{
    const auto mesh = meshOf(3, {{0, 1, 2}});
    addIndices(*mesh, "uv_index", sFaceVertexComp, {0, kNone, 1});
    addValues<int>(*mesh, "uv", "uv_index", {1, 2});
    addValues<uint>(*mesh, "uv_offset", "uv", {0, 1, 1, 2});
    EXPECT_EQ(summary(*mesh), "");

    addValues<int>(*mesh, "uv", "uv_index", {1});
    EXPECT_EQ(summary(*mesh),
              "property-index x1: entry 2 of \"uv_index\", which names value 1 of 1 in \"uv\"\n");

    addIndices(*mesh, "uv_index", sFaceVertexComp, {0, 0});
    EXPECT_EQ(summary(*mesh),
              "length-mismatch x1: \"uv_index\", which has 2 entries and should have "
              "3 (\"face_vertex_component\")\n");

    addIndices(*mesh, "uv_index", "uv", {0});
    EXPECT_EQ(summary(*mesh), "circular-target x3: uv_index\n");
}

// Against the definition, on faces small and large.
TEST(Validate, CountsRepeatedCornersOfFacesOfAnySize)
{
    const PolygonMesh polygons = randomPolygons(5, 200, 60);
    std::size_t expected = 0;
    for (uint f = 0; f < polygons.faceCount(); ++f) {
        const uint* const first = polygons.faceVertex.begin() + polygons.faceOffset[f];
        const uint* const last = polygons.faceVertex.begin() + polygons.faceOffset[f + 1];
        for (const uint* corner = first; corner != last; ++corner)
            expected += std::find(first, corner, *corner) != corner;
    }
    const auto report =
        validateMesh(*meshOfArrays(polygons.faceOffset, polygons.faceVertex, polygons.pointCount));
    ASSERT_EQ(report.problems.size(), 1u);
    EXPECT_EQ(report.problems[0].code, "repeated-corner");
    EXPECT_EQ(report.problems[0].count, expected);
    EXPECT_FALSE(report.hasErrors());
}

// The corners are never looked at, so that they take no memory.
TEST(Validate, RejectsMeshesWhoseTriangulationNeedsMoreThan32Bits)
{
    const uint corners = 0xFFFFFFFF / 3 + 2;
    const auto mesh = meshOf(3, {});
    try {
        addDataGeoProperty<uint>(*mesh, sFaceVertex, sFaceVertexComp,
                                 makeMutable<Array<uint>>(corners));
    } catch (const std::bad_alloc&) {
        GTEST_SKIP() << "no address space for so many corners";
    }
    addDataGeoProperty<uint>(*mesh, sFaceOffset, sFaceComp, shared<uint>({0, corners}));
    EXPECT_EQ(summary(*mesh),
              "too-large x1: a mesh of 3 points, 1431655767 corners and 1 faces, which makes "
              "1431655765 triangles\n");
}

}  // namespace
