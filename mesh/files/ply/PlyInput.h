#pragma once

#include "base/Host.h"
#include "files/Input.h"

#include <cstddef>
#include <string_view>

namespace TessaryMesh::Ply {

/// All of the header and perhaps more.
std::string_view headOf(const Input& input, InputBuffer& buffer);

/// The bytes from `begin` on, read on all threads.
Array<unsigned char> bytesFrom(const Input& input, std::size_t begin);

}  // namespace TessaryMesh::Ply
