#include "support/MeshBuilding.h"
#include "support/Random.h"
#include "support/Threads.h"

#include <Pelon/Job.h>
#include <TessaryMesh/Operations.h>

#include <chrono>
#include <cmath>
#include <thread>
#include <vector>

using namespace TestSupport;
using TessaryMesh::Cell;
using TessaryMesh::touchedCells;

namespace {

using Cells = std::vector<std::vector<int>>;

Cells listOf(const Array<Cell>& cells)
{
    Cells list;
    for (const Cell& c : cells)
        list.push_back({c.x, c.y, c.z});
    return list;
}

MutablePtr<Object> randomTriangles(std::uint32_t seed, uint count, float size)
{
    Random random(seed);
    const auto unit = [&random] { return static_cast<float>(random.unit()); };
    Array<float3> points;
    PolygonMesh triangles;
    for (uint t = 0; t < count; ++t) {
        const float3 at{unit(), unit(), unit()};
        for (int k = 0; k < 3; ++k)
            points.push_back({at.x + size * unit(), at.y + size * unit(), at.z + size * unit()});
        triangles.addFace(Array<uint>{3 * t, 3 * t + 1, 3 * t + 2});
    }
    return Geometry::makeMesh(points, triangles.faceOffset, triangles.faceVertex);
}

// Every cell near the mesh with every triangle.
Cells reference(const Object& mesh, double h, int reach)
{
    const auto points = dataOf<float3>(mesh, Geometry::sPointPosition);
    const auto half = static_cast<float>(h / 2);
    const auto middle = [h](int i) { return static_cast<float>((i + 0.5) * h); };
    Cells cells;
    for (int x = -reach; x < reach; ++x)
        for (int y = -reach; y < reach; ++y)
            for (int z = -reach; z < reach; ++z)
                for (std::size_t t = 0; t < points->size() / 3; ++t)
                    if (Tessary::intersect_triangle_with_axis_aligned_box(
                            (*points)[3 * t], (*points)[3 * t + 1], (*points)[3 * t + 2],
                            {middle(x), middle(y), middle(z)}, {half, half, half})) {
                        cells.push_back({x, y, z});
                        break;
                    }
    return cells;
}

TEST(Voxels, AreAllCellsThatSomeTriangleTouchesAtAnyThreadCount)
{
    for (const float size : {0.05f, 2.0f}) {
        const MutablePtr<Object> mesh = randomTriangles(1, size < 1 ? 60 : 5, size);
        const Cells expected = reference(*mesh, 0.25, 16);
        EXPECT_GT(expected.size(), 50u);
        atSeveralThreadCounts(
            [&](int) { EXPECT_EQ(listOf(touchedCells(*mesh, 0.25)), expected) << size; });
    }
}

TEST(Voxels, AreTheSameOfMeshesOfAnySize)
{
    const MutablePtr<Object> mesh = randomTriangles(1, 5, 2);
    const Cells expected = listOf(touchedCells(*mesh, 0.25));
    for (const int exponent : {-90, -50, 44, 70, 100}) {
        Array<float3> points = *dataOf<float3>(*mesh, Geometry::sPointPosition);
        for (float3& p : points)
            p = {std::ldexp(p.x, exponent), std::ldexp(p.y, exponent), std::ldexp(p.z, exponent)};
        const auto scaled = Geometry::makeMesh(points, *dataOf<uint>(*mesh, Geometry::sFaceOffset),
                                               *dataOf<uint>(*mesh, Geometry::sFaceVertex));
        EXPECT_EQ(listOf(touchedCells(*scaled, std::ldexp(0.25, exponent))), expected) << exponent;
    }
}

TEST(Voxels, TouchingCountsOnBothSidesOfTheGridsPlanes)
{
    const auto corner = Geometry::makeMesh(Array<float3>(3), {0, 3}, {0, 1, 2});
    EXPECT_EQ(touchedCells(*corner, 1).size(), 8u);
    EXPECT_EQ(touchedCells(*meshOf(3, {}), 1).size(), 0u);
}

TEST(Voxels, RefuseGridsThatAreTooLongOrTooFar)
{
    const auto mesh = Geometry::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 3}, {0, 1, 2});
    for (const double size : {1e-7, 1e-300, 0.0, -0.3, double{INFINITY}, double{NAN}})
        EXPECT_THROW(touchedCells(*mesh, size), TessaryMesh::ArgumentError) << size;
    EXPECT_THROW(TessaryMesh::makeCubes({{0, 0, 0}}, -1), TessaryMesh::ArgumentError);
}

// A single face with minutes of work.
TEST(Voxels, RefuseMoreCellsThanMemoryHoldsBeforeTheyAreLookedFor)
{
    const auto triangle = Geometry::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 3}, {0, 1, 2});
    EXPECT_THROW(touchedCells(*triangle, 1e-6), TessaryMesh::OutOfMemory);
}

TEST(Voxels, LeaveOffSoonWhereTheJobIsCancelled)
{
    const MutablePtr<Object> mesh =
        Geometry::makeMesh({{0, 0, 0}, {8000, 0, 0}, {0, 8000, 400}}, {0, 3}, {0, 1, 2});
    Pelon::Job job;
    const Pelon::JobScope scope(job);
    std::thread owner([&job] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        job.cancel();
    });
    EXPECT_THROW(touchedCells(*mesh, 1), std::runtime_error);
    owner.join();
}

TEST(Voxels, CubesAreClosedAndTurnedOutwards)
{
    const MutablePtr<Object> cubes = TessaryMesh::makeCubes({{-1, 0, 2}, {5, 5, 5}}, 0.5);
    const auto points = dataOf<float3>(*cubes, Geometry::sPointPosition);
    const auto corners = dataOf<uint>(*cubes, Geometry::sFaceVertex);
    ASSERT_EQ(corners->size(), 48u);
    EXPECT_EQ((*points)[0], (float3{-0.5f, 0, 1}));
    EXPECT_EQ((*points)[7], (float3{0, 0.5f, 1.5f}));
    float volume = 0;  // six times that of the pyramids from the origin, by fans of triangles
    for (std::size_t f = 0; f < 12; ++f)
        for (std::size_t k = 1; k < 3; ++k) {
            const float3& a = (*points)[(*corners)[4 * f]];
            const float3& b = (*points)[(*corners)[4 * f + k]];
            const float3& c = (*points)[(*corners)[4 * f + k + 1]];
            volume += a.x * (b.y * c.z - b.z * c.y) + a.y * (b.z * c.x - b.x * c.z) +
                      a.z * (b.x * c.y - b.y * c.x);
        }
    EXPECT_EQ(volume, 6 * 2 * 0.125f);
}

}  // namespace
