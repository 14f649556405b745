#pragma once

#include "base/Host.h"
#include "files/Input.h"
#include <TessaryMesh/Files.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace TessaryMesh {

/// STL, binary (little-endian) and ASCII. What a file holds and the properties that it becomes:
///
///   corners of facets    points: corners whose three coordinates have the same bits are one, numbered
///                        by their first occurrence. ASCII facets may have more than three corners
///   normals of facets    "normal", float3 on faces, as they stand there
///   solid NAME           (ASCII) "object", string on faces, where a solid has a name
///   attribute bytes      (binary) "stl_attribute", ushort on faces, where one is not 0
///   the header           (binary) "stl_header", a string of the object itself, unless it is blank
///
/// `path` stands for the file in messages. Throws FileError with the line or the byte; Cancelled.
MeshRead readStl(const Input& input, const std::string& path);

/// By the size that the count of facets asks for: a binary file may begin with "solid".
bool isBinaryStl(std::string_view bytes, std::uint64_t size);
/// "solid" and a blank, and a facet or the end of the solid behind its name.
bool isAsciiStl(std::string_view bytes);

/// Writes the properties above; faces of more than three corners become the triangles of their fans, and
/// where there is no face property "normal" that of the triangle is written. Returns a warning for what
/// is lost: larger faces, points of no face, points that lie exactly on another one, other properties.
std::vector<std::string> writeBinaryStl(const Object& mesh, OutputFile& output);
std::vector<std::string> writeAsciiStl(const Object& mesh, OutputFile& output);

}  // namespace TessaryMesh
