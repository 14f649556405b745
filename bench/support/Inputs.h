#pragma once

// Meshes of a chosen size, made from a seed: the same on every machine.

#include <Korvane/Math.h>
#include <Pelon/Array.h>
#include <Pelon/TypeRep.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Bench {

using Pelon::Array;
using Pelon::uint;

struct Polygons {
    uint pointCount = 0;
    Array<uint> faceOffset;
    Array<uint> faceVertex;

    uint faceCount() const { return static_cast<uint>(faceOffset.size() - 1); }
};

/// A grid of side * side quads, closed to a torus.
Polygons quadTorus(uint side);

/// `faceCount` polygons of 3 to 8 corners, each over neighbouring points.
Polygons mixedPolygons(uint faceCount);

struct Triangles {
    uint pointCount = 0;
    Array<uint> faceVertex;

    uint triangleCount() const { return static_cast<uint>(faceVertex.size() / 3); }
};

enum class PointOrder { Natural, Random };

/// A torus grid of about `triangleCount` triangles; below 18, so many of the smallest one's.
Triangles triangleTorus(uint triangleCount, PointOrder order);

/// `triangleCount` triangles around point 0.
Triangles triangleFan(uint triangleCount);

/// `triangleCount` triangles on one edge, which run along it in alternating directions.
Triangles triangleBook(uint triangleCount);

/// Positions on a torus for the points of a grid of quadTorus(side), on every machine the same bits.
Array<Korvane::Math::float3> torusPositions(uint side);

/// Keeps the input made last: rows that share one follow each other, and large ones are not kept
/// longer than that.
template <class Input>
class Latest {
public:
    template <class Make>
    Input& get(const std::string& key, const Make& make)
    {
        if (!m_input || m_key != key) {
            m_input.reset();
            m_input = std::make_unique<Input>(make());
            m_key = key;
        }
        return *m_input;
    }

private:
    std::string m_key;
    std::unique_ptr<Input> m_input;
};

/// Values in [0, 1).
Array<float> randomFloats(std::size_t count, std::uint32_t seed);

/// FNV-1a over 8 bytes at a time, to tell outputs apart.
std::uint64_t hashBytes(const void* bytes, std::size_t count,
                        std::uint64_t hash = 14695981039346656037u);

template <class T>
std::uint64_t hashOf(const Array<T>& array, std::uint64_t hash = 14695981039346656037u)
{
    return hashBytes(array.data(), array.size() * sizeof(T), hash);
}

}  // namespace Bench
