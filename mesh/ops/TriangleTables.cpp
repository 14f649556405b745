#include <TessaryMesh/Operations.h>

#include <Tessary/Topology.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MeshArrays.h"
#include "check/EdgeReport.h"
#include "ops/FanParents.h"

namespace TessaryMesh {
namespace {

struct EdgeTable {
    MutablePtr<Array<uint>> corners;
    std::uint64_t split = 0;
};

EdgeTable edgeTableOf(const MeshArrays& mesh, const Array<uint>& triangles, bool splitEdges)
{
    const EdgeReport report = findSameDirectionEdges(triangles, mesh.points->size(), 3);
    if (!splitEdges)
        rejectSameDirection(*mesh.faceOffset, report);
    EdgeTable table{makeMutable<Array<uint>>(), report.count};
    if (report.count == 0)
        Tessary::computeTriEdges(triangles, *table.corners);
    else
        *table.corners = separatedTriEdges(triangles, mesh.points->size());
    throwIfCancelled();
    return table;
}

TriangleTables tablesOf(const Object& mesh, const TableOptions& options)
{
    const MeshArrays arrays(mesh);
    const auto faceVertex =
        makeMutable<Array<uint>>(fanTriangles(*arrays.faceOffset, *arrays.faceVertex));
    const EdgeTable edges =
        options.withEdges ? edgeTableOf(arrays, *faceVertex, options.splitEdges) : EdgeTable();
    const auto adjacentTri = makeMutable<Array<uint>>();
    const auto dualFaceOffset = makeMutable<Array<uint>>(arrays.points->size() + 1);
    const auto dualFaceVertex = makeMutable<Array<uint>>(faceVertex->size(), kNone);
    Tessary::constructDualMesh(*faceVertex, *dualFaceOffset, *dualFaceVertex);
    throwIfCancelled();
    Tessary::populateAdjacentTri(*faceVertex, *dualFaceOffset, *dualFaceVertex, *adjacentTri);
    throwIfCancelled();
    return {faceVertex,     edges.corners,  adjacentTri,
            dualFaceOffset, dualFaceVertex, facesOfTriangles(*arrays.faceOffset),
            edges.split};
}

}  // namespace

NamedArrays TriangleTables::arrays() const
{
    NamedArrays arrays = {namedArray("face_vertex", faceVertex, 3)};
    if (triEdges)
        arrays.push_back(namedArray("tri_edges", triEdges, 2));
    arrays.push_back(namedArray("face_vertex_adjacent_tri", adjacentTri, 3));
    arrays.push_back(namedArray("dual_face_offset", dualFaceOffset));
    arrays.push_back(namedArray("dual_face_vertex", dualFaceVertex));
    return arrays;
}

TriangleTables makeTriangleTables(const Object& mesh, const TableOptions& options)
{
    return guarded([&] { return tablesOf(mesh, options); });
}

}  // namespace TessaryMesh
