#include <TessaryMesh/Operations.h>

#include <Tessary/Topology.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MeshArrays.h"
#include "check/EdgeReport.h"
#include "ops/FanParents.h"

namespace TessaryMesh {
namespace {

MutablePtr<Array<uint>> trianglesOf(const MeshArrays& mesh)
{
    auto triangles = makeMutable<Array<uint>>(fanTriangles(*mesh.faceOffset, *mesh.faceVertex));
    rejectSameDirection(*mesh.faceOffset,
                        findSameDirectionEdges(*triangles, mesh.points->size(), 3));
    return triangles;
}

TriangleTables tablesOf(const Object& mesh)
{
    const MeshArrays arrays(mesh);
    const auto faceVertex = trianglesOf(arrays);
    const auto triEdges = makeMutable<Array<uint>>(), adjacentTri = makeMutable<Array<uint>>();
    Tessary::computeTriEdges(*faceVertex, *triEdges);
    throwIfCancelled();
    const auto dualFaceOffset = makeMutable<Array<uint>>(arrays.points->size() + 1);
    const auto dualFaceVertex = makeMutable<Array<uint>>(faceVertex->size(), kNone);
    Tessary::constructDualMesh(*faceVertex, *dualFaceOffset, *dualFaceVertex);
    throwIfCancelled();
    Tessary::populateAdjacentTri(*faceVertex, *dualFaceOffset, *dualFaceVertex, *adjacentTri);
    throwIfCancelled();
    return {faceVertex,     triEdges,       adjacentTri,
            dualFaceOffset, dualFaceVertex, facesOfTriangles(*arrays.faceOffset)};
}

}  // namespace

NamedArrays TriangleTables::arrays() const
{
    return {namedArray("face_vertex", faceVertex, 3), namedArray("tri_edges", triEdges, 2),
            namedArray("face_vertex_adjacent_tri", adjacentTri, 3),
            namedArray("dual_face_offset", dualFaceOffset),
            namedArray("dual_face_vertex", dualFaceVertex)};
}

TriangleTables makeTriangleTables(const Object& mesh)
{
    return guarded([&] { return tablesOf(mesh); });
}

}  // namespace TessaryMesh
