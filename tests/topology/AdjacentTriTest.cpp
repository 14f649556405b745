#include "support/Cost.h"
#include "support/Threads.h"
#include "support/TriangleMeshes.h"

#include <Tessary/HalfEdge.h>
#include <Tessary/Topology.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <numeric>
#include <random>

using namespace TestSupport;

namespace {

Array<uint> adjacentTri(const NamedTriangles& mesh, const Dual& dual, Array<uint> old = {})
{
    Tessary::populateAdjacentTri(mesh.faceVertex, dual.offset, dual.corners, old);
    return old;
}

// One search per half-edge.
Array<uint> literalAdjacentTri(const NamedTriangles& mesh, const Dual& dual)
{
    Array<uint> adjacent(mesh.faceVertex.size());
    for (uint c = 0; c < mesh.faceVertex.size() / 3 * 3; ++c)
        adjacent[c] =
            Tessary::findAdjacentHalfEdge(mesh.faceVertex, dual.offset, dual.corners, {c, c / 3})
                .face;
    return adjacent;
}

}  // namespace

TEST(AdjacentTri, EqualsTheSearchOfEachHalfEdge)
{
    for (const NamedTriangles& mesh : triangleMeshes()) {
        SCOPED_TRACE(mesh.name);
        const Dual dual = dualOf(mesh);
        EXPECT_EQ(adjacentTri(mesh, dual), literalAdjacentTri(mesh, dual));
    }
}

TEST(AdjacentTri, FollowsTheOrderOfADualThatIsNotTheMeshsOwn)
{
    for (const NamedTriangles& mesh : {fan(200, 0), fan(2000, 7), book(200, 0x5A5A5A5A)}) {
        SCOPED_TRACE(mesh.name);
        Dual reversed = dualOf(mesh);
        for (uint p = 0; p < mesh.pointCount; ++p)
            std::reverse(reversed.corners.begin() + reversed.offset[p],
                         reversed.corners.begin() + reversed.offset[p + 1]);
        EXPECT_EQ(adjacentTri(mesh, reversed), literalAdjacentTri(mesh, reversed));

        Dual incomplete = dualOf(mesh);  // corners missing from a list, another twice
        for (std::size_t slot = 1; slot < incomplete.corners.size(); slot += 5)
            incomplete.corners[slot] = incomplete.corners[slot - 1];
        EXPECT_EQ(adjacentTri(mesh, incomplete), literalAdjacentTri(mesh, incomplete));

        Dual swapped = dualOf(mesh);  // two entries of the longest list
        const uint slot = swapped.offset[mesh.faceVertex[0]] + 150;
        std::swap(swapped.corners[slot], swapped.corners[slot + 1]);
        const Array<uint> expected = literalAdjacentTri(mesh, swapped);
        atSeveralThreadCounts([&](int) { EXPECT_EQ(adjacentTri(mesh, swapped), expected); });
    }
}

TEST(AdjacentTri, KeepsTheEntriesOfAnIncompleteLastTriangle)
{
    const NamedTriangles mesh{"", 4, {0, 1, 2, 2, 1, 3, 0}};
    const Array<uint> adjacent = adjacentTri(mesh, dualOf(mesh), Array<uint>(9, 5));
    EXPECT_EQ(adjacent, (Array<uint>{kNone, 1, kNone, 0, kNone, kNone, 5}));
    EXPECT_TRUE(adjacentTri({"", 1, {}}, dualOf({"", 1, {}}), {3}).empty());
}

// Few points for many triangles: all lists are long, most points follow twice and more, and some
// triangles have an edge to themselves. Points that are far apart are found in another way.
TEST(AdjacentTri, EqualsTheSearchWhereEdgesHaveManyTriangles)
{
    for (const uint spread : {1u, 50u})
        for (std::uint32_t seed = 0; seed < 20; ++seed) {
            SCOPED_TRACE(std::to_string(spread) + " between points, soup " + std::to_string(seed));
            std::mt19937 random(seed);
            NamedTriangles mesh{"", 20 * spread, Array<uint>(2000 + seed)};
            for (uint& point : mesh.faceVertex)
                point = random() % 20 * spread;
            const Dual dual = dualOf(mesh);
            EXPECT_EQ(adjacentTri(mesh, dual), literalAdjacentTri(mesh, dual));
        }
}

// Walked corner by corner, either would take 10^9 steps and more.
TEST(AdjacentTri, PointsWithManyCornersCostAboutAsMuchAsOthers)
{
    const uint triangles = 30000;
    Array<uint> expected;
    for (uint t = 0; t < triangles; ++t)
        for (const uint adjacent :
             {t == 0 ? kNone : t - 1, kNone, t + 1 < triangles ? t + 1 : kNone})
            expected.push_back(adjacent);
    const NamedTriangles wheel = fan(triangles, 0);
    NamedTriangles spread{"", 4 * wheel.pointCount, wheel.faceVertex};
    for (uint& point : spread.faceVertex)
        point *= 4;
    for (const NamedTriangles& mesh : {wheel, spread}) {
        const Dual dual = dualOf(mesh);
        atSeveralThreadCounts([&](int) { EXPECT_TRUE(adjacentTri(mesh, dual) == expected); });
    }

    const NamedTriangles pages = book(triangles, 0);  // one direction: no neighbour anywhere
    const Array<uint> adjacent = adjacentTri(pages, dualOf(pages));
    EXPECT_EQ(std::count(adjacent.begin(), adjacent.end(), kNone), 3 * triangles);

    const NamedTriangles others = scattered(triangles);
    const Dual few = dualOf(others);
    for (const NamedTriangles& mesh : {wheel, pages}) {
        const Dual many = dualOf(mesh);
        EXPECT_LT(costRatio([&] { adjacentTri(mesh, many); }, [&] { adjacentTri(others, few); }),
                  50);
    }
}

// The second build's offsets reach beyond its corners; with many points they wrap around and the last
// one lies inside again.
TEST(AdjacentTri, ADualThatWasBuiltTwiceIsNeverReadPastItsEnd)
{
    NamedTriangles mesh = fan(3000, 0);
    const Array<uint> once = dualOf(mesh).offset;
    const auto sum = std::accumulate(once.begin(), once.end(), std::uint64_t{0});
    for (const std::uint64_t more :
         {std::uint64_t{0}, (0x100000000u - sum) / mesh.faceVertex.size()}) {
        mesh.pointCount += static_cast<uint>(more);
        Dual dual = dualOf(mesh);
        Tessary::constructDualMesh(mesh.faceVertex, dual.offset, dual.corners);
        EXPECT_EQ(dual.offset[mesh.pointCount] > dual.corners.size(), more == 0);
        EXPECT_EQ(adjacentTri(mesh, dual), literalAdjacentTri(mesh, dual));
    }
}

TEST(AddAdjacentTri, StoresThePropertyBuildsAMissingDualAndUsesAnExistingOne)
{
    const auto add = [](Object& mesh, const String& faceVertex) {
        Tessary::addAdjacentTri(mesh, Geometry::sFaceVertexComp, faceVertex, "dual", "corners",
                                "offsets");
    };
    const MutablePtr<Object> mesh = meshOf(4, {{0, 1, 2}, {2, 1, 3}});
    const Array<String> before = mesh->propertyNames();
    add(*mesh, "missing");
    EXPECT_EQ(mesh->propertyNames(), before);

    add(*mesh, Geometry::sFaceVertex);
    const String name = "face_vertex_adjacent_tri";
    EXPECT_EQ(*dataOf<uint>(*mesh, name), (Array<uint>{kNone, 1, kNone, 0, kNone, kNone}));
    EXPECT_EQ(entryOf<String>(*mesh, name, Geometry::sTarget), Geometry::sFaceVertexComp);
    EXPECT_EQ(entryOf<uint>(*mesh, name, Geometry::sDefault), kNone);
    EXPECT_EQ(Geometry::getElementCount(*mesh, "dual"), 6u);

    // The dual's own arrays decide, not the faces that they came from.
    Geometry::addDataGeoProperty<uint>(*mesh, "offsets", Geometry::sFaceVertex,
                                       makeMutable<Array<uint>>(5));
    add(*mesh, Geometry::sFaceVertex);
    EXPECT_EQ(*dataOf<uint>(*mesh, name), Array<uint>(6, kNone));
    mesh->setProperty("offsets", String("no array"));
    const Array<String> names = mesh->propertyNames();
    add(*mesh, Geometry::sFaceVertex);
    EXPECT_EQ(mesh->propertyNames(), names);
}
