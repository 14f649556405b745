#pragma once

#include "base/Host.h"
#include "files/Input.h"
#include "files/npz/ZipWriter.h"
#include <TessaryMesh/Files.h>

#include <string>
#include <string_view>
#include <vector>

/// NumPy's .npz: a zip archive with a .npy file for each array. Numbers and bool keep their type; rows,
/// vectors and matrices are dimensions; texts are rows of characters.
///
/// A mesh is these arrays, of which a point cloud lacks the two of faces:
///
///   position     float, a row of 3 for each point
///   face_offset  uint, one more than there are faces: face f has the corners offset[f] to offset[f + 1]
///   face_vertex  uint, the point of each corner
///   NAME         the values of property NAME; the indices of range property NAME
///   tessary      bytes of JSON: what no array says. Where it is missing, names and counts decide
///
/// "tessary" is an object {"version": 1, "entries": [...]} with an entry for each name in the mesh, in the
/// mesh's order:
///
///   {"name": N, "kind": "values", "array": A, "on": C}    and, where they are not those of a new property,
///       "interpolation": 0 or 2, "default": A, "depends_on": [C...], and "offsets": A, in which case the
///       array holds the bytes of texts and `offsets` where each begins
///   {"name": N, "kind": "indices", "array": A, "on": C}
///   {"name": N, "kind": "component", "count": n}
///   {"name": N, "kind": "text", "text": T}                  a text of the mesh itself
///
/// A is the name of an array, C that of a component or of a range property. The mesh's own names are written
/// @point, @face, @corner, @position, @face_offset and @face_vertex; in others "@" at the front, "%" and, unless
/// all of it is UTF-8, bytes from 128 on are written as % and two hexadecimal digits.
namespace TessaryMesh {

/// Also reads archives that others made: points called "position", "points" or "vertices"; faces as rows
/// called "faces", "triangles" or "quads", or as above; any numbers for both. Other arrays belong to the points,
/// the faces or the corners by their count, which has to be that of one of them. Warns of what is left out.
MeshRead readNpz(const Input& input, const std::string& path);

/// A zip archive with a .npy file at its beginning.
bool isNpz(std::string_view bytes);

/// Writes a mesh or a point cloud; nothing is lost but values of the object itself that are no texts, and
/// render settings, which warnings say. The description is left out of clouds that are read back without it.
std::vector<std::string> writeNpz(const Object& mesh, ZipWriter::Packing packing,
                                  OutputFile& output);

/// Throws FileError for texts that are longer than 256 characters or not UTF-8.
void writeNpzArrays(const NamedArrays& arrays, ZipWriter::Packing packing, OutputFile& output);

}  // namespace TessaryMesh
