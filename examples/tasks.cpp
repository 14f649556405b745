// What the mesh library does with a whole mesh, each in a few lines.
#include <Korvane/Geometry.h>
#include <Tessary/Primitives.h>
#include <TessaryMesh/Arrays.h>
#include <TessaryMesh/Check.h>
#include <TessaryMesh/Operations.h>

#include <iostream>

using namespace TessaryMesh;
using Korvane::Object;
using Korvane::Math::float3;

void checked(const Object& mesh)
{
    const ValidationReport report = validateMesh(mesh);
    for (const Problem& problem : report.problems)
        std::cout << problem.line() << '\n';
    std::cout << (report.hasErrors() ? "not valid\n" : "valid\n");
}

void triangles(const Object& mesh)
{
    const Result made = triangulate(mesh);  // UVs, normals, colours, materials follow
    const auto corners = cornersOf(*made.mesh);
    std::cout << corners.size() / 3 << " triangles, the last one of face "
              << (*made.parents.face)[corners.size() / 3 - 1] << '\n';
}

void quads(const Object& mesh)
{
    QuadOptions options;
    options.creaseAngle = 30;
    const QuadResult made = makeQuads(mesh, options);
    std::cout << cornersOf(*made.mesh).size() / 4 << " quads, " << made.creasedEdges
              << " creased edges\n";
}

void neighbours(const Object& mesh)
{
    const TriangleTables tables = makeTriangleTables(mesh);
    const auto& beside = *tables.adjacentTri;
    std::cout << tables.triEdges->size() / 2 << " edges; beside triangle 0: " << beside[0] << ' '
              << beside[1] << ' ' << beside[2] << '\n';
}

void samples(const Object& mesh)
{
    SampleOptions options;
    options.distance = 0.1f;  // or options.count
    const SampleResult made = sample(mesh, options);
    const auto colors = view<float3>(*made.mesh, kColor);  // blended, one for each sample
    std::cout << colors.size() << " samples of an area of " << made.area << '\n';
}

void around(const Object& mesh)
{
    const auto points = pointsOf(mesh);
    const Tessary::Sphere sphere = Tessary::computeBoundingSphere(*points.array());
    std::cout << "radius " << sphere.getRadius() << "; " << touchedCells(mesh, 0.1).size()
              << " cells of size 0.1\n";
}

int main()
{
    const auto mesh = makeDemoMesh(16);  // or readMesh("roof.obj").mesh
    checked(*mesh);
    triangles(*mesh);
    quads(*mesh);
    neighbours(*mesh);
    samples(*mesh);
    around(*mesh);
}
