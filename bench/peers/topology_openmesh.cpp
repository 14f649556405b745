#include "peers/TopologyRows.h"

#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>

namespace Bench {
namespace {

using Mesh = OpenMesh::TriMesh_ArrayKernelT<>;

void addRows()
{
    addEdgeRows<Mesh>(
        {"OpenMesh TriMesh", "builds a whole mesh with add_face on one thread", 8000000,
         [](const Triangles& in) {
             return [&in] { return meshByAddFace<Mesh, Mesh::Point, Mesh::VertexHandle>(in); };
         },
         [](const Mesh& mesh) { return mesh.n_edges(); }, true});
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
