#pragma once

#include <cstdint>
#include <string>

namespace TessaryMesh {

/// Bytes of memory that this process may use at most: what the machine has, or what the control
/// groups that it runs in, one inside the other, leave of that, divided among the
/// jobs that shareMemory() has been told of. `root` stands before the names of the system's files.
std::uint64_t machineMemory(const std::string& root = "");

/// "12 MB", "3.4 GB": for messages.
std::string memoryText(double bytes);

}  // namespace TessaryMesh
