#include "peers/Open3DInputs.h"
#include "peers/TopologyRows.h"

#include <open3d/geometry/HalfEdgeTriangleMesh.h>

#include <algorithm>

namespace Bench {
namespace {

using Mesh = open3d::geometry::HalfEdgeTriangleMesh;

std::function<std::unique_ptr<Mesh>()> prepare(const Triangles& in)
{
    const auto mesh = std::make_shared<const open3d::geometry::TriangleMesh>(
        open3dMesh(torusPoints(in.pointCount), in.faceVertex));
    return
        [mesh] { return std::make_unique<Mesh>(std::move(*Mesh::CreateFromTriangleMesh(*mesh))); };
}

std::size_t edgeCount(const Mesh& mesh)
{
    const auto& all = mesh.half_edges_;
    const auto boundary = std::count_if(
        all.begin(), all.end(), [](const Mesh::HalfEdge& edge) { return edge.IsBoundary(); });
    return (all.size() + static_cast<std::size_t>(boundary)) / 2;
}

void addRows()
{
    addEdgeRows<Mesh>(
        {"Open3D HalfEdgeTriangleMesh",
         "copies the mesh and removes duplicates and builds a whole mesh on one thread", 1000000,
         prepare, edgeCount});
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
