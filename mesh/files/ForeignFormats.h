#pragma once

#include "files/Formats.h"

#include <string_view>

namespace TessaryMesh {

/// What a file is that none of our formats is the format of: "a Blender file". Empty where that is not
/// known, as for most text.
std::string_view foreignFormat(const FileSigns& file);

}  // namespace TessaryMesh
