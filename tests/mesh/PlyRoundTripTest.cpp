#include <gtest/gtest.h>

#include <tests/mesh/PlyFiles.h>
#include <tests/support/MeshBuilding.h>

#include <Korvane/ElementTypes.h>

#include <limits>
#include <random>

using namespace PlyFiles;
using namespace TestSupport;
using namespace Korvane::Geometry;
using Korvane::Math::double4x4;
using Korvane::Math::float2;
using MeshFiles::addIndices;
using MeshFiles::addValues;
using TessaryMesh::MeshRead;

namespace {

// Random bytes, so that a swapped or lost one shows, which make finite numbers of every type.
template <class T>
Ptr<Array<T>> randomArray(std::size_t count, std::mt19937& random)
{
    const auto array = makeMutable<Array<T>>(count);
    auto* const bytes = reinterpret_cast<unsigned char*>(array->data());
    for (std::size_t i = 0; i < count * sizeof(T); ++i)
        bytes[i] = static_cast<unsigned char>(random() & (std::is_same_v<T, bool> ? 1 : 0xBF));
    return array;
}

void expectRoundTrips(const Object& mesh)
{
    for (const char* const format : kFormats) {
        std::vector<std::string> warnings;
        const MeshRead read = readPly(written(mesh, format, &warnings));
        EXPECT_EQ(MeshFiles::firstDifference(mesh, *read.mesh), "");
        warnings.insert(warnings.end(), read.warnings.begin(), read.warnings.end());
        EXPECT_TRUE(warnings.empty()) << warnings[0];
    }
}

TEST(PlyRoundTrip, EveryNumericTypeOnPointsFacesAndCorners)
{
    const auto mesh = meshOf(6, {{0, 1, 2}, {0, 2, 3, 4, 5}, {1, 0, 5, 2}});
    std::mt19937 random(1);
    std::size_t typeCount = 0;
    Korvane::anyElementType([&](auto tag, const char* typeName) {
        using T = typename decltype(tag)::type;
        if constexpr (!std::is_same_v<T, String> && !std::is_same_v<T, long long> &&
                      !std::is_same_v<T, unsigned long long>) {
            ++typeCount;
            for (const String& component : {sPointComp, sFaceComp, sFaceVertexComp})
                addDataGeoProperty<T>(*mesh, component.c_str() + std::string(typeName), component,
                                      randomArray<T>(getElementCount(*mesh, component), random));
        }
        return false;
    });
    EXPECT_EQ(typeCount, 33u);
    expectRoundTrips(*mesh);
}

TEST(PlyRoundTrip, RandomPolygonsInManyBlocksWithScalarsBetweenLists)
{
    const PolygonMesh polygons = randomPolygons(3, 5000, 40);
    const auto mesh = meshOf(polygons);
    std::mt19937 random(2);
    const std::size_t cornerCount = polygons.faceVertex.size();
    addDataGeoProperty<int>(*mesh, "id", sFaceComp, randomArray<int>(5000, random));
    addDataGeoProperty<float2>(*mesh, "texcoord", sFaceVertexComp,
                               randomArray<float2>(cornerCount, random));
    addDataGeoProperty<double4x4>(*mesh, "frame", sFaceVertexComp,  // 640 numbers in a list
                                  randomArray<double4x4>(cornerCount, random));
    addDataGeoProperty<float3>(*mesh, "normal", sPointComp,
                               randomArray<float3>(polygons.pointCount, random));
    expectRoundTrips(*mesh);
}

TEST(PlyRoundTrip, ExtremeNumbersAndNamesOfAnyKindSurvive)
{
    const auto mesh = meshOf(4, {});
    using Limits = std::numeric_limits<float>;
    addValues<float>(*mesh, "f", sPointComp,
                     {Limits::denorm_min(), -Limits::max(), -0.0f, Limits::infinity()});
    addValues<double>(*mesh, "d", sPointComp,
                      {0.1, -std::numeric_limits<double>::infinity(), 1e-310, 5e300});
    for (const char* name : {"x", "x_", "", "%", "my name", "a\nb", "n\xC3\xA4h", "bad\xff", "x y",
                             "vertex_indices", "list", "nx", "normal_x"})
        addValues<float>(*mesh, name, sPointComp, {1.5f, 2, 3, 4});
    addValues<float3>(*mesh, "normal", sPointComp, {{1, 2, 3}, {}, {}, {}});
    for (const char* name : {"vertex_index", "y"})
        addValues<int>(*mesh, name, sFaceComp, {});
    expectRoundTrips(*mesh);
}

TEST(PlyRoundTrip, GenericListsOfPointsAndFaces)
{
    // As many points as faces: only the property itself says whose lists they are.
    const MeshRead read = readPly(
        "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\n"
        "property float z\nproperty list uchar double a\nelement face 2\n"
        "property list uchar ushort b\nproperty list uchar uint vertex_indices\nend_header\n"
        "1 2 3 2 .5 .25\n4 5 6 0\n3 7 8 9 3 0 1 0\n1 65535 3 1 0 1\n");
    expectRoundTrips(*read.mesh);
    EXPECT_TRUE(contains(written(*read.mesh, "ply-ascii"), "comment property face list b b\n"));
}

TEST(PlyRoundTrip, OtherProgramsFindTheirUsualNames)
{
    const auto mesh = meshOf(1, {});
    addValues<float3>(*mesh, "normal", sPointComp, {{0, 0, 1}});
    addValues<Korvane::Math::uchar4>(*mesh, "color", sPointComp, {{1, 2, 3, 4}});
    addValues<float2>(*mesh, "texcoord", sPointComp, {{0.5f, 1}});
    addValues<bool>(*mesh, "lit", sPointComp, {true});
    addValues<float3>(*mesh, "face_color", sFaceComp, {});
    EXPECT_EQ(
        written(*mesh, "ply-ascii"),
        "ply\nformat ascii 1.0\n"
        "comment property point float3 normal nx ny nz\n"
        "comment property point uchar4 color red green blue alpha\n"
        "comment property point float2 texcoord s t\n"
        "comment property point bool lit lit\n"
        "comment property face float3 face_color red green blue\n"
        "element vertex 1\nproperty float x\nproperty float y\nproperty float z\n"
        "property float nx\nproperty float ny\nproperty float nz\n"
        "property uchar red\nproperty uchar green\nproperty uchar blue\nproperty uchar alpha\n"
        "property float s\nproperty float t\nproperty uchar lit\n"
        "element face 0\nproperty list uchar int vertex_indices\n"
        "property uchar red\nproperty uchar green\nproperty uchar blue\nend_header\n"
        "0 0 0 0 0 1 1 2 3 4 0.5 1 1\n");
}

TEST(PlyRoundTrip, IndexedPropertiesAreWrittenValueByValue)
{
    const auto mesh = meshOf(4, {{0, 1, 2}, {2, 1, 3}});
    addIndices(*mesh, "uv_index", sFaceVertexComp, {0, 1, kNone, 1, 0, 1});
    addValues<float2>(*mesh, "uv", "uv_index", {{1, 2}, {3, 4}}, {9, 8});
    std::vector<std::string> warnings;
    const MeshRead read = readPly(written(*mesh, "ply", &warnings));
    EXPECT_EQ(*dataOf<float2>(*read.mesh, "uv"),
              (Array<float2>{{1, 2}, {3, 4}, {9, 8}, {3, 4}, {1, 2}, {3, 4}}));
    EXPECT_EQ(getTargetComponent(*read.mesh, "uv"), sFaceVertexComp);
    EXPECT_FALSE(read.mesh->hasProperty("uv_index"));
    EXPECT_EQ(warnings, std::vector<std::string>{
                            "corner property \"uv\" is indexed, which PLY cannot hold; it is "
                            "written value by value, without \"uv_index\", and 1 without a value "
                            "get the default"});
}

TEST(PlyRoundTrip, WhatPlyCannotHoldIsNamed)
{
    const auto mesh = meshOf(3, {{0, 1, 2}});
    addValues<String>(*mesh, "material", sFaceComp, {"clay"});
    addValues<String>(*mesh, "note", sPointComp, {"a", "b", "c"});
    addValues<long long>(*mesh, "big", sFaceComp, {1});
    addValues<float>(*mesh, "short", sPointComp, {1});
    addValues<float>(*mesh, "lost", "nowhere", {1});
    addIndices(*mesh, "unused", sFaceComp, {0});
    mesh->setProperty("material_library", String("scene.mtl"));
    mesh->setProperty("scale", 2.5);
    const auto component = Korvane::createObject();
    populateComponentGeoProperty(4, *component);
    mesh->setProperty("edges", component);
    std::vector<std::string> warnings;
    const MeshRead read = readPly(written(*mesh, "ply-ascii", &warnings));
    EXPECT_EQ(read.mesh->propertyNames().size(), 6u);
    const std::string left = " cannot be held by PLY and is left out";
    const std::vector<std::string> expected = {
        "face property \"material\" (string)" + left + "; write OBJ to keep it",
        "point property \"note\" (string)" + left,
        "face property \"big\" (long)" + left,
        "point property \"short\" has 1 values for 3 elements and is left out",
        "property \"lost\" (float) belongs to neither points, faces nor corners and" + left,
        "index property \"unused\" has no values that use it and is left out",
        "value \"material_library\" (string) of the mesh" + left + "; write OBJ to keep it",
        "value \"scale\" of the mesh" + left,
        "component \"edges\" is neither of points, faces nor corners and is left out"};
    EXPECT_EQ(warnings, expected);
}

}  // namespace
