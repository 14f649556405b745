#pragma once

// Triangle meshes to try topology on: any soup, and the shapes that trip neighbour searches.

#include "support/MeshBuilding.h"

#include <string>
#include <vector>

namespace TestSupport {

struct NamedTriangles {
    std::string name;
    uint pointCount;
    Array<uint> faceVertex;
};

struct Dual {
    Array<uint> offset;
    Array<uint> corners;
    bool operator==(const Dual& o) const { return offset == o.offset && corners == o.corners; }
};

/// As the library wants the arrays of a dual before it fills them.
inline Dual preparedDual(uint pointCount, std::size_t cornerCount)
{
    return {Array<uint>(std::size_t{pointCount} + 1), Array<uint>(cornerCount, kNone)};
}

inline Dual dualOf(const NamedTriangles& mesh)
{
    Dual dual = preparedDual(mesh.pointCount, mesh.faceVertex.size());
    Tessary::constructDualMesh(mesh.faceVertex, dual.offset, dual.corners);
    return dual;
}

struct TriEdges {
    Array<uint> pairs;
    std::string messages;
};

inline TriEdges triEdgesOf(const Array<uint>& faceVertex)
{
    TriEdges edges{{7, 7, 7}, {}};  // what the table held before must not matter
    testing::internal::CaptureStderr();
    Tessary::computeTriEdges(faceVertex, edges.pairs);
    edges.messages = testing::internal::GetCapturedStderr();
    return edges;
}

/// Triangles over few points, so that edges are shared by any number of them in any direction, with
/// repeated points, isolated points and an incomplete last triangle.
inline NamedTriangles randomSoup(std::uint32_t seed)
{
    std::mt19937 random(seed);
    const uint pointCount = 3 + random() % 12;
    NamedTriangles mesh{"soup " + std::to_string(seed), pointCount, Array<uint>(random() % 60)};
    for (uint& point : mesh.faceVertex)
        point = random() % pointCount;
    return mesh;
}

/// Polygons over a grid with holes, of three, four and six corners; manifold by construction, with
/// random names for its points.
inline PolygonMesh randomPolygonPatch(std::uint32_t seed)
{
    std::mt19937 random(seed);
    const uint side = 3 + random() % 8;
    PolygonMesh mesh;
    mesh.pointCount = side * side;
    for (uint y = 0; y + 1 < side; ++y)
        for (uint x = 0; x + 1 < side; ++x) {
            const uint a = y * side + x, b = a + side;
            const uint kind = random() % 5;
            if (kind == 0) {
                mesh.addFace(Array<uint>{a, a + 1, b + 1});
                mesh.addFace(Array<uint>{a, b + 1, b});
            } else if (kind == 1 && x + 2 < side) {
                mesh.addFace(Array<uint>{a, a + 1, a + 2, b + 2, b + 1, b});
                ++x;
            } else if (kind > 1) {
                mesh.addFace(Array<uint>{b + 1, b, a, a + 1});
            }
        }
    std::vector<uint> name(mesh.pointCount);
    for (uint p = 0; p < mesh.pointCount; ++p) {
        name[p] = p;
        std::swap(name[p], name[random() % (p + 1)]);
    }
    for (uint& point : mesh.faceVertex)
        point = name[point];
    return mesh;
}

/// The same as triangles.
inline NamedTriangles randomPatch(std::uint32_t seed)
{
    const PolygonMesh polygons = randomPolygonPatch(seed);
    NamedTriangles mesh{"patch " + std::to_string(seed), polygons.pointCount, {}};
    Array<uint> offset;
    Tessary::computeTriangulation(polygons.faceOffset, polygons.faceVertex, offset,
                                  mesh.faceVertex);
    return mesh;
}

/// `pages` triangles on the edge 0-1; bit i of `directions` turns page i round. Page i's third point
/// is 2 + i.
inline NamedTriangles book(uint pages, std::uint32_t directions)
{
    NamedTriangles mesh{"book of " + std::to_string(pages), 2 + pages, {}};
    for (uint i = 0; i < pages; ++i) {
        const uint start = directions >> i % 32 & 1;
        for (const uint p : {start, 1 - start, 2 + i})
            mesh.faceVertex.push_back(p);
    }
    return mesh;
}

/// Triangles around one point, which has the index `hub`.
inline NamedTriangles fan(uint triangles, uint hub)
{
    NamedTriangles mesh{"fan of " + std::to_string(triangles), triangles + 2, {}};
    const auto rim = [hub](uint i) { return i < hub ? i : i + 1; };
    for (uint t = 0; t < triangles; ++t)
        for (const uint p : {hub, rim(t), rim(t + 1)})
            mesh.faceVertex.push_back(p);
    return mesh;
}

/// As many triangles and points as the fan has, with at most three corners at a point.
inline NamedTriangles scattered(uint triangles)
{
    NamedTriangles mesh{"scattered", triangles + 2, Array<uint>(3 * std::size_t{triangles})};
    for (uint corner = 0; corner < mesh.faceVertex.size(); ++corner)
        mesh.faceVertex[corner] = static_cast<uint>(std::uint64_t{7919} * corner % mesh.pointCount);
    return mesh;
}

inline std::vector<NamedTriangles> triangleMeshes()
{
    std::vector<NamedTriangles> meshes;
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        meshes.push_back(randomSoup(seed));
        meshes.push_back(randomPatch(seed));
    }
    for (uint pages = 1; pages <= 4; ++pages)
        for (std::uint32_t directions = 0; directions < 1u << pages; ++directions)
            meshes.push_back(book(pages, directions));
    meshes.push_back(book(200, 0x5A5A5A5A));  // two points with long lists
    for (const uint hub : {0u, 100u, 201u})
        meshes.push_back(fan(200, hub));
    return meshes;
}

}  // namespace TestSupport
