#pragma once

#include "base/Host.h"
#include "files/Input.h"
#include "files/ply/PlyFormat.h"
#include <TessaryMesh/Files.h>

#include <string>
#include <string_view>
#include <vector>

namespace TessaryMesh {

/// PLY, ASCII and binary of both byte orders. What a file holds and the properties that it becomes:
///
///   vertex x y z              point positions, rounded to float from other types (with a warning
///                             where that changes a value)
///   vertex, face scalars      a property of the same name and type on points or faces
///   face vertex_indices       the faces (vertex_index is read too), any integer type
///   face list texcoord        two numbers per corner: a float2 (double2) property on corners; a
///                             generic list, with a warning, where a face has another number
///   other lists               "NAME" on a component "NAME_component" of all the list's entries, and
///                             "NAME_offset", uint prefix offsets of the lists, which targets "NAME"
///                             and depends on the component, points or faces, whose lists they are
///
/// In ASCII a row is a line. Elements other than vertex and face, and bytes after the last element,
/// are counted in a warning; comments are passed over. A name that the mesh has already (a property
/// of points and of faces, say) becomes face_NAME or the like, with a warning. Interpolation modes
/// and defaults are not kept in a file: properties read have those of
/// Geometry::addDataGeoProperty.
///
/// Vectors, matrices, bool and corner properties have no form of their own in PLY: their numbers are
/// written as scalars or, for corners, as a list per face. Header lines, one for each property in the
/// mesh's order, say how to put them together again:
///
///   comment property OWNER TYPE NAME COLUMN...
///
///   OWNER    point, face or corner
///   TYPE     the element type (float3, bool, int2x2 and so on), or list for a list as above
///   NAME     the property's name in the mesh, in which blanks, control characters, % and bytes that
///            are not UTF-8 are written as % and two hexadecimal digits; % alone is the empty name
///   COLUMN   the PLY properties that hold it: one per scalar, the rows of a matrix one after the
///            other, or one list
///
/// for example `comment property point float3 normal nx ny nz`. Other programs see plain scalars:
/// nx ny nz, red green blue (alpha) and s t for "normal", "color" and, on points, "texcoord"; NAME_x
/// and so on, or numbers for more than four, for others. A line that does not fit the file's
/// properties, as after an edit, is ignored with a warning, and the scalars stay scalars.
///
/// `path` stands for the file in messages. Throws FileError with the line or byte; of the corners'
/// indices only negative ones are refused here. Memory is bounded by the size of `bytes`, whatever
/// the header promises. Throws Cancelled. Runs on all threads; text is read in blocks of lines, whose
/// size changes nothing.
MeshRead readPly(const Input& input, const std::string& path);
MeshRead readPly(const Input& input, const std::string& path, std::size_t blockSize);

/// Whether the first line is "ply", with a byte-order mark of UTF-8 before it or not.
bool isPly(std::string_view bytes);

/// Writes every property that has a PLY form. Indexed properties are written value by value, which a
/// warning says; strings and 64-bit integers cannot be held, which a warning says too. What was
/// written reads back equal but for what the warnings name (and the bits of not-a-number in ASCII).
/// `mesh` is a mesh whose corners and faces are without errors, or a point cloud.
std::vector<std::string> writePly(const Object& mesh, Ply::Encoding encoding, OutputFile& output);

}  // namespace TessaryMesh
