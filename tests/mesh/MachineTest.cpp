#include <TessaryMesh/Memory.h>

#include <gtest/gtest.h>
#include <mesh/base/FixedMath.h>
#include <mesh/base/MachineMemory.h>

#include <cmath>
#include <limits>

#include <tests/support/Files.h>

namespace {

using namespace TestSupport;

TEST(MachineMemory, IsWhatTheTightestGroupAroundTheProcessLeaves)
{
    const Folder root;
    const auto machine = TessaryMesh::machineMemory(root / "");
    const auto put = [&root](const std::string& file, const std::string& content) {
        std::filesystem::create_directories(std::filesystem::path(root / file).parent_path());
        root.file(file, content);
        return TessaryMesh::machineMemory(root / "");
    };
    EXPECT_GT(machine, 6000000u);
    put("proc/self/cgroup", "5:cpu:/c\n4:cpuacct,memory:/job/7\n0::/user/a:b\n");
    EXPECT_EQ(put("sys/fs/cgroup/memory.max", "max\n"), machine);
    EXPECT_EQ(put("sys/fs/cgroup/user/memory.max", "6000000\n"), 6000000u);
    EXPECT_EQ(put("sys/fs/cgroup/user/a:b/memory.max", "5000000\n"), 5000000u);
    EXPECT_EQ(put("sys/fs/cgroup/memory/job/memory.limit_in_bytes", "4000000\n"), 4000000u);
    EXPECT_EQ(put("sys/fs/cgroup/memory/c/memory.limit_in_bytes", "1\n"), 4000000u);
    EXPECT_EQ(put("sys/fs/cgroup/memory/memory.limit_in_bytes", "3000000\n"), 3000000u);
    TessaryMesh::shareMemory(3);
    EXPECT_EQ(TessaryMesh::machineMemory(root / ""), 1000000u);
    TessaryMesh::shareMemory(1);
}

TEST(FixedMath, IsAsNearAsTheSystems)
{
    constexpr double kUnit = std::numeric_limits<double>::epsilon();
    for (double x = 1e-300; x < 1e300; x *= 1.0837)
        ASSERT_NEAR(TessaryMesh::fixedLog(x), std::log(x), 2 * kUnit * std::fabs(std::log(x))) << x;
    for (double x = 0.5; x < 2; x += 0.00137)
        ASSERT_NEAR(TessaryMesh::fixedLog(x), std::log(x), 2 * kUnit * std::fabs(std::log(x))) << x;
    for (double x = -700; x < 700; x += 0.37)
        ASSERT_NEAR(TessaryMesh::fixedExp(x) / std::exp(x), 1, 2 * kUnit) << x;
    // The system gets an angle in radians that is rounded already.
    for (double degrees = 0; degrees <= 180; degrees += 0.25) {
        const auto [cos, sin] = TessaryMesh::fixedCosSin(degrees);
        ASSERT_NEAR(cos, std::cos(degrees * M_PI / 180), 4 * kUnit) << degrees;
        ASSERT_NEAR(sin, std::sin(degrees * M_PI / 180), 4 * kUnit) << degrees;
    }
    EXPECT_EQ(TessaryMesh::fixedCosSin(90).cos, 0);
    EXPECT_EQ(TessaryMesh::fixedCosSin(180).sin, 0);
}

}  // namespace
