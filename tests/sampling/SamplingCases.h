#pragma once

// Meshes to sample, and the sampler's output as plain arrays.

#include "reference/PoissonSample.h"
#include "support/MeshBuilding.h"

#include <cmath>
#include <cstring>
#include <random>

namespace TestSupport {

using Mesh = Reference::TriangleMesh;
using Result = Reference::SampleResult;

/// In [-1, 1), the same on every machine.
inline float randomCoordinate(std::mt19937& random)
{
    return static_cast<float>(static_cast<std::int32_t>(random())) * 0x1p-31f;
}

inline float3 moved(const float3& p, float scale, const float3& by)
{
    return {p.x * scale + by.x, p.y * scale + by.y, p.z * scale + by.z};
}

/// `triangles` triangles over random points of the cube from -1 to 1; every fifth is a sliver, every
/// seventh repeats a corner.
inline Mesh randomTriangles(std::uint32_t seed, uint triangles)
{
    std::mt19937 random(seed);
    Mesh mesh;
    for (uint t = 0; t < triangles; ++t) {
        for (uint k = 0; k < 3; ++k) {
            const float x = randomCoordinate(random), y = randomCoordinate(random);
            mesh.points.push_back({x, y, randomCoordinate(random)});
            mesh.faceVertex.push_back(3 * t + k);
        }
        float3* const p = &mesh.points[std::size_t{3} * t];
        if (t % 5 == 4)
            p[2] = moved({p[0].x + p[1].x, p[0].y + p[1].y, p[0].z + p[1].z}, 0.5f, {0, 1e-5f, 0});
        if (t % 7 == 6)
            mesh.faceVertex[std::size_t{3} * t + 2] = 3 * t;
    }
    return mesh;
}

/// An octahedron whose faces are split `levels` times, points drawn out onto the sphere.
inline Mesh roundedOctahedron(uint levels)
{
    Mesh mesh;
    mesh.points = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
    for (uint octant = 0; octant < 8; ++octant)
        for (const uint p : {octant & 1, 2 + (octant >> 1 & 1), 4 + (octant >> 2)})
            mesh.faceVertex.push_back(p);
    const auto middle = [&mesh](uint a, uint b) {
        const float3 p = mesh.points[a], q = mesh.points[b];
        const float3 m{p.x + q.x, p.y + q.y, p.z + q.z};
        mesh.points.push_back(
            moved(m, 1.0f / std::sqrt((m.x * m.x + m.y * m.y) + m.z * m.z), {0, 0, 0}));
        return static_cast<uint>(mesh.points.size() - 1);
    };
    for (; levels > 0; --levels) {
        Array<uint> split;
        for (std::size_t t = 0; t < mesh.faceVertex.size(); t += 3) {
            const uint a = mesh.faceVertex[t], b = mesh.faceVertex[t + 1],
                       c = mesh.faceVertex[t + 2];
            const uint ab = middle(a, b), bc = middle(b, c), ca = middle(c, a);
            for (const uint p : {a, ab, ca, ab, b, bc, ca, bc, c, ab, bc, ca})
                split.push_back(p);
        }
        mesh.faceVertex = split;
    }
    return mesh;
}

inline Mesh moved(Mesh mesh, float scale, const float3& by)
{
    for (float3& p : mesh.points)
        p = moved(p, scale, by);
    return mesh;
}

inline MutablePtr<Object> objectOf(const Mesh& mesh)
{
    Array<uint> faceOffset;
    for (uint c = 0; c <= mesh.faceVertex.size(); c += 3)
        faceOffset.push_back(c);
    return Geometry::makeMesh(mesh.points, faceOffset, mesh.faceVertex);
}

inline MutablePtr<Object> sampled(const Mesh& mesh, float distance, uint seed)
{
    const MutablePtr<Object> out = Korvane::createObject();
    Tessary::poissonSampleTriMesh(distance, seed, *objectOf(mesh), *out, nullptr);
    return out;
}

/// Fails the test where `out` lacks an array.
inline Result resultOf(const Object& out)
{
    const auto in = [](const auto& array) { return array ? *array : throw "an array is missing"; };
    return {{in(dataOf<float>(out, "weight")), in(dataOf<float3>(out, Geometry::sPointPosition)),
             in(dataOf<uint>(out, "face_id"))},
            in(dataOf<uint>(out, "face_sample_offset"))};
}

template <class T>
std::string bytesOf(const Array<T>& array)
{
    return std::string(reinterpret_cast<const char*>(array.data()), array.size() * sizeof(T));
}

inline std::string bytesOf(const Result& result)
{
    return bytesOf(result.samples.positions) + bytesOf(result.samples.weights) +
           bytesOf(result.samples.faceIds) + bytesOf(result.faceOffset);
}

/// Bit for bit, NaNs too.
inline void expectSame(const Result& result, const Result& expected)
{
    ASSERT_EQ(result.samples.faceIds, expected.samples.faceIds);
    EXPECT_TRUE(bytesOf(result) == bytesOf(expected));
}

}  // namespace TestSupport
