#include <gtest/gtest.h>

#include <tests/mesh/PlyFiles.h>
#include <tests/support/MeshBuilding.h>

#include <TessaryMesh/Check.h>

#include <sys/resource.h>

#include <random>

using namespace PlyFiles;
using namespace TestSupport;
using namespace Korvane::Geometry;
using Korvane::Math::uchar3;
using TessaryMesh::MeshFormat;

namespace {

// A triangle, a quad and a face of 300 corners, with scalars, vectors, corner values and a list.
MutablePtr<Object> richMesh()
{
    PolygonMesh polygons = polygonsOf(300, {{0, 1, 2}, {3, 2, 1, 0}});
    Array<uint> large(300);
    for (uint i = 0; i < 300; ++i)
        large[i] = i;
    polygons.addFace(large);
    const auto mesh = meshOf(polygons);
    addDataGeoProperty<double>(*mesh, "d", sPointComp, makeMutable<Array<double>>(300, 0.125));
    addDataGeoProperty<short>(*mesh, "s", sFaceComp, shared<short>({-1, 2, 3}));
    addDataGeoProperty<uchar3>(*mesh, "c", sFaceVertexComp,
                               makeMutable<Array<uchar3>>(307, uchar3{1, 2, 3}));
    return mesh;
}

TEST(PlyDamage, AFileCutOffAnywhereIsRefused)
{
    const auto mesh = richMesh();
    for (const MeshFormat format : kFormats) {
        const std::string bytes = written(*mesh, format);
        // The last number of a text may lose digits unseen.
        const std::size_t whole = format == MeshFormat::PlyAscii ? bytes.size() - 1 : bytes.size();
        for (std::size_t size = 0; size < whole; ++size) {
            const std::string error = errorOf(bytes.substr(0, size));
            ASSERT_TRUE(contains(error, "f.ply: line ") || contains(error, "f.ply: byte "))
                << size << " " << error;
        }
        EXPECT_EQ(errorOf(bytes), "no error");
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
            const auto readAndCheck = [&] { TessaryMesh::validateMesh(*readPly(damaged).mesh); };
            refused += messageOf<TessaryMesh::FileError>(readAndCheck) != "no error";
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
        const std::string status = contentOf("/proc/self/status");
        return std::stoull(status.substr(status.find("VmData:") + 7)) << 10;
    }

    rlimit m_before{};
};

TEST(PlyDamage, PromisesAloneTakeNoMemory)
{
    const std::string binary = "ply\nformat binary_little_endian 1.0\n";
    const std::string ascii = "ply\nformat ascii 1.0\n";
    const std::string points = "property float x\nproperty float y\nproperty float z\n";
    const std::string noPoints = "element vertex 0\n" + points;
    const std::string end = "end_header\n", twelve(12, '\1');  // counts of 0x01010101
    const MemoryLimit limit;
    expectErrors({
        {binary + "element vertex 4000000000\n" + points + end + twelve,
         "f.ply: byte 136: row 1 of element \"vertex\", which has 4000000000 by the header: the "
         "file ends"},
        {ascii + "element vertex 4000000000\n" + points + end + "1 2 3",
         "which has 4000000000 by the header"},
        {binary + "element vertex 1\n" + points +
             "element face 18446744073709551615\nproperty list uchar int vertex_indices\n" + end +
             twelve,
         "promises 18446744073709551615 rows"},
        {binary + "element edge 18446744073709551615\nproperty int a\n" + noPoints + end + twelve,
         "row 3 of element \"edge\""},
        {binary + noPoints +
             "element face 1\nproperty list uint double vertex_index\n"
             "property list uint double a\n" +
             end + twelve,
         "no list \"vertex_indices\" of integers"},
        {binary + noPoints + "element face 1\nproperty list int uint vertex_index\n" + end + twelve,
         "has 16843009 entries by its count, and the file has room for 2"},
        {binary + noPoints + "element face 1\nproperty list char int vertex_index\n" + end + "\xFD",
         "has -3 entries by its count"},
        {ascii + noPoints + "element face 1\nproperty list uint int vertex_index\n" + end +
             "4000000000 1 2\n",
         "the line ends where a int of property \"vertex_index\""},
    });
}

}  // namespace
