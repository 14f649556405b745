#pragma once

#include "base/Host.h"

#include <string>
#include <string_view>

namespace TessaryMesh {

/// All bytes of a file, "-" meaning standard input. Throws FileError where there is no such file, a
/// folder, nothing in it, or no permission; Cancelled.
Array<char> readFile(const std::string& path);

inline std::string_view viewOf(const Array<char>& bytes)
{
    return {bytes.data(), bytes.size()};
}

}  // namespace TessaryMesh
