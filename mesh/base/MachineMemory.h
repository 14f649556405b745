#pragma once

#include <cstdint>
#include <string>

namespace TessaryMesh {

/// Bytes of memory that this process may use at most: what the machine has, or what the control
/// group that it runs in leaves of that.
std::uint64_t machineMemory();

/// "12 MB", "3.4 GB": for messages.
std::string memoryText(double bytes);

}  // namespace TessaryMesh
