#include "support/Cost.h"
#include "support/Threads.h"
#include "support/TriangleMeshes.h"

#include <Tessary/Topology.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace TestSupport;
using Tessary::addDual;
using Tessary::constructDualMesh;

namespace {

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

}  // namespace

TEST(DualMesh, EqualsTheLiteralSearchForEveryEntryState)
{
    EXPECT_TRUE(dualOf({"", 2, {}}) == preparedDual(2, 0));
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const PolygonMesh mesh = randomPolygons(seed, 1 + random() % 20);
        Dual dual = preparedDual(mesh.pointCount, mesh.faceVertex.size());
        uint& anyOffset = dual.offset[random() % dual.offset.size()];
        if (seed % 5 == 1)
            dual.corners[random() % dual.corners.size()] = 3;
        else if (seed % 5 == 2)
            dual.corners.resize(dual.corners.size() / 2);
        else if (seed % 5 > 2)
            anyOffset = seed % 5 == 3 ? random() % 9 : 0u - random() % 30;
        Dual expected = dual;
        for (const char* build : {"first", "over the first"}) {
            literalDual(mesh.faceVertex, expected);
            constructDualMesh(mesh.faceVertex, dual.offset, dual.corners);
            EXPECT_EQ(dual.offset, expected.offset) << build;
            EXPECT_EQ(dual.corners, expected.corners) << build;
        }
    }
}

// In any order, and along the points but for a few strays; a taken slot leaves nothing but the search.
TEST(DualMesh, OfManyCornersEqualsTheLiteralSearchOnAnyNumberOfThreads)
{
    const uint pointCount = 200000, size = 1200001;
    std::mt19937 random(7);
    for (const bool inOrder : {false, true}) {
        Array<uint> faceVertex(size);
        for (uint c = 0; c < size; ++c)
            faceVertex[c] = inOrder && c % 997 > 0
                                ? std::min<uint>(c / 6 + random() % 40, pointCount - 1)
                                : random() % pointCount;
        for (const bool isTaken : {false, true}) {
            Dual prepared = preparedDual(pointCount, size);
            prepared.corners[size - 1] = isTaken ? 5 : kNone;
            Dual expected = prepared;
            literalDual(faceVertex, expected);
            atSeveralThreadCounts([&](int) {
                Dual dual = prepared;
                constructDualMesh(faceVertex, dual.offset, dual.corners);
                EXPECT_TRUE(dual.offset == expected.offset) << inOrder << isTaken;
                EXPECT_TRUE(dual.corners == expected.corners) << inOrder << isTaken;
            });
        }
    }
}

// Quadratic in the valence, the fan would take thousands of times as long.
TEST(DualMesh, AFanCostsAboutAsMuchAsScatteredTriangles)
{
    const uint triangles = 100000;
    // With one slot taken, every corner searches for a free one.
    for (const uint firstSlot : {kNone, 0u}) {
        const auto build = [&](const NamedTriangles& mesh) {
            Dual dual = preparedDual(mesh.pointCount, mesh.faceVertex.size());
            dual.corners[0] = firstSlot;
            constructDualMesh(mesh.faceVertex, dual.offset, dual.corners);
            EXPECT_EQ(dual.offset[mesh.pointCount], 3 * triangles);
        };
        const NamedTriangles wheel = fan(triangles, 0), others = scattered(triangles);
        EXPECT_LT(costRatio([&] { build(wheel); }, [&] { build(others); }), 20);
    }
}

//  2---3     triangles 0 1 2 and 2 1 3, and a point 4 of no face
//  | \ |
//  0---1
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
