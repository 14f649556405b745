#include "peers/PeerInputs.h"

#include <Korvane/Geometry.h>

#include <cmath>

using Korvane::Math::float2;
using Korvane::Math::float3;
namespace Geometry = Korvane::Geometry;

namespace Bench {
namespace {

uint sideOf(uint pointCount)
{
    return static_cast<uint>(std::lround(std::sqrt(pointCount)));
}

// The polygons that the row's quads [column, column + width) become: a ring along the lower points
// and back along the upper ones.
void addRing(Polygons& mesh, uint side, uint row, uint column, uint width)
{
    const uint nextRow = row + 1 < side ? row + 1 : 0;
    for (uint c = column; c <= column + width; ++c)
        mesh.faceVertex.push_back(row * side + c % side);
    for (uint c = column + width + 1; c-- > column;)
        mesh.faceVertex.push_back(nextRow * side + c % side);
    mesh.faceOffset.push_back(static_cast<uint>(mesh.faceVertex.size()));
}

void addTrianglePair(Polygons& mesh, uint side, uint row, uint column)
{
    const uint nextRow = row + 1 < side ? row + 1 : 0;
    const uint a = row * side + column, b = row * side + (column + 1) % side;
    const uint c = nextRow * side + (column + 1) % side, d = nextRow * side + column;
    for (const uint point : {a, b, c, a, c, d})
        mesh.faceVertex.push_back(point);
    mesh.faceOffset.push_back(static_cast<uint>(mesh.faceVertex.size() - 3));
    mesh.faceOffset.push_back(static_cast<uint>(mesh.faceVertex.size()));
}

}  // namespace

Polygons polygonTorus(uint quadCount)
{
    const uint side = sideOf(quadCount);
    Polygons mesh;
    mesh.pointCount = side * side;
    mesh.faceOffset.push_back(0);
    uint kind = 0;
    for (uint row = 0; row < side; ++row)
        for (uint column = 0; column < side; ++kind) {
            const uint width = std::min(std::max(kind % 4, 1u), side - column);
            if (kind % 4 == 0)
                addTrianglePair(mesh, side, row, column);
            else
                addRing(mesh, side, row, column, width);
            column += width;
        }
    return mesh;
}

Array<float3> torusPoints(uint pointCount)
{
    return torusPositions(sideOf(pointCount));
}

float2 uvOf(std::size_t corner)
{
    return {static_cast<float>(corner % 1021) / 1021, static_cast<float>(corner % 509) / 509};
}

float3 normalOf(std::size_t point)
{
    return {static_cast<float>(point % 1021) / 1021, static_cast<float>(point % 509) / 509, 1};
}

Pelon::MutablePtr<Korvane::Object> meshObject(const Polygons& mesh, CornerValues cornerValues)
{
    const auto object =
        Geometry::makeMesh(torusPoints(mesh.pointCount), mesh.faceOffset, mesh.faceVertex);
    const auto normals = Pelon::makeMutable<Array<float3>>(mesh.pointCount);
    for (std::size_t p = 0; p < normals->size(); ++p)
        (*normals)[p] = normalOf(p);
    Geometry::addDataGeoProperty<float3>(*object, "normal", Geometry::sPointComp, normals);
    const auto ids = Pelon::makeMutable<Array<int>>(mesh.faceCount());
    for (uint f = 0; f < mesh.faceCount(); ++f)
        (*ids)[f] = static_cast<int>(f);
    Geometry::addDataGeoProperty<int>(*object, "id", Geometry::sFaceComp, ids);
    if (cornerValues == CornerValues::Without)
        return object;
    const auto uvs = Pelon::makeMutable<Array<float2>>(mesh.faceVertex.size());
    for (std::size_t c = 0; c < uvs->size(); ++c)
        (*uvs)[c] = uvOf(c);
    Geometry::addDataGeoProperty<float2>(*object, "uv", Geometry::sFaceVertexComp, uvs);
    return object;
}

}  // namespace Bench
