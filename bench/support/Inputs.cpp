#include "support/Inputs.h"

#include <cmath>
#include <numeric>
#include <random>
#include <utility>

namespace Bench {
namespace {

// Fisher-Yates with the generator's raw output: std::shuffle may differ between libraries.
Array<uint> randomPermutation(uint count)
{
    Array<uint> permutation(count);
    std::iota(permutation.begin(), permutation.end(), 0u);
    std::mt19937 random(1);
    for (uint i = count; i > 1; --i)
        std::swap(permutation[i - 1], permutation[random() % i]);
    return permutation;
}

}  // namespace

Polygons quadTorus(uint side)
{
    Polygons mesh;
    mesh.pointCount = side * side;
    mesh.faceOffset.resize(std::size_t{mesh.pointCount} + 1);
    mesh.faceVertex.resize(std::size_t{4} * mesh.pointCount);
    for (uint f = 0; f < mesh.pointCount; ++f) {
        const uint row = f / side * side;
        const uint nextRow = row + side < mesh.pointCount ? row + side : 0;
        const uint column = f - row;
        const uint nextColumn = column + 1 < side ? column + 1 : 0;
        uint* const corner = mesh.faceVertex.data() + std::size_t{4} * f;
        corner[0] = row + column;
        corner[1] = row + nextColumn;
        corner[2] = nextRow + nextColumn;
        corner[3] = nextRow + column;
        mesh.faceOffset[std::size_t{f} + 1] = 4 * (f + 1);
    }
    return mesh;
}

Polygons mixedPolygons(uint faceCount)
{
    std::mt19937 random(2);
    Polygons mesh;
    mesh.pointCount = faceCount + 8;
    mesh.faceOffset.push_back(0);
    for (uint f = 0; f < faceCount; ++f) {
        const uint corners = 3 + random() % 6;
        for (uint k = 0; k < corners; ++k)
            mesh.faceVertex.push_back(f + k);
        mesh.faceOffset.push_back(static_cast<uint>(mesh.faceVertex.size()));
    }
    return mesh;
}

Triangles triangleTorus(uint triangleCount, PointOrder order)
{
    const Polygons quads =
        quadTorus(static_cast<uint>(std::lround(std::sqrt(triangleCount / 2.0))));
    Triangles mesh;
    mesh.pointCount = quads.pointCount;
    mesh.faceVertex.resize(std::size_t{6} * quads.faceCount());
    for (std::size_t f = 0; f < quads.faceCount(); ++f) {
        constexpr int split[] = {0, 1, 2, 0, 2, 3};
        for (int k = 0; k < 6; ++k)
            mesh.faceVertex[6 * f + k] = quads.faceVertex[4 * f + split[k]];
    }
    if (order == PointOrder::Random) {
        const Array<uint> renamed = randomPermutation(mesh.pointCount);
        for (uint& point : mesh.faceVertex)
            point = renamed[point];
    }
    return mesh;
}

Triangles triangleFan(uint triangleCount)
{
    Triangles mesh;
    mesh.pointCount = triangleCount + 2;
    mesh.faceVertex.resize(std::size_t{3} * triangleCount);
    for (uint t = 0; t < triangleCount; ++t) {
        mesh.faceVertex[3 * t + 1] = t + 1;
        mesh.faceVertex[3 * t + 2] = t + 2;
    }
    return mesh;
}

Array<float> randomFloats(std::size_t count, std::uint32_t seed)
{
    std::mt19937 random(seed);
    Array<float> values(count);
    for (float& value : values)
        value = static_cast<float>(random() >> 8) * 0x1p-24f;
    return values;
}

std::uint64_t hashBytes(const void* bytes, std::size_t count, std::uint64_t hash)
{
    const auto* const byte = static_cast<const unsigned char*>(bytes);
    for (std::size_t i = 0; i < count; ++i)
        hash = (hash ^ byte[i]) * 1099511628211u;
    return hash;
}

}  // namespace Bench
