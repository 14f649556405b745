#pragma once

#include <cstddef>

namespace TessaryMesh {

/// The longest name, in bytes, that readers take for one: what is longer is something else gone wrong, and
/// would be kept for every face.
inline constexpr std::size_t kLongestName = 65536;

}  // namespace TessaryMesh
