#include "peers/TriangulationRows.h"

#include <OpenMesh/Core/Mesh/PolyMesh_ArrayKernelT.hh>

#include <vector>

namespace Bench {
namespace {

struct Traits : OpenMesh::DefaultTraits {
    VertexAttributes(OpenMesh::Attributes::Normal);
    HalfedgeAttributes(OpenMesh::Attributes::TexCoord2D | OpenMesh::Attributes::PrevHalfedge);
};

using Mesh = OpenMesh::PolyMesh_ArrayKernelT<Traits>;

struct MeshWithIds {
    Mesh mesh;
    OpenMesh::FPropHandleT<int> id;
};

std::shared_ptr<const MeshWithIds> meshOf(const Polygons& in)
{
    const auto made = std::make_shared<MeshWithIds>();
    Mesh& mesh = made->mesh;
    mesh.add_property(made->id);
    const Array<Korvane::Math::float3> points = torusPoints(in.pointCount);
    for (uint p = 0; p < in.pointCount; ++p) {
        const auto point = mesh.add_vertex({points[p].x, points[p].y, points[p].z});
        const Korvane::Math::float3 normal = normalOf(p);
        mesh.set_normal(point, {normal.x, normal.y, normal.z});
    }
    std::vector<Mesh::VertexHandle> ring;
    for (uint f = 0; f < in.faceCount(); ++f) {
        ring.clear();
        for (uint c = in.faceOffset[f]; c < in.faceOffset[f + 1]; ++c)
            ring.emplace_back(static_cast<int>(in.faceVertex[c]));
        const auto face = mesh.add_face(ring);
        mesh.property(made->id, face) = static_cast<int>(f);
        std::size_t corner = in.faceOffset[f];
        for (const auto halfEdge : mesh.fh_range(face)) {
            const Korvane::Math::float2 uv = uvOf(corner++);
            mesh.set_texcoord2D(halfEdge, {uv.x, uv.y});
        }
    }
    return made;
}

// A copy with room for the edges and faces that come.
std::unique_ptr<MeshWithIds> copyOf(const MeshWithIds& source, const Polygons& in)
{
    const std::size_t triangles = in.faceVertex.size() - std::size_t{2} * in.faceCount();
    auto copy = std::make_unique<MeshWithIds>(source);
    copy->mesh.reserve(in.pointCount, in.pointCount + triangles, triangles);
    return copy;
}

void fill(Row& row, const Polygons& in, const char* peer)
{
    const auto source = meshOf(in);
    TriangleSummary others;
    const Contender other = changer<MeshWithIds>(
        [&] { return copyOf(*source, in); }, [](MeshWithIds& copy) { copy.mesh.triangulate(); },
        [&](const MeshWithIds& copy) {
            others = {static_cast<double>(copy.mesh.n_faces()), 0};
            for (const auto face : copy.mesh.faces())
                others.sumOfIds += copy.mesh.property(copy.id, face);
        });
    compareTriangleMeshes(row, in, CornerValues::With,
                          {peer, other, "changes a whole mesh in place on one thread"}, others);
}

void addRows()
{
    const char* const peer = "OpenMesh PolyMesh triangulate";
    addPolygonRows(
        "triangulatePolyMesh", peer, [=](Row& row, const Polygons& in) { fill(row, in, peer); },
        " with normal, id and uv");
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
