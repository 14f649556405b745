#include "peers/TriangulationRows.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/triangulate_faces.h>
#include <CGAL/Surface_mesh.h>

#include <vector>

namespace Bench {
namespace {

using Point = CGAL::Exact_predicates_inexact_constructions_kernel::Point_3;
using Mesh = CGAL::Surface_mesh<Point>;

std::shared_ptr<const Mesh> meshOf(const Polygons& in)
{
    const Array<Korvane::Math::float3> points = torusPoints(in.pointCount);
    const auto mesh = std::make_shared<Mesh>();
    for (const Korvane::Math::float3& p : points)
        mesh->add_vertex(Point(p.x, p.y, p.z));
    std::vector<Mesh::Vertex_index> ring;
    for (uint f = 0; f < in.faceCount(); ++f) {
        ring.clear();
        for (uint c = in.faceOffset[f]; c < in.faceOffset[f + 1]; ++c)
            ring.emplace_back(in.faceVertex[c]);
        mesh->add_face(ring);
    }
    return mesh;
}

// A copy with room for the edges and faces that come.
std::unique_ptr<Mesh> copyOf(const Mesh& mesh, const Polygons& in)
{
    const auto triangles = static_cast<uint>(in.faceVertex.size() - 2 * in.faceCount());
    auto copy = std::make_unique<Mesh>(mesh);
    copy->reserve(in.pointCount, in.pointCount + triangles, triangles);
    return copy;
}

// Cuts triangles off around the point at which the face's half-edge ends.
void splitIntoFans(Mesh& mesh)
{
    const auto faceCount = static_cast<uint>(mesh.number_of_faces());
    for (uint f = 0; f < faceCount; ++f) {
        const Mesh::Halfedge_index first = mesh.halfedge(Mesh::Face_index(f));
        while (mesh.next(mesh.next(mesh.next(first))) != first)
            CGAL::Euler::split_face(first, mesh.next(mesh.next(first)), mesh);
    }
}

void fill(Row& row, const Polygons& in, void (*split)(Mesh&), const char* peer,
          const char* difference)
{
    const auto source = meshOf(in);
    std::size_t others = 0;
    const Contender other =
        changer<Mesh>([&] { return copyOf(*source, in); }, split,
                      [&](const Mesh& mesh) { others = mesh.number_of_faces(); });
    compareBareTriangles(row, in, {peer, other, difference}, others);
}

void addRows()
{
    addPolygonRows(
        "computeTriangulation", "CGAL triangulate_faces", [](Row& row, const Polygons& in) {
            fill(
                row, in, [](Mesh& mesh) { CGAL::Polygon_mesh_processing::triangulate_faces(mesh); },
                "CGAL triangulate_faces",
                "chooses diagonals by positions and changes a whole mesh in place on "
                "one thread");
        });
    addPolygonRows("computeTriangulation", "CGAL split_face", [](Row& row, const Polygons& in) {
        fill(row, in, splitIntoFans, "CGAL split_face",
             "fans too, but changes a whole mesh in place on one thread");
    });
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
