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

namespace {

using Code = TessaryMesh::FileError::Code;

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

TEST(DamagedFiles, PlyCutOffAnywhereIsRefused)
{
    const auto mesh = richMesh();
    for (const char* const format : kFormats) {
        const std::string bytes = written(*mesh, format);
        // The last number of a text may lose digits unseen.
        const std::size_t whole = format == kFormats[0] ? bytes.size() - 1 : bytes.size();
        for (std::size_t size = 0; size < whole; ++size) {
            const auto error = errorOf(bytes.substr(0, size));
            ASSERT_TRUE(error.place().line || error.place().byte) << size << error.what();
        }
        EXPECT_FALSE(MeshFiles::isRefused([&] { readPly(bytes); }));
    }
}

const std::string kObj =
    "\xEF\xBB\xBF# c\nmtllib a b\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 1 2 3.1+e2 .5\nvt 0 1e9 "
    "nan\n"
    "vn 1 -2 3\\\n\no x\ng a b\nusemtl m\xC3\xA4\ns 3\nf 1/1/1 2//-1 -3/1\r\nl 1 2\ns off\n"
    "f 1 2 3 4 5\n";

// Whatever becomes of a file on its way, it is read or refused, and what was read can be checked.
TEST(DamagedFiles, AreReadOrRefused)
{
    const auto mesh = richMesh();
    std::mt19937 random(11);
    for (const TessaryMesh::Format* const format : TessaryMesh::formats()) {
        const auto read = TessaryMesh::rowOf(*format).functions.read;
        if (!read || !format->writesMeshes)
            continue;
        const std::string whole = format->name == "obj" ? kObj : written(*mesh, format->name);
        int outcomes = 0;
        for (int round = 0; round < 6000; ++round) {
            std::string damaged = round % 4 == 0 ? whole.substr(0, random() % whole.size()) : whole;
            for (unsigned flips = random() % 4; flips > 0 && !damaged.empty(); --flips) {
                const std::size_t place = random() % damaged.size();  // half of them at the top
                damaged[flips % 2 == 0 ? place : place % 500] =
                    random() % 2 ? static_cast<char>(random())
                                 : "0123456789/- \n\\vf#"[random() % 18];
            }
            const auto readAndCheck = [&] {
                outcomes |= TessaryMesh::validateMesh(*read(damaged, "f").mesh).hasErrors() ? 1 : 2;
            };
            outcomes |= MeshFiles::isRefused(readAndCheck) ? 4 : 0;
        }
        // Few errors of a mesh can be made of facets, and few get past a checksum or base64.
        const std::string_view kind = format->name.substr(0, 3);
        const bool isRobust = kind == "stl" || kind == "npz" || kind == "glb" || kind == "glt";
        EXPECT_EQ(outcomes | (isRobust ? 1 : 0), 7) << format->name;
    }
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

TEST(DamagedFiles, PromisesAloneTakeNoMemory)
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
         "promises 18446744073709551615 rows", Code::TooLarge},
        {binary + "element edge 18446744073709551615\nproperty int a\n" + noPoints + end + twelve,
         "row 3 of element \"edge\""},
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
