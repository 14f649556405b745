// Edges of triangle meshes: computeTriEdges beside the meshes of CGAL and OpenMesh, which find the
// same edges while they build a whole mesh, face by face with add_face. Numbers of edges are compared.

#include "support/Inputs.h"
#include "support/Measure.h"

#include <Tessary/Topology.h>

#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>
#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>

#include <functional>
#include <memory>
#include <string>

using namespace Bench;

namespace {

using CgalMesh = CGAL::Surface_mesh<CGAL::Simple_cartesian<float>::Point_3>;
using OpenMeshMesh = OpenMesh::TriMesh_ArrayKernelT<>;

CgalMesh cgalMesh(const Triangles& in)
{
    CgalMesh mesh;
    mesh.reserve(in.pointCount, in.pointCount + in.triangleCount(), in.triangleCount());
    for (uint p = 0; p < in.pointCount; ++p)
        mesh.add_vertex({});
    const auto vertex = [&](std::size_t corner) {
        return CgalMesh::Vertex_index(in.faceVertex[corner]);
    };
    for (std::size_t c = 0; c < in.faceVertex.size(); c += 3)
        mesh.add_face(vertex(c), vertex(c + 1), vertex(c + 2));
    return mesh;
}

OpenMeshMesh openMeshMesh(const Triangles& in)
{
    OpenMeshMesh mesh;
    mesh.reserve(in.pointCount, in.pointCount + in.triangleCount(), in.triangleCount());
    for (uint p = 0; p < in.pointCount; ++p)
        mesh.add_vertex({0, 0, 0});
    const auto vertex = [&](std::size_t corner) {
        return OpenMeshMesh::VertexHandle(static_cast<int>(in.faceVertex[corner]));
    };
    for (std::size_t c = 0; c < in.faceVertex.size(); c += 3)
        mesh.add_face(vertex(c), vertex(c + 1), vertex(c + 2));
    return mesh;
}

void beside(benchmark::State& state, const Triangles& mesh,
            const std::function<std::size_t()>& peer)
{
    Array<uint> edges;
    const Contender kernel{[&] { Tessary::computeTriEdges(mesh.faceVertex, edges); }};
    kernel.run();
    const std::size_t edgeCount = edges.size() / 2;
    compare(state, kernel, {[&] { peer(); }}, 4 * (mesh.faceVertex.size() + edges.size()),
            edgeCount, peer());
}

void add(const std::string& input, Triangles triangles, bool withCgal)
{
    const auto mesh = std::make_shared<const Triangles>(std::move(triangles));
    const auto row = [&](const char* peer,
                         const std::function<std::size_t(const Triangles&)>& run) {
        benchmark::RegisterBenchmark(
            ("computeTriEdges beside " + std::string(peer) + "/" + input).c_str(),
            [mesh, run](benchmark::State& state) {
                beside(state, *mesh, [&] { return run(*mesh); });
            })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(5);
    };
    if (withCgal)
        row("CGAL Surface_mesh", [](const Triangles& in) {
            return static_cast<std::size_t>(cgalMesh(in).number_of_edges());
        });
    row("OpenMesh TriMesh", [](const Triangles& in) { return openMeshMesh(in).n_edges(); });
}

}  // namespace

int main(int argc, char** argv)
{
    for (const uint triangles : {1000000u, 8000000u})
        for (const PointOrder order : {PointOrder::Natural, PointOrder::Random})
            add("torus " + std::to_string(triangles) +
                    (order == PointOrder::Natural ? " natural" : " random"),
                triangleTorus(triangles, order), true);
    // CGAL's add_face walks around the hub for every triangle of the fan: minutes.
    add("fan 200000", triangleFan(200000), false);
    return run(argc, argv);
}
