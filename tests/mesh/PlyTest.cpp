#include <gtest/gtest.h>

#include <TessaryMesh/Operations.h>
#include <tbb/global_control.h>
#include <tests/mesh/PlyFiles.h>
#include <tests/support/Cancellation.h>
#include <tests/support/Cost.h>
#include <tests/support/MeshBuilding.h>

#include <algorithm>
#include <cmath>

using namespace PlyFiles;
using namespace TestSupport;
using namespace Korvane::Geometry;
using TessaryMesh::MeshRead;

namespace {

// A quad and a triangle over five points, the coordinates last but one and in odd order.
const std::string kText =
    "ply\r\nformat ascii 1.0\r\ncomment made by hand\r\nobj_info 3 of 4\n"
    "element vertex 5\nproperty uint8 red\nproperty float32 z\nproperty float x\n"
    "comment in between\nproperty list uchar short near\nproperty float y\nproperty int16 age\n"
    "element edge 2\nproperty list int int ends\nproperty char kind\n"
    "element face 2\nproperty double area\nproperty list uchar int vertex_index\n"
    "property list uchar float texcoord\nend_header\n"
    "255 0 0 0 0 -7\n"
    "1 .5 1 2 -1 300 0 8\r\n\n"
    "2 0 1 1 5 1 9\n"
    "  3 nan 0 0 inf 10  \n"
    "4 -0 2e0 0 +1 11\n"
    "2 0 1 3\n"
    "0 4\n"
    "1.25 4 0 1 2 3 8 0 0 1 0 1 1 0 1\n"
    "-0.5 3 1 4 2 6 .1 .2 .3 .4 .5 .6";

template <class T>
void expectData(const MeshRead& read, const String& name, const String& target,
                const Array<T>& values)
{
    const auto data = dataOf<T>(*read.mesh, name);
    ASSERT_TRUE(data) << name.c_str();
    EXPECT_EQ(*data, values) << name.c_str();
    EXPECT_EQ(entryOf<String>(*read.mesh, name, sTarget), target) << name.c_str();
}

TEST(Ply, TextKeepsPointsFacesAndEveryProperty)
{
    const MeshRead read = readPly(kText);
    EXPECT_EQ(read.format->name, "ply-ascii");
    const auto& points = *dataOf<float3>(*read.mesh, sPointPosition);
    ASSERT_EQ(points.size(), 5u);
    EXPECT_EQ(points[1], (float3{1, 0, 0.5f}));
    EXPECT_TRUE(std::isnan(points[3].z) && std::isinf(points[3].y) && std::signbit(points[4].z));
    expectData<uint>(read, sFaceOffset, sFaceComp, {0, 4, 7});
    expectData<uint>(read, sFaceVertex, sFaceVertexComp, {0, 1, 2, 3, 1, 4, 2});
    expectData<unsigned char>(read, "red", sPointComp, {255, 1, 2, 3, 4});
    expectData<short>(read, "age", sPointComp, {-7, 8, 9, 10, 11});
    expectData<double>(read, "area", sFaceComp, {1.25, -0.5});
    expectData<Korvane::Math::float2>(
        read, "texcoord", sFaceVertexComp,
        {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {.1f, .2f}, {.3f, .4f}, {.5f, .6f}});
    expectData<short>(read, "near", "near_component", {-1, 300, 5});
    expectData<uint>(read, "near_offset", "near", {0, 0, 2, 3, 3, 3});
    EXPECT_EQ(getElementCount(*read.mesh, "near_component"), 3u);
    ASSERT_EQ(read.warnings.size(), 1u);
    EXPECT_TRUE(contains(read.warnings[0], "\"edge\" of 2"));
}

template <class T>
void append(std::string& bytes, T value, bool bigEndian)
{
    char raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    const std::uint16_t one = 1;
    if ((*reinterpret_cast<const char*>(&one) == 1) == bigEndian)
        std::reverse(raw, raw + sizeof(T));
    bytes.append(raw, sizeof(T));
}

// Element edge before vertex; the face's indices are unsigned shorts counted by an int.
std::string binaryFile(bool bigEndian)
{
    using ushort = unsigned short;
    std::string bytes =
        std::string("ply\nformat binary_") + (bigEndian ? "big" : "little") +
        "_endian 1.0\nelement edge 1\nproperty list int int16 w\nelement vertex 2\n"
        "property double x\nproperty float y\nproperty int z\nelement face 2\n"
        "property ushort id\nproperty list int ushort vertex_indices\nend_header\r\n";
    const auto add = [&](auto... values) { (append(bytes, values, bigEndian), ...); };
    add(1, short{7});
    add(0.5, 1.0f, -2);
    add(0.1, 3.0f, 1 << 24 | 1);
    add(ushort{300}, 3, ushort{0}, ushort{1}, ushort{0});
    add(ushort{65535}, 0);
    return bytes;
}

TEST(Ply, BinaryOfBothByteOrdersConvertsPositionsAndIndices)
{
    for (const bool bigEndian : {false, true}) {
        SCOPED_TRACE(bigEndian);
        const MeshRead read = readPly(binaryFile(bigEndian));
        EXPECT_EQ(read.format->name, bigEndian ? "ply-big" : "ply");
        expectData<float3>(read, sPointPosition, sPointComp, {{0.5f, 1, -2}, {0.1f, 3, 16777216}});
        expectData<uint>(read, sFaceOffset, sFaceComp, {0, 3, 3});
        expectData<uint>(read, sFaceVertex, sFaceVertexComp, {0, 1, 0});
        expectData<unsigned short>(read, "id", sFaceComp, {300, 65535});
        ASSERT_EQ(read.warnings.size(), 2u);
        EXPECT_TRUE(contains(read.warnings[0], "\"edge\""));
        EXPECT_TRUE(contains(read.warnings[1], "2 of 6 point coordinates were rounded"));
    }
}

const std::string kPointHeader =
    "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n"
    "property float z\n";
const std::string kFaceHeader =
    kPointHeader + "element face 1\nproperty list uchar int vertex_indices\n";

TEST(Ply, NamesThatTheMeshHasAlreadyAreChangedWithAWarning)
{
    const MeshRead read =
        readPly(kPointHeader +
                "property int a\nproperty int point_position\nproperty list uchar int b\n"
                "element face 1\nproperty list uchar int vertex_indices\nproperty uchar a\n"
                "property int b_offset\nend_header\n1 2 3 4 5 1 6\n0 7 8\n");
    expectData<int>(read, "a", sPointComp, {4});
    expectData<unsigned char>(read, "face_a", sFaceComp, {7});
    expectData<int>(read, "point_point_position", sPointComp, {5});
    expectData<uint>(read, "b_offset", "b", {0, 1});
    expectData<int>(read, "face_b_offset", sFaceComp, {8});
    ASSERT_EQ(read.warnings.size(), 3u);
    EXPECT_EQ(read.warnings[1],
              "face property \"a\" is called \"face_a\" in the mesh, where the name is taken");
}

TEST(Ply, WhatManyProgramsWriteBecomesColoursNormalsAndTextureCoordinates)
{
    const MeshRead read = readPly(
        "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\n"
        "property float z\nproperty double nx\nproperty double ny\nproperty double nz\n"
        "property uchar red\nproperty uchar green\nproperty uchar blue\nproperty float alpha\n"
        "property float quality\nproperty float texture_u\nproperty float texture_v\n"
        "element face 1\nproperty list uchar int vertex_index\nproperty uchar red\n"
        "property uchar green\nproperty uchar blue\nproperty uchar alpha\nend_header\n"
        "0 0 0 1 0 0 255 51 0 .5 7 1 0\n0 0 0 0 1 0 1 2 3 .5 8 0 1\n3 0 1 0 0 0 255 255\n");
    expectData<Korvane::Math::double3>(read, "normal", sPointComp, {{1, 0, 0}, {0, 1, 0}});
    expectData<float3>(read, "color", sPointComp, {{1, .2f, 0}, {1.f / 255, 2.f / 255, 3.f / 255}});
    expectData<float>(read, "alpha", sPointComp, {.5f, .5f});  // of another type than the colours
    expectData<float>(read, "quality", sPointComp, {7, 8});
    expectData<Korvane::Math::float2>(read, "texcoord", sPointComp, {{1, 0}, {0, 1}});
    expectData<Korvane::Math::float4>(read, "face_color", sFaceComp, {{0, 0, 1, 1}});
    const std::string again = written(*read.mesh, "ply-ascii");
    for (const char* line : {"property double nx\n", "property uchar red\n", "property float s\n"})
        EXPECT_TRUE(contains(again, line)) << again;
    EXPECT_FALSE(contains(again, "property float color_x")) << again;
}

TEST(Ply, ColoursAreWrittenIn8BitsAndAsTheyAreWhereTheseDoNotHoldThem)
{
    const auto mesh = Korvane::Geometry::makeMesh({{0, 0, 0}, {1, 0, 0}}, {0}, {});
    addDataGeoProperty<float3>(
        *mesh, "color", sPointComp,
        makeMutable<Array<float3>>(Array<float3>{{0.1f, 2, -0.f}, {std::nanf(""), 1, 0.2f}}));
    for (const char* format : kFormats) {
        const MeshRead read = readPly(written(*mesh, format));
        EXPECT_TRUE(MeshFiles::sameProperty(*read.mesh, *mesh, "color")) << format;
        EXPECT_TRUE(read.warnings.empty());
    }
    std::string text = written(*mesh, "ply-ascii");
    EXPECT_TRUE(contains(text, "\n0 0 0 26 255 0 0.1 2 -0\n")) << text;
    text.replace(text.find(" 26 "), 4, " 27 ");
    const MeshRead edited = readPly(text);
    ASSERT_EQ(edited.warnings.size(), 1u);
    EXPECT_TRUE(contains(edited.warnings[0], "1 8-bit numbers of point property \"color\""));
}

TEST(Ply, APointCloudIsAMeshWithoutFacesAndBytesAfterItAreCounted)
{
    const MeshRead read = readPly(kPointHeader + "end_header\n1 2 3\n\n more\n");
    expectData<float3>(read, sPointPosition, sPointComp, {{1, 2, 3}});
    expectData<uint>(read, sFaceOffset, sFaceComp, {0});
    ASSERT_EQ(read.warnings.size(), 1u);
    EXPECT_TRUE(contains(read.warnings[0], "5 bytes follow the last element"));
    EXPECT_TRUE(contains(readPly(binaryFile(true) + "!").warnings.at(1), "1 bytes"));
}

TEST(Ply, CornerListsOfAnotherLengthStayListsOfTheirFaces)
{
    const MeshRead read = readPly(kFaceHeader +
                                  "property list uchar float texcoord\nend_header\n0 0 0\n"
                                  "3 0 0 0 2 .5 1\n");
    expectData<float>(read, "texcoord", "texcoord_component", {.5f, 1});
    expectData<uint>(read, "texcoord_offset", "texcoord", {0, 2});
    ASSERT_EQ(read.warnings.size(), 1u);
    EXPECT_TRUE(contains(read.warnings[0], "\"texcoord\" has not 2 values per corner"));
}

TEST(Ply, DeclarationsThatDoNotFitAreIgnoredWithAWarning)
{
    const auto readWith = [](const std::string& line) {
        return readPly(kPointHeader + "property float a\nproperty float b\nproperty int c\n" +
                       "comment property " + line + "\nend_header\n1 2 3 4 5 6");
    };
    const char* const cases[][2] = {
        {"point float2 v a gone", "line 10: "},
        {"point float2 v a gone", "no property \"gone\""},
        {"point float2 v b c", "\"c\" is of another type"},
        {"point float2 v b b", "\"b\" twice"},
        {"point float2 v b x", "\"x\" belongs to another property"},
        {"point float3 v a b", "names 2 properties"},
        {"corner float2 v a b", "the file has no faces"},
        {"point list v a", "\"a\" is of another type"},
    };
    for (const auto& [line, warning] : cases) {
        const MeshRead read = readWith(line);
        EXPECT_TRUE(dataOf<float>(*read.mesh, "b")) << line;
        EXPECT_TRUE(contains(read.warnings.at(0), warning));
    }
    for (const char* comment : {"of the first kind: good", "point string v a"})
        EXPECT_TRUE(readWith(comment).warnings.empty()) << comment;
    EXPECT_EQ(readWith("point float2 my%20v%25 b a").mesh->propertyNames()[6], "my v%");
}

TEST(Ply, BadHeadersAreRefusedWithTheLine)
{
    using Code = TessaryMesh::FileError::Code;
    const std::string start = "ply\nformat ascii 1.0\n";
    expectErrors({
        {"plx\n", "f.ply: line 1: "},
        {"ply", "line 2: the file ends inside the header"},
        {"ply\nformat ascii 2.0\n", "line 2: the format is not of version 1.0", Code::Unsupported},
        {"ply\nformat text 1.0\n", "line 2: unknown format \"text\"", Code::Unsupported},
        {start + "format ascii 1.0\n", "line 3: the header has a second format"},
        {"ply\nelement vertex 0\nend_header\n", "line 3: the header ends without a format"},
        {start + "element vertex\n", "line 3: an element line"},
        {start + "element vertex -1\n", "line 3: found \"-1\" where the element's count"},
        {start + "element vertex 99999999999999999999\n", "line 3: found \"9999"},
        {start + "element vertex 1x\n", "line 3: found \"1x\""},
        {start + "element a 1\nelement a 1\n", "line 4: element \"a\" occurs twice"},
        {start + "property int a\n", "line 3: a property comes before"},
        {start + "element a 1\nproperty word b\n", "line 4: unknown type \"word\""},
        {start + "element a 1\nproperty list float int b\n", "line 4: a list cannot be counted"},
        {start + "element a 1\nproperty list uchar int\n", "line 4: a property line is"},
        {start + "element a 1\nproperty int b\nproperty char b\n",
         "line 5: element \"a\" has a second"},
        {start + "element a 1\nproperty int b\xff\n", "line 4: the name \"b?\" is not UTF-8"},
        {start + "element " + std::string(65537, 'e') + " 1\n", "line 3: a name of 65537 bytes"},
        {start + "elements vertex 1\n", "line 3: found \"elements\""},
        {start + "\n", "line 3: an empty line"},
        {start + "end_header\n", "no element \"vertex\"", Code::Unsupported},
        {start + "element vertex 0\nproperty int x\nproperty int y\nend_header\n", "property \"z\"",
         Code::Unsupported},
        {kPointHeader + "element face 1\nproperty int a\nend_header\n1 2 3\n4\n",
         "no list \"vertex_indices\"", Code::Unsupported},
    });
}

TEST(Ply, ManyPropertiesAndElementsTakeLinearTime)
{
    const auto text = [](int count) {
        std::string header = "ply\nformat ascii 1.0\nelement vertex 1\n", row = "0 0 0";
        for (const char* name : {"x", "y", "z"})
            header += std::string("property float ") + name + "\n";
        for (int i = 0; i < count; ++i, row += " 1")
            header += "property int p" + std::to_string(i) + "\n";
        for (int i = 0; i < count; ++i)
            header += "element e" + std::to_string(i) + " 0\n";
        return header + "end_header\n" + row + "\n";
    };
    const auto through = [](const std::string& content) {
        EXPECT_NE(written(*TessaryMesh::triangulate(*readPly(content).mesh).mesh, "ply-ascii"), "");
    };
    const std::string few = text(1000), many = text(8000);
    EXPECT_LT(TestSupport::costRatio([&] { through(many); }, [&] { through(few); }), 32);
}

TEST(Ply, BadRowsAreRefusedWithTheLine)
{
    using Code = TessaryMesh::FileError::Code;
    const std::string typed = kPointHeader + "property uchar a\nend_header\n";
    const std::string row = "row 0 of element \"vertex\", which has 1 by the header: ";
    expectErrors({
        {typed + "1 2 3 256",
         "line 9: " + row + "found \"256\" where a uchar of property \"a\" was expected"},
        {typed + "1 2 3 1.5", "found \"1.5\""},
        {typed + "1 2 3 \n ", "the line ends where a uchar"},
        {typed + "1 2 3\n4", "line 9: " + row + "the line"},
        {typed + "\n\n1 2 3 4 5", "line 11: " + row + "found \"5\" after the last property"},
        {typed + "1 2 east 4", "found \"east\" where a float of property \"z\""},
        {typed + "\n \n \n \n \n", "line 13: row 0"},
        {kFaceHeader + "end_header\n1 2 3\n3 0 0 -4\n", "f.ply: face 0 names point -4"},
        {kPointHeader + "element face 1\nproperty list char int vertex_indices\nend_header\n"
                        "1 2 3\n-3 0 0 0\n",
         "has the count \"-3\""},
        {kFaceHeader + "end_header\n1 2 3\n3 0 0 4\n", "no error",
         Code::Exists},  // left to the validation
    });
}

// What reading text gives: the mesh in binary, with warnings, or the error.
std::string outcomeOf(const std::string& text, std::size_t blockSize)
{
    try {
        const TessaryMesh::MeshRead read = TessaryMesh::readPly(text, "f.ply", blockSize);
        std::string all = written(*read.mesh, "ply");
        for (const std::string& warning : read.warnings)
            all += warning + "\n";
        return all;
    } catch (const TessaryMesh::FileError& error) {
        return error.what();
    }
}

TEST(Ply, TextIsTheSameInBlocksOfAnySizeOnAnyNumberOfThreads)
{
    const std::string header =
        "ply\nformat ascii 1.0\nelement none 0\nproperty int a\nelement vertex 4\nproperty float "
        "x\n"
        "property double y\nproperty float z\nelement empty 3\nelement face 2\nproperty list uchar "
        "int "
        "vertex_indices\nproperty char c\nelement edge 1\nproperty list int short s\nend_header\n";
    const std::string rows =
        "0 0 0\n\n 1 0 1e3 \r\n1 1.5 0\n\t0 1 -0\n\n \n3 0 1 2 -7\n4 0 1 2 3 8\n\n2 5 6";
    for (const std::string& body :
         {rows, rows + "\n \n\nmore\n\nx", rows + "\n\n", rows.substr(0, rows.size() - 6),
          rows.substr(0, 30), std::string(), std::string("0 0 0\n1 x 1\n1 1 1 1\n0 0\n") + rows,
          "\n\n" + rows + " 9\n", rows + "x"}) {
        const std::string text = header + body, expected = outcomeOf(text, text.size());
        for (const int threads : {1, 2, 7}) {
            const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
            for (std::size_t size = 1; size <= body.size(); ++size)
                ASSERT_EQ(outcomeOf(text, size), expected) << body << size;
        }
    }
}

}  // namespace
