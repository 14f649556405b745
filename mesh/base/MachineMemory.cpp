#include "base/MachineMemory.h"

#include <unistd.h>
#include <algorithm>
#include <cstdio>
#include <fstream>

namespace TessaryMesh {

std::uint64_t machineMemory()
{
    std::uint64_t bytes = static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) *
                          static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    for (const char* limit :
         {"/sys/fs/cgroup/memory.max", "/sys/fs/cgroup/memory/memory.limit_in_bytes"}) {
        std::uint64_t most = 0;
        if (std::ifstream(limit) >> most)  // "max" is no number
            bytes = std::min(bytes, most);
    }
    return bytes;
}

std::string memoryText(double bytes)
{
    char text[32];
    if (bytes < 1e9)
        std::snprintf(text, sizeof text, "%.0f MB", bytes / 1e6);
    else
        std::snprintf(text, sizeof text, bytes < 1e10 ? "%.1f GB" : "%.0f GB", bytes / 1e9);
    return text;
}

}  // namespace TessaryMesh
