#pragma once

#include "base/Host.h"

#include <string>

namespace TessaryMesh {

/// How the description in an .npz file writes a name of the mesh, and the other way round.
std::string npzName(const String& name);
String nameOfNpz(const std::string& text);

inline constexpr const char* kNpzDescription = "tessary";
inline constexpr const char* kNpzPositions = "position";
inline constexpr const char* kNpzFaceOffset = "face_offset";
inline constexpr const char* kNpzFaceVertex = "face_vertex";

}  // namespace TessaryMesh
