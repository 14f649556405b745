#include "support/FileMeshes.h"

#include <Korvane/Geometry.h>
#include <Tessary/Triangulation.h>
#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

#include <filesystem>

namespace Bench {
namespace {

const char* const kBunny = "/usr/share/glmark2/models/bunny.obj";

}  // namespace

Polygons polygonsOf(const Korvane::Object& mesh)
{
    namespace Geometry = Korvane::Geometry;
    return {Geometry::getElementCount(mesh, Geometry::sPointComp),
            *Geometry::dataArray<uint>(mesh, Geometry::sFaceOffset),
            *Geometry::dataArray<uint>(mesh, Geometry::sFaceVertex)};
}

Polygons demoPolygons(uint resolution)
{
    return polygonsOf(*TessaryMesh::makeDemoMesh(resolution));
}

Triangles trianglesOf(const Polygons& mesh)
{
    Array<uint> offsets;
    Triangles triangles;
    triangles.pointCount = mesh.pointCount;
    Tessary::computeTriangulation(mesh.faceOffset, mesh.faceVertex, offsets, triangles.faceVertex);
    return triangles;
}

bool hasBunny()
{
    return std::filesystem::exists(kBunny);
}

Polygons bunny()
{
    return polygonsOf(*TessaryMesh::readMesh(kBunny).mesh);
}

}  // namespace Bench
