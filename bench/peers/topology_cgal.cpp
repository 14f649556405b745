#include "peers/TopologyRows.h"

#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>

namespace Bench {
namespace {

using Point = CGAL::Simple_cartesian<float>::Point_3;
using Mesh = CGAL::Surface_mesh<Point>;

void addRows()
{
    addEdgeRows<Mesh>(
        {"CGAL Surface_mesh", "builds a whole mesh with add_face on one thread", 8000000,
         [](const Triangles& in) {
             return [&in] { return meshByAddFace<Mesh, Point, Mesh::Vertex_index>(in); };
         },
         [](const Mesh& mesh) -> std::size_t { return mesh.number_of_edges(); }});
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
