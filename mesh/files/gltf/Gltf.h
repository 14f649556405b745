#pragma once

#include "base/Host.h"
#include "files/Input.h"
#include <TessaryMesh/Files.h>

#include <string>
#include <string_view>
#include <vector>

namespace TessaryMesh {

/// glTF 2.0, as one binary file (.glb) or as JSON (.gltf) with its numbers inside or in files beside it. What
/// the triangles of the scene hold and the properties that it becomes:
///
///   POSITION       points, moved as the nodes above say, which a warning tells
///   NORMAL         "normal", float3 on points, turned and brought to length 1 likewise
///   TEXCOORD_n     "texcoord", "texcoord_1" and so on, float2 on points
///   COLOR_n        "color", "color_1" and so on, float3 or float4 on points
///   _NAME          "NAME" on points: floats, and their vectors and matrices; integers as they are
///   materials      "material", string on faces: the name, or "material_NUMBER"
///   nodes          "object", string on faces, where a node with triangles has a name
///
/// Points of primitives that have the same accessors and the same node are one list. Strips and fans become
/// triangles. What else there is (lines, skins, animations, cameras, further attributes) is counted in warnings.
/// Packed or sparse numbers, and what a file says is required and this is not, are refused by name.
///
/// `path` stands for the file in messages; files beside it lie in its folder or below. Memory is
/// bounded by what the file holds, times the nodes that use it. Throws FileError, OutOfMemory, Cancelled.
MeshRead readGltf(const Input& input, const std::string& path);

/// "glTF" and a version, whatever version.
bool isGlb(std::string_view bytes);
/// JSON that begins like glTF.
bool isGltf(std::string_view bytes);

/// Write the properties above. Faces of more than three corners become the triangles of their fans. Where
/// corners of a point have different texture coordinates or normals, the point is written once for each of
/// them. Faces of one material in a row become a primitive. Returns a warning for all of that, and for what
/// has no place. Throws FileError where a .glb would be larger than 4 GB.
std::vector<std::string> writeGlb(const Object& mesh, OutputFile& output);
std::vector<std::string> writeGltf(const Object& mesh, OutputFile& output);

}  // namespace TessaryMesh
