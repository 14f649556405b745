#include "base/MachineMemory.h"

#include <TessaryMesh/Memory.h>

#include "system/System.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <fstream>

namespace TessaryMesh {
namespace {

std::atomic<unsigned> jobsAtOnce{1};

// The least limit of a group and of those around it, at most `most`. A container may see no more of them
// than its own one, as the outermost.
std::uint64_t leastLimit(const std::string& mount, std::string group, const char* file,
                         std::uint64_t most)
{
    for (;;) {
        std::uint64_t limit = 0;
        if (std::ifstream(mount + group + "/" + file) >> limit)  // "max" is no number
            most = std::min(most, limit);
        if (group.empty())
            return most;
        group.erase(std::min(group.rfind('/'), group.size() - 1));
    }
}

// Whether a list such as "cpu,memory" names the controller of memory.
bool hasMemory(const std::string& controllers)
{
    return ("," + controllers + ",").find(",memory,") != std::string::npos;
}

}  // namespace

std::uint64_t machineMemory(const std::string& root)
{
    const std::string groups = root + "/sys/fs/cgroup";
    std::uint64_t bytes = System::physicalMemory();
    bytes = leastLimit(groups, "", "memory.max", bytes);
    bytes = leastLimit(groups + "/memory", "", "memory.limit_in_bytes", bytes);
    // Each line is a hierarchy, its controllers, none for version 2, and the group: "4:memory:/a/b".
    std::ifstream lines(root + "/proc/self/cgroup");
    for (std::string number, controllers, group; std::getline(lines, number, ':') &&
                                                 std::getline(lines, controllers, ':') &&
                                                 std::getline(lines, group);) {
        if (controllers.empty())
            for (const char* mount : {"", "/unified"})
                bytes = leastLimit(groups + mount, group, "memory.max", bytes);
        else if (hasMemory(controllers))
            bytes = leastLimit(groups + "/memory", group, "memory.limit_in_bytes", bytes);
    }
    return bytes / jobsAtOnce.load(std::memory_order_relaxed);
}

void shareMemory(unsigned jobs) noexcept
{
    jobsAtOnce.store(std::max(1u, jobs), std::memory_order_relaxed);
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
