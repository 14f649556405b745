#pragma once

#include <TessaryMesh/Api.h>

/// @file
/// Memory of the machine, for programs that do several things at once.

namespace TessaryMesh {

/// Says among how many jobs that run side by side this process shares the memory that it may use: readers
/// and operations refuse what takes more than one job's part. It holds for all threads, from now on; as long
/// as nobody says so, it is one.
///
/// @param[in] jobs  0 counts as 1
TESSARY_MESH_API void shareMemory(unsigned jobs) noexcept;

}  // namespace TessaryMesh
