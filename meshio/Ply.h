#pragma once

#include <meshio/MeshFile.h>

#include <string>
#include <string_view>
#include <vector>

namespace MeshIo {

/// PLY, ASCII and binary of both byte orders. What a file holds and the properties that it becomes:
///
///   vertex x y z              point positions
///   vertex, face scalars      a property of the same name and type on points or faces
///   face vertex_indices       the faces (vertex_index is read too)
///   face list texcoord        two numbers per corner: a float2 property on corners
///   other lists               "NAME" on a component "NAME_component" of all the list's entries, and
///                             "NAME_offset", uint prefix offsets of the lists, which targets "NAME"
///
/// Vectors, matrices, bool and corner properties have no form of their own in PLY. They are written
/// as scalars or lists together with a header line `comment property ...` that says how to put them
/// together again; without that line scalars stay scalars. Elements other than vertex and face are
/// counted in a warning.
///
/// `name` stands for the file in messages. Throws FileError with the line or byte.
MeshRead readPly(std::string_view bytes, const std::string& name);

/// Writes every property that has a PLY form. Indexed properties are written value by value, which a
/// warning says; strings and 64-bit integers cannot be held, which a warning says too.
std::vector<std::string> writePly(const Korvane::Object& mesh, MeshFormat format,
                                  OutputFile& output);

}  // namespace MeshIo
