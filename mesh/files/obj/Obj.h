#pragma once

#include "base/Host.h"
#include "files/Input.h"
#include <TessaryMesh/Files.h>

#include <cstddef>
#include <string>
#include <vector>

namespace TessaryMesh {

/// Wavefront OBJ. What a file holds and the properties that it becomes:
///
///   v x y z           point positions
///   v x y z r g b     "color", float3 on points, where every point has one; else a warning
///   v x y z w         "weight", float on points, where one of them is not 1
///   vt u [v [w]]      "texcoord", float2 (float3 where a w occurs), indexed through the range
///                     property "texcoord_index" on corners; 0xFFFFFFFF where a corner has none
///   vn x y z          "normal", float3, indexed through "normal_index" the same way
///   f                 faces of any size; 1-based and negative (relative) indices. A positive index
///                     may run ahead of the values
///   o, g, usemtl      "object", "group", "material", strings on faces: the rest of the line, "#"
///                     included. Faces before the first one get the empty string
///   s                 "smoothing", uint on faces; "off" is 0, as on faces before the first one
///   mtllib            "material_library", a string of the object itself; several different ones
///                     are joined with blanks
///   t                 "subdivision_tags", a string of the object itself, a line each: creases, corners and
///                     holes for subdivision, which count points and faces from 0
///
/// A property exists only if the file has a line of its kind; texture coordinates and normals that
/// no face names are kept. Numbers are the nearest floats; "nan" and "inf" are read as such. Points,
/// lines, curves and other statements are counted in a warning each, lines that are no statement in
/// one for all of them. Names that are not UTF-8 are kept byte for byte, with a warning.
///
/// `path` stands for the file in messages. Throws FileError with the first line of the file that is
/// wrong; Cancelled. Memory is that of the mesh and 32 MiB a thread. Runs on all threads: the text is
/// read in blocks of whole statements, whose size changes nothing else.
MeshRead readObj(const Input& text, const std::string& path);

/// Throws FileError where the beginning of a file is no text.
void refuseNoText(std::string_view head, const std::string& path);
MeshRead readObj(const Input& text, const std::string& path, std::size_t blockSize);

/// Writes the properties above, found by these names and types, plain or indexed, on corners or on
/// points; numbers in the shortest form that reads back to the same bits. A mesh that was read from
/// OBJ reads back equal. Returns a warning for each property that the format cannot hold, names
/// with line breaks or outer blanks among them.
///
/// `mesh` is a mesh whose corners and faces are without errors, or a point cloud. Throws FileError
/// where the system refuses to write; Cancelled.
std::vector<std::string> writeObj(const Object& mesh, OutputFile& output);

}  // namespace TessaryMesh
