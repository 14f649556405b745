#include "support/MeshBuilding.h"

#include <Tessary/Topology.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace TestSupport;
using Tessary::addDual;
using Tessary::constructDualMesh;

namespace {

struct Dual {
    Array<uint> offset;
    Array<uint> corners;
    bool operator==(const Dual& o) const { return offset == o.offset && corners == o.corners; }
};

Dual prepared(uint pointCount, std::size_t cornerCount)
{
    return {Array<uint>(std::size_t{pointCount} + 1), Array<uint>(cornerCount, kNone)};
}

// Every corner into the first free slot of its point's range, searched from the start.
void literalDual(const Array<uint>& faceVertex, Dual& dual)
{
    for (const uint point : faceVertex)
        dual.offset[point + 1] += 1;
    for (std::size_t i = 1; i < dual.offset.size(); ++i)
        dual.offset[i] += dual.offset[i - 1];
    for (uint corner = 0; corner < faceVertex.size(); ++corner) {
        const uint point = faceVertex[corner];
        const std::size_t end = std::min<std::size_t>(dual.offset[point + 1], dual.corners.size());
        for (std::size_t s = dual.offset[point]; s < end; ++s)
            if (dual.corners[s] == kNone) {
                dual.corners[s] = corner;
                break;
            }
    }
}

// A fan: every triangle uses point 0.
Array<uint> fanOfTriangles(uint triangles)
{
    Array<uint> faceVertex(std::size_t{3} * triangles);
    for (uint t = 0; t < triangles; ++t) {
        faceVertex[3 * t + 1] = t + 1;
        faceVertex[3 * t + 2] = t + 2;
    }
    return faceVertex;
}

}  // namespace

//  2---3     triangles 0 1 2 and 2 1 3
//  | \ |
//  0---1
TEST(DualMesh, ListsTheCornersOfEachPointInOrder)
{
    Dual dual = prepared(4, 6);
    constructDualMesh({0, 1, 2, 2, 1, 3}, dual.offset, dual.corners);
    EXPECT_EQ(dual.offset, (Array<uint>{0, 1, 3, 5, 6}));
    EXPECT_EQ(dual.corners, (Array<uint>{0, 1, 4, 2, 3, 5}));

    Dual none = prepared(2, 0);
    constructDualMesh({}, none.offset, none.corners);
    EXPECT_TRUE(none == prepared(2, 0));
}

TEST(DualMesh, EqualsTheLiteralSearchForEveryEntryState)
{
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const PolygonMesh mesh = randomPolygons(seed, 1 + random() % 20);
        Dual dual = prepared(mesh.pointCount, mesh.faceVertex.size());
        switch (seed % 5) {
            case 0:
                break;
            case 1:
                dual.corners[random() % dual.corners.size()] = 3;
                break;
            case 2:
                dual.corners.resize(dual.corners.size() / 2);
                break;
            case 3:
                dual.offset[random() % dual.offset.size()] = random() % 9;
                break;
            case 4:
                dual.offset[random() % dual.offset.size()] = 0u - random() % 30;
                break;
        }
        Dual expected = dual;
        literalDual(mesh.faceVertex, expected);
        constructDualMesh(mesh.faceVertex, dual.offset, dual.corners);
        EXPECT_EQ(dual.offset, expected.offset);
        EXPECT_EQ(dual.corners, expected.corners);

        Dual again = expected;  // a second build over the first
        literalDual(mesh.faceVertex, again);
        constructDualMesh(mesh.faceVertex, dual.offset, dual.corners);
        EXPECT_TRUE(dual == again);
    }
}

// Quadratic in the valence this would be 10^12 steps.
TEST(DualMesh, OneFanOfAMillionTrianglesTakesNoLongerThanAGrid)
{
    const uint triangles = 1000000;
    const Array<uint> faceVertex = fanOfTriangles(triangles);
    Dual dual = prepared(triangles + 2, faceVertex.size());
    constructDualMesh(faceVertex, dual.offset, dual.corners);
    EXPECT_EQ(dual.offset[1], triangles);
    EXPECT_EQ(dual.corners[triangles - 1], 3 * (triangles - 1));

    constructDualMesh(faceVertex, dual.offset, dual.corners);
    EXPECT_EQ(dual.offset[1], 2 * triangles);
}

TEST(AddDual, StoresTwoPropertiesAndTheirComponent)
{
    const MutablePtr<Object> mesh = meshOf(5, {{0, 1, 2}, {2, 1, 3}});
    addDual(*mesh, Geometry::sPointComp, Geometry::sFaceVertex, "dual", "corners", "offsets");
    EXPECT_EQ(Geometry::getElementCount(*mesh, "dual"), 6u);
    EXPECT_EQ(*dataOf<uint>(*mesh, "offsets"), (Array<uint>{0, 1, 3, 5, 6, 6}));
    EXPECT_EQ(*dataOf<uint>(*mesh, "corners"), (Array<uint>{0, 1, 4, 2, 3, 5}));
    EXPECT_EQ(entryOf<String>(*mesh, "offsets", Geometry::sTarget), Geometry::sFaceVertex);
    EXPECT_EQ(entryOf<String>(*mesh, "corners", Geometry::sTarget), "dual");
    EXPECT_EQ(entryOf<uint>(*mesh, "offsets", Geometry::sDefault), 0u);
    EXPECT_EQ(entryOf<uint>(*mesh, "corners", Geometry::sDefault), kNone);
}

TEST(AddDual, WithoutAComponentNameStillMakesTheArraysAndWithoutFacesNothing)
{
    const MutablePtr<Object> mesh = meshOf(3, {{0, 1, 2}});
    const std::size_t before = mesh->propertyNames().size();
    addDual(*mesh, Geometry::sPointComp, "missing", "dual", "corners", "offsets");
    EXPECT_EQ(mesh->propertyNames().size(), before);

    addDual(*mesh, Geometry::sPointComp, Geometry::sFaceVertex, "", "corners", "offsets");
    EXPECT_EQ(mesh->propertyNames().size(), before + 2);
    EXPECT_EQ(*dataOf<uint>(*mesh, "corners"), (Array<uint>{0, 1, 2}));
}
