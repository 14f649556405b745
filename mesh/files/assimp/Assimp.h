#pragma once

#include "base/Host.h"
#include "files/Input.h"
#include <TessaryMesh/Files.h>

#include <string>
#include <string_view>

namespace TessaryMesh {

/// Whatever else Debian's libassimp reads: FBX, COLLADA, 3DS, 3MF, Blender and others, where this library is
/// built with it. What it hands out and the properties that it becomes:
///
///   points and faces of each mesh, moved as the nodes above say; faces keep their size
///   normals, texture coordinates, colours   "normal", "texcoord" ("texcoord_1" ...), "color", on points
///   names of materials and nodes            "material" and "object", strings on faces
///
/// That library may merge, split or reorder points before we see them, which a warning says. `path`
/// stands for the file in messages; files beside it are not read.
MeshRead readAssimp(const Input& input, const std::string& path);

/// Whether it reads files whose names end so: "fbx", without the dot.
bool readsWithAssimp(std::string_view ending);

}  // namespace TessaryMesh
