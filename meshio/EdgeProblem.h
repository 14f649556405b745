#pragma once

#include <Pelon/Array.h>
#include <Pelon/TypeRep.h>

#include <meshio/EdgeReport.h>

#include <cstddef>
#include <string>

namespace MeshIo {

/// Throws InvalidMesh, with the first places in words of the polygon mesh, where there are such
/// edges. `name` stands for the mesh in the message.
///
/// in     faceOffset     face count + 1 offsets of the polygon mesh
/// in     report         what findSameDirectionEdges said about its fan triangles
/// in     advice         what to do about it
void rejectSameDirection(const Pelon::Array<Pelon::uint>& faceOffset, const EdgeReport& report,
                         const std::string& name, const char* advice);

}  // namespace MeshIo
