#include <gtest/gtest.h>

#include <tests/meshio/PlyFiles.h>
#include <tests/support/MeshBuilding.h>

#include <meshio/Validate.h>

#include <sys/resource.h>

#include <random>

using namespace PlyFiles;
using namespace TestSupport;
using MeshIo::MeshFormat;
using MeshIo::readPly;

namespace {

constexpr MeshFormat kFormats[] = {MeshFormat::PlyAscii, MeshFormat::PlyBinary,
                                   MeshFormat::PlyBinaryBigEndian};

// A triangle, a quad and a face of 300 corners, with scalars, vectors, corner values and a list.
MutablePtr<Object> richMesh()
{
    const auto mesh = meshOf(300, {{0, 1, 2}, {3, 2, 1, 0}});
    Array<uint> offset = {0, 3, 7, 307};
    Array<uint> corners = *dataOf<uint>(*mesh, Geometry::sFaceVertex);
    for (uint i = 0; i < 300; ++i)
        corners.push_back(i);
    const auto out = Geometry::makeMesh(*dataOf<float3>(*mesh, Geometry::sPointPosition),
                                        std::move(offset), std::move(corners));
    Geometry::addDataGeoProperty<double>(*out, "d", Geometry::sPointComp,
                                         makeMutable<Array<double>>(300, 0.125));
    Geometry::addDataGeoProperty<short>(*out, "s", Geometry::sFaceComp, shared<short>({-1, 2, 3}));
    Geometry::addDataGeoProperty<Korvane::Math::uchar3>(
        *out, "c", Geometry::sFaceVertexComp,
        makeMutable<Array<Korvane::Math::uchar3>>(307, Korvane::Math::uchar3{1, 2, 3}));
    return out;
}

TEST(PlyDamage, AFileCutOffAnywhereIsRefused)
{
    const auto mesh = richMesh();
    for (const MeshFormat format : kFormats) {
        std::string bytes = written(*mesh, format);
        // The last number of a text may lose digits unseen.
        const std::size_t whole = format == MeshFormat::PlyAscii ? bytes.size() - 1 : bytes.size();
        for (std::size_t size = 0; size < whole; ++size) {
            const std::string error = errorOf(bytes.substr(0, size));
            ASSERT_TRUE(contains(error, "f.ply: line ") || contains(error, "f.ply: byte "))
                << size << " " << error;
        }
        EXPECT_EQ(errorOf(bytes), "");
    }
}

TEST(PlyDamage, ChangedBytesAreReadOrRefused)
{
    const auto mesh = richMesh();
    std::mt19937 random(7);
    std::size_t refused = 0;
    for (const MeshFormat format : kFormats) {
        const std::string bytes = written(*mesh, format);
        for (int round = 0; round < 2000; ++round) {
            std::string damaged = bytes;
            for (int k = 0; k < 3; ++k)  // half of them in the header
                damaged[random() % (k == 0 ? 500 : damaged.size())] =
                    static_cast<char>(k == 2 ? random() : '0' + random() % 10);
            try {
                const auto read = readPly(damaged, "f.ply");
                MeshIo::validateMesh(*read.mesh);
            } catch (const MeshIo::FileError&) {
                ++refused;
            }
        }
    }
    EXPECT_GT(refused, 1000u);
    EXPECT_LT(refused, 5999u);
}

/// Makes allocations fail that take more than 256 MB beyond what the process has.
class MemoryLimit {
public:
    MemoryLimit()
    {
        getrlimit(RLIMIT_DATA, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, dataSize() + (rlim_t(256) << 20));
        setrlimit(RLIMIT_DATA, &limit);
    }
    ~MemoryLimit() { setrlimit(RLIMIT_DATA, &m_before); }

private:
    static rlim_t dataSize()
    {
        std::ifstream status("/proc/self/status");
        std::string word;
        rlim_t kilobytes = 0;
        while (status >> word && word != "VmData:") {
        }
        status >> kilobytes;
        return kilobytes << 10;
    }

    rlimit m_before{};
};

TEST(PlyDamage, PromisesAloneTakeNoMemory)
{
    const std::string points = "property float x\nproperty float y\nproperty float z\n";
    const std::string faces = "property list uchar int vertex_indices\n";
    const std::string start = "ply\nformat binary_little_endian 1.0\n";
    const std::string text = "ply\nformat ascii 1.0\n";
    const std::string twelve(12, '\1');
    const MemoryLimit limit;
    EXPECT_TRUE(
        contains(errorOf(start + "element vertex 4000000000\n" + points + "end_header\n" + twelve),
                 "f.ply: byte 136: row 1 of element \"vertex\", which has 4000000000 by the "
                 "header: the file ends"));
    EXPECT_TRUE(
        contains(errorOf(text + "element vertex 4000000000\n" + points + "end_header\n1 2 3"),
                 "which has 4000000000 by the header"));
    EXPECT_TRUE(
        contains(errorOf(start + "element vertex 1\n" + points +
                         "element face 18446744073709551615\n" + faces + "end_header\n" + twelve),
                 "promises 18446744073709551615 rows"));
    EXPECT_TRUE(contains(errorOf(start +
                                 "element edge 18446744073709551615\nproperty int a\n"
                                 "element vertex 0\n" +
                                 points + "end_header\n" + twelve),
                         "row 3 of element \"edge\""));
    // The list's count is 0x01010101.
    EXPECT_TRUE(contains(errorOf(start + "element vertex 0\n" + points +
                                 "element face 1\n"
                                 "property list uint double vertex_index\n"
                                 "property list uint double a\nend_header\n" +
                                 twelve),
                         "no list \"vertex_indices\" of integers"));
    EXPECT_TRUE(contains(errorOf(start + "element vertex 0\n" + points +
                                 "element face 1\n"
                                 "property list int uint vertex_index\nend_header\n" +
                                 twelve),
                         "has 16843009 entries by its count, and the file has room for 2"));
    EXPECT_TRUE(
        contains(errorOf(text + "element vertex 0\n" + points + "element face 1\n" +
                         "property list uint int vertex_index\nend_header\n4000000000 1 2\n"),
                 "the line ends where a int of property \"vertex_index\""));
}

}  // namespace
