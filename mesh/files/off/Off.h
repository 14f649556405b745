#pragma once

#include "base/Host.h"
#include "files/Input.h"
#include <TessaryMesh/Files.h>

#include <string>
#include <string_view>
#include <vector>

namespace TessaryMesh {

/// OFF in ASCII, with what the letters before the word promise of each point. Properties:
///
///   ST      s t          "texcoord", float2 on points
///   C       r g b [a]    "color", float3 on points, 0 to 1, float4 where one is not opaque; read also
///                        where the letter is missing and the numbers are there
///   N       nx ny nz     "normal", float3 on points
///   faces   r g b [a]    behind the corners: "face_color", float3 or float4 on faces
///
/// Colours of whole numbers are taken as 0 to 255, unless none is over 1. The binary form and points of four
/// or n coordinates (4OFF, nOFF) are refused by name.
///
/// `path` stands for the file in messages. Throws FileError with the line; Cancelled.
MeshRead readOff(const Input& input, const std::string& path);

/// Whether the first word is OFF with any of those letters before it.
bool isOff(std::string_view bytes);

/// Writes the properties above. Colours of which every number is one of 256 levels are written as whole
/// numbers, others as fractions. Returns a warning for each property that has no place.
std::vector<std::string> writeOff(const Object& mesh, OutputFile& output);

}  // namespace TessaryMesh
