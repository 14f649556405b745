#include "support/SamplingInputs.h"

#include <Korvane/Geometry.h>

#include <cmath>

using Korvane::Math::float3;
namespace Geometry = Korvane::Geometry;

namespace Bench {
namespace {

// Square roots are the same on every machine, sines are not.
float3 onUnitSphere(const float3& p)
{
    const float length = std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
    return {p.x / length, p.y / length, p.z / length};
}

// One face of the cube, on the side `sign` of axis `axis`.
void addCubeFace(Surface& surface, uint side, int axis, float sign)
{
    const auto first = static_cast<uint>(surface.points.size());
    const auto share = [side](uint i) {
        return 2 * static_cast<float>(i) / static_cast<float>(side) - 1;
    };
    for (uint row = 0; row <= side; ++row)
        for (uint column = 0; column <= side; ++column) {
            float3 p;
            (&p.x)[axis] = sign;
            (&p.x)[(axis + 1) % 3] = share(column);
            (&p.x)[(axis + 2) % 3] = sign * share(row);
            surface.points.push_back(onUnitSphere(p));
        }
    for (uint row = 0; row < side; ++row)
        for (uint column = 0; column < side; ++column) {
            const uint a = first + row * (side + 1) + column, b = a + side + 1;
            for (const uint point : {a, a + 1, b + 1, a, b + 1, b})
                surface.faceVertex.push_back(point);
        }
}

}  // namespace

Surface sphereSurface(uint triangleCount)
{
    const auto side = static_cast<uint>(std::lround(std::sqrt(triangleCount / 12.0)));
    Surface surface;
    for (const int axis : {0, 1, 2})
        for (const float sign : {-1.0f, 1.0f})
            addCubeFace(surface, side, axis, sign);
    return surface;
}

Surface torusSurface(uint triangleCount)
{
    const auto side = static_cast<uint>(std::lround(std::sqrt(triangleCount / 2.0)));
    return {torusPositions(side), triangleTorus(triangleCount, PointOrder::Natural).faceVertex};
}

Pelon::MutablePtr<Korvane::Object> objectOf(const Surface& surface)
{
    Array<uint> faceOffset(surface.faceVertex.size() / 3 + 1);
    for (std::size_t t = 0; t < faceOffset.size(); ++t)
        faceOffset[t] = static_cast<uint>(3 * t);
    return Geometry::makeMesh(surface.points, faceOffset, surface.faceVertex);
}

float areaOf(const Surface& surface)
{
    return Reference::totalArea(Reference::triangleAreas(surface));
}

float distanceLeaving(std::uint64_t samples, float area)
{
    constexpr float kSamplesPerSquare = 0.567f;  // of the distance's length; found by trial
    return std::sqrt(kSamplesPerSquare * area / static_cast<float>(samples));
}

std::uint64_t hashOfSamples(const Korvane::Object& cloud)
{
    std::uint64_t hash = hashOf(*Geometry::dataArray<uint>(cloud, "face_sample_offset"));
    hash = hashOf(*Geometry::dataArray<uint>(cloud, "face_id"), hash);
    hash = hashOf(*Geometry::dataArray<float>(cloud, "weight"), hash);
    return hashOf(*Geometry::dataArray<float3>(cloud, Geometry::sPointPosition), hash);
}

}  // namespace Bench
