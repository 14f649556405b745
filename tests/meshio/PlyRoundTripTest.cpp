#include <gtest/gtest.h>

#include <tests/meshio/PlyFiles.h>
#include <tests/support/MeshBuilding.h>

#include <Korvane/ElementTypes.h>
#include <meshio/DemoMesh.h>

#include <limits>
#include <random>

using namespace PlyFiles;
using namespace TestSupport;
using Korvane::Math::float2;
using MeshIo::MeshFormat;
using MeshIo::MeshRead;
using MeshIo::readPly;

namespace {

constexpr MeshFormat kFormats[] = {MeshFormat::PlyAscii, MeshFormat::PlyBinary,
                                   MeshFormat::PlyBinaryBigEndian};

template <class T>
struct ScalarOf {
    using type = T;
};
template <template <class> class Vector, class T>
struct ScalarOf<Vector<T>> {
    using type = T;
};
template <class Row, int Rows>
struct ScalarOf<Korvane::Math::Matrix<Row, Rows>> : ScalarOf<Row> {};

template <class S>
S randomScalar(std::mt19937& random)
{
    if constexpr (std::is_floating_point_v<S>)
        return static_cast<S>(random()) / static_cast<S>(1 + random() % 1000) - 1000;
    else
        return static_cast<S>(random());
}

// Random bits of every scalar of every value, so that a swapped or lost one shows.
template <class T>
Ptr<Array<T>> randomArray(std::size_t count, std::mt19937& random)
{
    using S = typename ScalarOf<T>::type;
    const auto array = makeMutable<Array<T>>(count);
    for (T& value : *array)
        for (std::size_t k = 0; k < sizeof(T) / sizeof(S); ++k) {
            const S scalar = randomScalar<S>(random);
            std::memcpy(reinterpret_cast<char*>(&value) + k * sizeof(S), &scalar, sizeof(S));
        }
    return array;
}

struct Component {
    const char* prefix;
    String name;
    std::size_t count;
};

/// Every element type that PLY can hold, on points, faces and corners, in turn.
MutablePtr<Object> meshOfAllTypes(std::size_t& propertyCount)
{
    const auto mesh = meshOf(6, {{0, 1, 2}, {0, 2, 3, 4, 5}, {1, 0, 5, 2}});
    const Component components[] = {{"p_", Geometry::sPointComp, 6},
                                    {"f_", Geometry::sFaceComp, 3},
                                    {"c_", Geometry::sFaceVertexComp, 12}};
    std::mt19937 random(1);
    propertyCount = 0;
    Korvane::anyElementType([&](auto tag, const char* typeName) {
        using T = typename decltype(tag)::type;
        if constexpr (!std::is_same_v<T, String> && !std::is_same_v<T, long long> &&
                      !std::is_same_v<T, unsigned long long>)
            for (const Component& component : components) {
                Geometry::addDataGeoProperty<T>(*mesh, component.prefix + std::string(typeName),
                                                component.name,
                                                randomArray<T>(component.count, random));
                ++propertyCount;
            }
        return false;
    });
    return mesh;
}

void expectSame(const Object& expected, const std::string& bytes)
{
    const MeshRead read = readPly(bytes, "f.ply");
    EXPECT_EQ(MeshFiles::firstDifference(expected, *read.mesh), "");
    EXPECT_TRUE(read.warnings.empty()) << read.warnings[0];
}

TEST(PlyRoundTrip, EveryNumericTypeOnPointsFacesAndCorners)
{
    std::size_t propertyCount = 0;
    const auto mesh = meshOfAllTypes(propertyCount);
    EXPECT_EQ(propertyCount, 3u * 33u);
    for (const MeshFormat format : kFormats) {
        std::vector<std::string> warnings;
        const std::string bytes = written(*mesh, format, &warnings);
        EXPECT_TRUE(warnings.empty());
        expectSame(*mesh, bytes);
    }
}

TEST(PlyRoundTrip, RandomPolygonsInManyBlocksWithScalarsBetweenLists)
{
    PolygonMesh polygons = randomPolygons(3, 5000, 40);
    const auto mesh = Geometry::makeMesh(Array<float3>(polygons.pointCount, {1, 2, 3}),
                                         polygons.faceOffset, polygons.faceVertex);
    std::mt19937 random(2);
    const std::size_t cornerCount = polygons.faceVertex.size();
    Geometry::addDataGeoProperty<int>(*mesh, "id", Geometry::sFaceComp,
                                      randomArray<int>(5000, random));
    Geometry::addDataGeoProperty<float2>(*mesh, "texcoord", Geometry::sFaceVertexComp,
                                         randomArray<float2>(cornerCount, random));
    Geometry::addDataGeoProperty<Korvane::Math::double4x4>(
        *mesh, "frame", Geometry::sFaceVertexComp,
        randomArray<Korvane::Math::double4x4>(cornerCount, random));  // 640 numbers in a list
    Geometry::addDataGeoProperty<float3>(*mesh, "normal", Geometry::sPointComp,
                                         randomArray<float3>(polygons.pointCount, random));
    for (const MeshFormat format : kFormats)
        expectSame(*mesh, written(*mesh, format));
}

TEST(PlyRoundTrip, ExtremeNumbersKeepTheirBits)
{
    const auto mesh = meshOf(4, {{0, 1, 2}});
    using Limits = std::numeric_limits<float>;
    Geometry::addDataGeoProperty<float>(
        *mesh, "f", Geometry::sPointComp,
        shared<float>({Limits::denorm_min(), -Limits::max(), -0.0f, Limits::infinity()}));
    Geometry::addDataGeoProperty<double>(
        *mesh, "d", Geometry::sPointComp,
        shared<double>({0.1, -std::numeric_limits<double>::infinity(), 1e-310, 5e300}));
    for (const MeshFormat format : kFormats)
        expectSame(*mesh, written(*mesh, format));
}

TEST(PlyRoundTrip, NamesOfAnyKindSurvive)
{
    const auto mesh = meshOf(1, {});
    for (const char* name : {"x", "x_", "", "%", "my name", "a\nb", "n\xC3\xA4h", "bad\xff", "x y",
                             "vertex_indices", "list", "nx", "normal_x"})
        Geometry::addDataGeoProperty<float>(*mesh, name, Geometry::sPointComp, shared({1.5f}));
    Geometry::addDataGeoProperty<float3>(*mesh, "normal", Geometry::sPointComp,
                                         shared<float3>({{1, 2, 3}}));
    for (const char* name : {"vertex_index", "y"})
        Geometry::addDataGeoProperty<int>(*mesh, name, Geometry::sFaceComp, shared<int>({}));
    for (const MeshFormat format : kFormats)
        expectSame(*mesh, written(*mesh, format));
}

TEST(PlyRoundTrip, GenericListsOfPointsAndFaces)
{
    // As many points as faces: only the property itself says whose lists they are.
    const std::string text =
        "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\n"
        "property float z\nproperty list uchar double a\nelement face 2\n"
        "property list uchar ushort b\nproperty list uchar uint vertex_indices\nend_header\n"
        "1 2 3 2 .5 .25\n4 5 6 0\n3 7 8 9 3 0 1 0\n1 65535 3 1 0 1\n";
    const MeshRead read = readPly(text, "f.ply");
    for (const MeshFormat format : kFormats) {
        const std::string bytes = written(*read.mesh, format);
        EXPECT_TRUE(contains(bytes, "comment property face list b b\n"));
        expectSame(*read.mesh, bytes);
    }
}

TEST(PlyRoundTrip, OtherProgramsFindTheirUsualNames)
{
    const auto mesh = meshOf(1, {});
    const auto add = [&](const char* name, auto value) {
        using T = decltype(value);
        Geometry::addDataGeoProperty<T>(*mesh, name, Geometry::sPointComp, shared<T>({value}));
    };
    add("normal", float3{0, 0, 1});
    add("color", Korvane::Math::uchar4{1, 2, 3, 4});
    add("texcoord", float2{0.5f, 1});
    add("lit", true);
    EXPECT_EQ(
        written(*mesh, MeshFormat::PlyAscii),
        "ply\nformat ascii 1.0\n"
        "comment property point float3 normal nx ny nz\n"
        "comment property point uchar4 color red green blue alpha\n"
        "comment property point float2 texcoord s t\n"
        "comment property point bool lit lit\n"
        "element vertex 1\nproperty float x\nproperty float y\nproperty float z\n"
        "property float nx\nproperty float ny\nproperty float nz\n"
        "property uchar red\nproperty uchar green\nproperty uchar blue\nproperty uchar alpha\n"
        "property float s\nproperty float t\nproperty uchar lit\n"
        "element face 0\nproperty list uchar int vertex_indices\nend_header\n"
        "0 0 0 0 0 1 1 2 3 4 0.5 1 1\n");
}

TEST(PlyRoundTrip, IndexedPropertiesAreWrittenValueByValue)
{
    const auto mesh = meshOf(4, {{0, 1, 2}, {2, 1, 3}});
    Geometry::addRangeGeoProperty(*mesh, "uv_index", Geometry::sFaceVertexComp,
                                  shared<uint>({0, 1, kNone, 1, 0, 1}));
    Geometry::addDataGeoProperty<float2>(*mesh, "uv", "uv_index", shared<float2>({{1, 2}, {3, 4}}),
                                         {9, 8});
    std::vector<std::string> warnings;
    const MeshRead read = readPly(written(*mesh, MeshFormat::PlyBinary, &warnings), "f.ply");
    EXPECT_EQ(*dataOf<float2>(*read.mesh, "uv"),
              (Array<float2>{{1, 2}, {3, 4}, {9, 8}, {3, 4}, {1, 2}, {3, 4}}));
    EXPECT_EQ(Geometry::getTargetComponent(*read.mesh, "uv"), Geometry::sFaceVertexComp);
    EXPECT_FALSE(read.mesh->hasProperty("uv_index"));
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0],
              "corner property \"uv\" is indexed, which PLY cannot hold; it is written "
              "value by value, without \"uv_index\", and 1 without a value get the "
              "default");
}

TEST(PlyRoundTrip, WhatPlyCannotHoldIsNamed)
{
    const auto mesh = meshOf(3, {{0, 1, 2}});
    Geometry::addDataGeoProperty<String>(*mesh, "material", Geometry::sFaceComp,
                                         shared<String>({"clay"}));
    Geometry::addDataGeoProperty<String>(*mesh, "note", Geometry::sPointComp,
                                         shared<String>({"a", "b", "c"}));
    Geometry::addDataGeoProperty<long long>(*mesh, "big", Geometry::sFaceComp,
                                            shared<long long>({1}));
    Geometry::addDataGeoProperty<float>(*mesh, "short", Geometry::sPointComp, shared({1.0f}));
    Geometry::addDataGeoProperty<float>(*mesh, "lost", "nowhere", shared({1.0f}));
    Geometry::addRangeGeoProperty(*mesh, "unused", Geometry::sFaceComp, shared<uint>({0}));
    mesh->setProperty("material_library", String("scene.mtl"));
    mesh->setProperty("scale", 2.5);
    const auto component = Korvane::createObject();
    Geometry::populateComponentGeoProperty(4, *component);
    mesh->setProperty("edges", component);
    std::vector<std::string> warnings;
    const MeshRead read = readPly(written(*mesh, MeshFormat::PlyAscii, &warnings), "f.ply");
    EXPECT_EQ(read.mesh->propertyNames().size(), 6u);
    const std::vector<std::string> expected = {
        "face property \"material\" (string) cannot be held by PLY and is left out; write OBJ to "
        "keep it",
        "point property \"note\" (string) cannot be held by PLY and is left out",
        "face property \"big\" (long) cannot be held by PLY and is left out",
        "point property \"short\" has 1 values for 3 elements and is left out",
        "property \"lost\" (float) belongs to neither points, faces nor corners and cannot be held "
        "by PLY and is left out",
        "index property \"unused\" has no values that use it and is left out",
        "value \"material_library\" (string) of the mesh cannot be held by PLY and is left out; "
        "write OBJ to keep it",
        "value \"scale\" of the mesh cannot be held by PLY and is left out",
        "component \"edges\" is neither of points, faces nor corners and is left out"};
    EXPECT_EQ(warnings, expected);
}

TEST(PlyRoundTrip, TheDemoMeshKeepsItsCornerValues)
{
    const auto mesh = MeshIo::makeDemoMesh(16);
    const MeshRead read = readPly(written(*mesh, MeshFormat::PlyBinary), "f.ply");
    const auto& indices =
        *Geometry::getRangeGeoPropIndices(*Geometry::getRangeGeoProperty(*mesh, "normal_index"));
    const auto& normals = *dataOf<float3>(*mesh, "normal");
    const auto& readNormals = *dataOf<float3>(*read.mesh, "normal");
    ASSERT_EQ(readNormals.size(), indices.size());
    for (std::size_t corner = 0; corner < indices.size(); ++corner)
        ASSERT_EQ(readNormals[corner], normals[indices[corner]]) << corner;
    for (const char* name : {"color", "face_id", "face_vertex", "face_offset", "point_position"})
        EXPECT_TRUE(MeshFiles::sameProperty(*mesh, *read.mesh, name)) << name;
}

TEST(PlyRoundTrip, FilesOfOtherProgramsKeepEverything)
{
    for (const char* name :
         {"cube.ply", "cube_binary.ply", "cube_uv.ply", "float-color.ply", "points.ply"}) {
        const std::string path = MeshFiles::installedModel(name);
        if (path.empty())
            GTEST_SKIP() << "no " << name << "; install assimp-testmodels";
        const MeshRead read = MeshIo::readMesh(path);
        EXPECT_TRUE(read.warnings.empty()) << name;
        for (const MeshFormat format : kFormats)
            expectSame(*read.mesh, written(*read.mesh, format));
    }
}

}  // namespace
