#pragma once

#include "files/Formats.h"

#include <string_view>

namespace TessaryMesh {

/// What a file is that none of our formats is the format of: "a Blender file". Empty where that is not
/// known, as for most text.
std::string_view foreignFormat(const FileSigns& file);

/// How names of such files end, "blend", where libassimp may read them; else empty.
std::string_view foreignEnding(const FileSigns& file);

}  // namespace TessaryMesh
