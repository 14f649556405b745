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

/// Triangles over few points, so that edges are shared by any number of them in any direction, with
/// repeated points, isolated points and an incomplete last triangle.
inline NamedTriangles randomSoup(std::uint32_t seed)
{
    std::mt19937 random(seed);
    const uint pointCount = 3 + random() % 12;
    NamedTriangles mesh{"soup " + std::to_string(seed), pointCount, {}};
    const uint corners = random() % 60;
    for (uint c = 0; c < corners; ++c)
        mesh.faceVertex.push_back(random() % mesh.pointCount);
    return mesh;
}

/// A grid of triangles with holes and a random numbering of its points: manifold by construction.
inline NamedTriangles randomPatch(std::uint32_t seed)
{
    std::mt19937 random(seed);
    const uint side = 2 + random() % 12;
    NamedTriangles mesh{"patch " + std::to_string(seed), side * side, {}};
    std::vector<uint> name(mesh.pointCount);
    for (uint p = 0; p < mesh.pointCount; ++p) {
        name[p] = p;
        std::swap(name[p], name[random() % (p + 1)]);
    }
    for (uint y = 0; y + 1 < side; ++y)
        for (uint x = 0; x + 1 < side; ++x) {
            const uint a = y * side + x;
            if (random() % 6 == 0)
                continue;
            for (const uint p : {a, a + 1, a + side + 1, a, a + side + 1, a + side})
                mesh.faceVertex.push_back(name[p]);
        }
    return mesh;
}

/// `pages` triangles on the edge 0-1; bit i of `directions` turns page i round. Page i's third point
/// is 2 + i.
inline NamedTriangles book(uint pages, std::uint32_t directions)
{
    NamedTriangles mesh{"book of " + std::to_string(pages), 2 + pages, {}};
    for (uint i = 0; i < pages; ++i) {
        const bool turned = (directions >> i % 32 & 1) != 0;
        mesh.faceVertex.push_back(turned ? 1 : 0);
        mesh.faceVertex.push_back(turned ? 0 : 1);
        mesh.faceVertex.push_back(2 + i);
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
