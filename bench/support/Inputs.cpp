#include "support/Inputs.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <random>
#include <utility>

namespace Bench {

using Korvane::Math::float3;

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

struct Turn {
    float cosine, sine;
};

// A point of the unit circle for `step` of `steps`, by quadrants of t -> (1 - t^2, 2t) / (1 + t^2):
// library functions may differ in the last bit.
Turn turnBy(uint step, uint steps)
{
    const double turns = 4.0 * step / steps;
    const double quadrant = std::floor(turns);
    const double t = turns - quadrant;
    const auto c = static_cast<float>((1 - t * t) / (1 + t * t));
    const auto s = static_cast<float>(2 * t / (1 + t * t));
    const Turn turned[] = {{c, s}, {-s, c}, {-c, -s}, {s, -c}};
    return turned[static_cast<int>(quadrant) % 4];
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
    // On fewer than three points each way round, triangles would share more than an edge.
    const uint side = static_cast<uint>(std::lround(std::sqrt(triangleCount / 2.0)));
    const Polygons quads = quadTorus(std::max(3u, side));
    Triangles mesh;
    mesh.pointCount = quads.pointCount;
    mesh.faceVertex.resize(std::size_t{6} * quads.faceCount());
    for (std::size_t f = 0; f < quads.faceCount(); ++f) {
        constexpr int split[] = {0, 1, 2, 0, 2, 3};
        for (int k = 0; k < 6; ++k)
            mesh.faceVertex[6 * f + k] = quads.faceVertex[4 * f + split[k]];
    }
    if (triangleCount < mesh.triangleCount() && side < 3)
        mesh.faceVertex.resize(std::size_t{3} * triangleCount);
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

Triangles triangleBook(uint triangleCount)
{
    Triangles mesh;
    mesh.pointCount = triangleCount + 2;
    mesh.faceVertex.resize(std::size_t{3} * triangleCount);
    for (uint t = 0; t < triangleCount; ++t) {
        mesh.faceVertex[3 * t] = t % 2;
        mesh.faceVertex[3 * t + 1] = 1 - t % 2;
        mesh.faceVertex[3 * t + 2] = t + 2;
    }
    return mesh;
}

Array<float3> torusPositions(uint side)
{
    Array<float3> positions(std::size_t{side} * side);
    for (uint row = 0; row < side; ++row)
        for (uint column = 0; column < side; ++column) {
            const Turn around = turnBy(row, side), across = turnBy(column, side);
            const float radius = 2 + across.cosine;
            positions[std::size_t{row} * side + column] = {radius * around.cosine,
                                                           radius * around.sine, across.sine};
        }
    return positions;
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
    for (std::size_t i = 0; i < count; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, byte + i, std::min<std::size_t>(8, count - i));
        hash = (hash ^ word) * 1099511628211u;
        hash ^= hash >> 32;  // multiplication alone never moves a bit down
    }
    return (hash ^ count) * 1099511628211u;
}

}  // namespace Bench
