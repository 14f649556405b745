#pragma once

#include <meshio/MeshFile.h>

#include <string>
#include <string_view>
#include <vector>

namespace MeshIo {

/// Wavefront OBJ. What a file holds and the properties that it becomes:
///
///   v x y z           point positions
///   v x y z r g b     "color", float3 on points (when every point has one)
///   vt u v [w]        "texcoord", float2 (float3 where a w occurs), indexed through the range
///                     property "texcoord_index" on corners; 0xFFFFFFFF where a corner has none
///   vn x y z          "normal", float3, indexed through "normal_index" the same way
///   f                 faces of any size; 1-based and negative (relative) indices
///   o, g, usemtl      "object", "group", "material", strings on faces
///   s                 "smoothing", uint on faces; 0 is off
///   mtllib            "material_library", a string of the object itself
///
/// A property exists only if the file has a line of its kind. Points, lines, curves and other
/// statements are counted in a warning each.
///
/// `name` stands for the file in messages. Throws FileError with the line.
MeshRead readObj(std::string_view text, const std::string& name);

/// Writes the properties above, found by these names and types, plain or indexed, on corners or on
/// points; numbers in the shortest form that reads back to the same bits. Returns a warning for
/// each property that the format cannot hold.
std::vector<std::string> writeObj(const Korvane::Object& mesh, OutputFile& output);

}  // namespace MeshIo
