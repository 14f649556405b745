#pragma once

#include <TessaryMesh/Errors.h>

#include "base/Host.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Mesh files to and from host objects, keeping polygons of any size, the order of points, corners
/// and faces, and every attribute. What each format holds, and under which property names, stands
/// in Obj.h and Ply.h.
namespace TessaryMesh {

class OutputFile;

enum class MeshFormat { Obj, PlyBinary, PlyAscii, PlyBinaryBigEndian };

struct MeshRead {
    MutablePtr<Object> mesh;
    MeshFormat format;
    std::vector<std::string> warnings;  ///< one line each: what the file has and the mesh has not
};

/// Reads a mesh file, "-" meaning standard input, and validates it.
///
/// The format is recognised by the content (a PLY file says so in its first line), not by the name.
/// Throws FileError for a file that cannot be read or parsed, InvalidMesh (see Validate.h) for one
/// whose mesh has errors, std::runtime_error when the caller's job is cancelled.
MeshRead readMesh(const std::string& path);

/// The same without validation, for callers that want to look at the mesh's errors themselves.
MeshRead readMeshUnchecked(const std::string& path);

/// The format that a file name's ending asks for (.obj, .ply), or none.
std::optional<MeshFormat> formatOfName(std::string_view path);

/// Writes the mesh, or a point cloud without face arrays, into `output`, which the caller commits.
/// Returns a warning line for each thing that the format cannot hold. A mesh with errors is not
/// written: InvalidMesh.
std::vector<std::string> writeMesh(const Object& mesh, MeshFormat format, OutputFile& output);

}  // namespace TessaryMesh
