#pragma once

#include "base/Host.h"

#include <string>

namespace TessaryMesh {

class OutputFile;

/// The triangles of a mesh and what lies beside them, as the kernels lay it out (see
/// Tessary/Topology.h). 0xFFFFFFFF stands for none.
struct TriangleTables {
    Array<uint> faceVertex;   ///< 3 points per triangle
    Array<uint> triEdges;     ///< 2 corners per edge
    Array<uint> adjacentTri;  ///< 3 triangles per triangle
    Array<uint> dualFaceOffset, dualFaceVertex;
};

/// Makes the tables of the fan triangles of a mesh without errors (see Validate.h). `name` stands
/// for the mesh in messages. Throws InvalidMesh, with the first places, where there is no edge table;
/// std::runtime_error when the caller's job is cancelled.
TriangleTables makeTriangleTables(const Object& mesh, const std::string& name);

/// Write the tables as "face_vertex" and "face_vertex_adjacent_tri", rows of 3 for each triangle,
/// "tri_edges", rows of 2 for each edge, "dual_face_offset" and "dual_face_vertex": into an .npz file
/// of 32-bit unsigned integers, or a JSON object in which null stands for none.
void writeNpz(const TriangleTables& tables, OutputFile& output);
void writeJson(const TriangleTables& tables, OutputFile& output);

}  // namespace TessaryMesh
