#include "support/MeshBuilding.h"

#include <Tessary/Triangulation.h>
#include <gtest/gtest.h>

using namespace TestSupport;
using Tessary::triangulatePolyMesh;

namespace {

bool isEmptyMesh(const Object& mesh)
{
    const auto offsets = dataOf<uint>(mesh, Geometry::sFaceOffset);
    return Geometry::getElementCount(mesh, Geometry::sFaceComp) == 0 &&
           Geometry::getElementCount(mesh, Geometry::sFaceVertexComp) == 0 &&
           Geometry::getElementCount(mesh, Geometry::sPointComp) == 0 && offsets &&
           *offsets == Array<uint>{0} && dataOf<uint>(mesh, Geometry::sFaceVertex)->empty();
}

}  // namespace

//  3---2---5     a quad and a pentagon; point 6 is used by no face
//  |   |   |
//  0---1---4
TEST(TriangulatePolyMesh, MakesATriangleMeshWithPositionsOfItsOwnAndTheNamedProperties)
{
    const MutablePtr<Object> source = meshOf(7, {{0, 1, 2, 3}, {1, 4, 5, 2, 3}});
    Geometry::addDataGeoProperty<int>(*source, "id", Geometry::sFaceComp, shared<int>({7, 8}));
    Geometry::addDataGeoProperty<int>(*source, "left", Geometry::sFaceComp, shared<int>({8, 9}));
    const MutablePtr<Object> target = Korvane::createObject();
    ASSERT_TRUE(triangulatePolyMesh(*source, {"id"}, *target));
    EXPECT_EQ(*dataOf<int>(*target, "id"), (Array<int>{7, 7, 8, 8, 8}));
    EXPECT_FALSE(target->hasProperty("left"));

    EXPECT_EQ(Geometry::getElementCount(*target, Geometry::sFaceComp), 5u);
    EXPECT_EQ(Geometry::getElementCount(*target, Geometry::sFaceVertexComp), 15u);
    EXPECT_EQ(Geometry::getElementCount(*target, Geometry::sPointComp), 7u);
    EXPECT_EQ(*dataOf<uint>(*target, Geometry::sFaceOffset), (Array<uint>{0, 3, 6, 9, 12, 15}));
    EXPECT_EQ(*dataOf<uint>(*target, Geometry::sFaceVertex),
              (Array<uint>{0, 1, 2, 0, 2, 3, 1, 4, 5, 1, 5, 2, 1, 2, 3}));

    const auto points = dataOf<float3>(*source, Geometry::sPointPosition);
    const auto copied = dataOf<float3>(*target, Geometry::sPointPosition);
    EXPECT_EQ(*copied, *points);
    EXPECT_NE(copied->data(), points->data());
}

TEST(TriangulatePolyMesh, WithoutFacesTheTargetIsAnEmptyMeshWithoutProperties)
{
    const MutablePtr<Object> source = meshOf(2, {});
    Geometry::addDataGeoProperty<int>(*source, "id", Geometry::sPointComp, shared<int>({1, 2}));
    const MutablePtr<Object> target = meshOf(3, {{0, 1, 2}});
    EXPECT_TRUE(triangulatePolyMesh(*source, {"id"}, *target));
    EXPECT_TRUE(isEmptyMesh(*target));
    EXPECT_FALSE(target->hasProperty("id"));
}

TEST(TriangulatePolyMesh, AFailureLeavesAnEmptyMesh)
{
    const MutablePtr<Object> twoCorners = meshOf(4, {{0, 1, 2, 3}, {0, 1}});
    const MutablePtr<Object> target = meshOf(3, {{0, 1, 2}});
    EXPECT_FALSE(triangulatePolyMesh(*twoCorners, {}, *target));
    EXPECT_TRUE(isEmptyMesh(*target));

    for (const String& missing :
         {Geometry::sFaceOffset, Geometry::sFaceVertex, Geometry::sPointPosition}) {
        const MutablePtr<Object> source = meshOf(3, {{0, 1, 2}});
        source->setProperty(missing, String("not an array"));
        EXPECT_FALSE(triangulatePolyMesh(*source, {}, *target)) << missing.c_str();
        EXPECT_TRUE(isEmptyMesh(*target));
    }
}
