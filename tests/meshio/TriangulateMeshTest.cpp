#include <meshio/TriangulateMesh.h>

#include <Korvane/Geometry.h>
#include <Pelon/Job.h>

#include <gtest/gtest.h>
#include <support/MeshBuilding.h>

#include "MeshFiles.h"

#include <meshio/MeshFile.h>
#include <meshio/OutputFile.h>

#include <random>

namespace {

using namespace Korvane::Geometry;
using namespace TestSupport;
using Korvane::Math::float2;
using Korvane::Math::uint3;
using MeshIo::TriangulatedMesh;
using Strings = std::vector<std::string>;

//  3---2---4     face 0 is the quad 0 1 2 3, face 1 the pentagon 1 5 6 4 2
//  |   |    \.
//  0---1-5--6
MutablePtr<Object> quadAndPentagon()
{
    return meshOf(7, {{0, 1, 2, 3}, {1, 5, 6, 4, 2}});
}

Array<uint> indicesOf(const Object& mesh, const String& range)
{
    return *getRangeGeoPropIndices(*getRangeGeoProperty(mesh, range));
}

TriangulatedMesh triangulateAll(const Object& mesh)
{
    return MeshIo::triangulateMesh(mesh, MeshIo::carriedPropertyNames(mesh));
}

Strings names(const Array<String>& array)
{
    Strings list;
    for (const String& name : array)
        list.emplace_back(name.view());
    return list;
}

// The value that a point, corner or face ends up with, whether plain or behind an index array.
template <class T>
std::vector<T> resolved(const Object& mesh, const String& name)
{
    const Ptr<Array<T>> values = dataOf<T>(mesh, name);
    const Array<String> chain = getTargetChain(mesh, name);
    if (chain.empty())
        return {values->begin(), values->end()};
    std::vector<T> result;
    for (const uint index : indicesOf(mesh, chain[0]))
        result.push_back(index == kNone ? T() : (*values)[index]);
    return result;
}

TEST(TriangulateMesh, IndicesFollowTheCornersAndValuesAreShared)
{
    const auto mesh = quadAndPentagon();
    const auto uvs = shared<float2>({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {.5f, .5f}});
    addRangeGeoProperty(*mesh, "uv_index", sFaceVertexComp,
                        shared<uint>({0, 1, 2, 3, 4, kNone, 0, 2, 1}));
    addDataGeoProperty<float2>(*mesh, "uv", "uv_index", uvs, {9, 9},
                               Common::DataInterpolationMode::None);
    addDataGeoProperty<int>(*mesh, "paint", "uv_index", shared<int>({10, 11, 12, 13, 14}));

    const TriangulatedMesh result = triangulateAll(*mesh);
    EXPECT_EQ(result.warnings, Strings());
    EXPECT_EQ(*dataOf<uint>(*result.mesh, sFaceVertex),
              (Array<uint>{0, 1, 2, 0, 2, 3, 1, 5, 6, 1, 6, 4, 1, 4, 2}));
    EXPECT_EQ(indicesOf(*result.mesh, "uv_index"),
              (Array<uint>{0, 1, 2, 0, 2, 3, 4, kNone, 0, 4, 0, 2, 4, 2, 1}));
    EXPECT_EQ(getTargetComponent(*result.mesh, "paint"), sFaceVertexComp);
    EXPECT_EQ(dataOf<float2>(*result.mesh, "uv").get(), uvs.get());
    EXPECT_EQ(entryOf<float2>(*result.mesh, "uv", sDefault), (float2{9, 9}));
    EXPECT_EQ(entryOf<Common::DataInterpolationMode>(*result.mesh, "uv", sInterp),
              Common::DataInterpolationMode::None);
    EXPECT_EQ(indicesOf(*mesh, "uv_index").size(), 9u) << "the source changed";
}

TEST(TriangulateMesh, CarriesOnlyWhatIsNamedInTheOrderOfTheSource)
{
    const auto mesh = quadAndPentagon();
    addDataGeoProperty<String>(*mesh, "group", sFaceComp, shared<String>({"left", "right"}));
    addRangeGeoProperty(*mesh, "shade_index", sFaceComp, shared<uint>({1, 0}));
    addDataGeoProperty<float>(*mesh, "shade", "shade_index", shared<float>({.25f, .75f}));
    addRangeGeoProperty(*mesh, "ink_index", sPointComp, shared<uint>({0, 0, 0, 1, 1, 1, 1}));
    addDataGeoProperty<int>(*mesh, "ink", "ink_index", shared<int>({5, 6}));
    mesh->setProperty("material_library", String("roof.mtl"));
    mesh->setProperty(sRenderSettings, String("glossy"));

    const TriangulatedMesh all = triangulateAll(*mesh);
    EXPECT_EQ(names(all.mesh->propertyNames()), names(mesh->propertyNames()));
    EXPECT_EQ(*dataOf<String>(*all.mesh, "group"),
              (Array<String>{"left", "left", "right", "right", "right"}));
    EXPECT_EQ(indicesOf(*all.mesh, "shade_index"), (Array<uint>{1, 1, 0, 0, 0}));
    EXPECT_EQ(indicesOf(*all.mesh, "ink_index"), indicesOf(*mesh, "ink_index"));

    const TriangulatedMesh some = MeshIo::triangulateMesh(*mesh, {"ink", "absent"});
    EXPECT_EQ(names(MeshIo::carriedPropertyNames(*some.mesh)), Strings{"ink"});
    EXPECT_FALSE(some.mesh->hasProperty("shade_index"));
    EXPECT_FALSE(some.mesh->hasProperty(sRenderSettings));
    EXPECT_TRUE(some.mesh->hasProperty("material_library"));
}

void addList(Object& mesh, const std::string& name, Ptr<Array<uint>> offsets)
{
    const MutablePtr<Object> component = Korvane::createObject();
    populateComponentGeoProperty(3, *component);
    mesh.setProperty(name + "_component", component);
    addDataGeoProperty<int>(mesh, name, name + "_component", shared<int>({7, 8, 9}));
    addDataGeoProperty<uint>(mesh, name + "_offset", name, std::move(offsets));
}

TEST(TriangulateMesh, ListsOfPointsStayAndOthersAreLeftOutWithAWarning)
{
    const auto mesh = quadAndPentagon();
    addList(*mesh, "near", shared<uint>({0, 1, 1, 2, 2, 2, 3, 3}));
    addList(*mesh, "tags", shared<uint>({0, 2, 3}));
    EXPECT_EQ(names(MeshIo::carriedPropertyNames(*mesh)), (Strings{"near", "tags"}));

    const TriangulatedMesh result = triangulateAll(*mesh);
    EXPECT_EQ(dataOf<int>(*result.mesh, "near"), dataOf<int>(*mesh, "near"));
    EXPECT_EQ(dataOf<uint>(*result.mesh, "near_offset"), dataOf<uint>(*mesh, "near_offset"));
    EXPECT_EQ(getElementCount(*result.mesh, "near_component"), 3u);
    EXPECT_FALSE(result.mesh->hasProperty("tags"));
    EXPECT_FALSE(result.mesh->hasProperty("tags_offset"));
    EXPECT_EQ(result.warnings,
              Strings{"list property \"tags\" does not follow onto triangles and is left out"});

    // As many faces as points: nothing tells whose lists these are.
    const auto tetrahedron = meshOf(4, {{0, 1, 2}, {0, 3, 1}, {1, 3, 2}, {2, 3, 0}});
    addList(*tetrahedron, "tags", shared<uint>({0, 1, 2, 3, 3}));
    EXPECT_EQ(triangulateAll(*tetrahedron).warnings, result.warnings);

    // But if they say it themselves, as those of a file do, their word counts.
    for (const String& owner : {sPointComp, sFaceComp}) {
        const auto offsets = makeMutable<Object>(*getDataGeoProperty(*tetrahedron, "tags_offset"));
        offsets->setProperty(sDependsOn, makeMutable<Array<String>>(Array<String>{owner}));
        tetrahedron->setProperty("tags_offset", offsets);
        EXPECT_EQ(triangulateAll(*tetrahedron).warnings.size(), owner == sPointComp ? 0u : 1u);
    }
}

TEST(TriangulateMesh, NamesInAWarningWhatHasNoRule)
{
    const auto mesh = quadAndPentagon();
    addDataGeoProperty<float>(*mesh, "weight", "sample_component", shared<float>({1}));
    addDataGeoProperty<uint3>(*mesh, "triple", sFaceComp, shared<uint3>({{1, 2, 3}, {4, 5, 6}}));
    addRangeGeoProperty(*mesh, "outer", sFaceComp, shared<uint>({0, 1}));
    addRangeGeoProperty(*mesh, "inner", "outer", shared<uint>({1, 0}));
    addDataGeoProperty<int>(*mesh, "deep", "inner", shared<int>({3, 4}));
    EXPECT_EQ(
        triangulateAll(*mesh).warnings,
        (Strings{"property \"weight\" does not follow onto triangles and is left out",
                 "property of an unknown element type \"triple\" does not follow onto "
                 "triangles and is left out",
                 "indexed property \"deep\" does not follow onto triangles and is left out"}));
}

TEST(TriangulateMesh, FacelessMeshesKeepTheirPoints)
{
    const auto cloud = Korvane::createObject();
    populatePointCloud(shared<float3>({{1, 2, 3}, {4, 5, 6}}), *cloud);
    addDataGeoProperty<int>(*cloud, "id", sPointComp, shared<int>({8, 9}));
    const TriangulatedMesh result = triangulateAll(*cloud);
    EXPECT_EQ(names(result.mesh->propertyNames()), names(cloud->propertyNames()));
    EXPECT_EQ(getElementCount(*result.mesh, sPointComp), 2u);
    EXPECT_EQ(*dataOf<float3>(*result.mesh, sPointPosition),
              *dataOf<float3>(*cloud, sPointPosition));
    EXPECT_EQ(*dataOf<int>(*result.mesh, "id"), (Array<int>{8, 9}));
}

TEST(TriangulateMesh, RejectsFacesOfTwoCornersAndEndsWithACancelledJob)
{
    EXPECT_THROW(triangulateAll(*meshOf(3, {{0, 1}})), std::invalid_argument);

    const auto mesh = quadAndPentagon();
    addDataGeoProperty<int>(*mesh, "id", sFaceComp, shared<int>({1, 2}));
    Pelon::Job job;
    const Pelon::JobScope scope(job);
    job.cancel();
    EXPECT_THROW(triangulateAll(*mesh), std::runtime_error);
}

// The polygon corner, and the face, from which each triangle corner of the fan comes.
struct Origin {
    uint corner, face;
};

std::vector<Origin> fanOrigins(const Array<uint>& faceOffset)
{
    std::vector<Origin> origins;
    for (uint face = 0; face + 1 < faceOffset.size(); ++face)
        for (uint corner = faceOffset[face] + 2; corner < faceOffset[face + 1]; ++corner)
            for (const uint of : {faceOffset[face], corner - 1, corner})
                origins.push_back({of, face});
    return origins;
}

template <class T>
void expectCornersFollow(const Object& mesh, const Object& triangles, const String& name)
{
    SCOPED_TRACE(name.c_str());
    const std::vector<T> before = resolved<T>(mesh, name), after = resolved<T>(triangles, name);
    const std::vector<Origin> origins = fanOrigins(*dataOf<uint>(mesh, sFaceOffset));
    ASSERT_EQ(after.size(), origins.size());
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < origins.size(); ++i)
        wrong += after[i] == before[origins[i].corner] ? 0 : 1;
    EXPECT_EQ(wrong, 0u);
}

template <class T>
void expectFacesFollow(const Object& mesh, const Object& triangles, const String& name)
{
    SCOPED_TRACE(name.c_str());
    const std::vector<T> before = resolved<T>(mesh, name), after = resolved<T>(triangles, name);
    const std::vector<Origin> origins = fanOrigins(*dataOf<uint>(mesh, sFaceOffset));
    ASSERT_EQ(3 * after.size(), origins.size());
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < origins.size(); ++i)
        wrong += after[i / 3] == before[origins[i].face] ? 0 : 1;
    EXPECT_EQ(wrong, 0u);
}

MeshIo::MeshRead writtenAndRead(const Object& mesh, MeshIo::MeshFormat format)
{
    const MeshFiles::TemporaryFolder folder;
    const std::string path = folder / "mesh";
    MeshIo::OutputFile file(path, true);
    MeshIo::writeMesh(mesh, format, file);
    file.commit();
    return MeshIo::readMesh(path);
}

void expectCornersFollow(const Object& mesh, const Object& triangles)
{
    EXPECT_EQ(resolved<float3>(triangles, sPointPosition), resolved<float3>(mesh, sPointPosition));
    expectCornersFollow<uint>(mesh, triangles, sFaceVertex);
    expectCornersFollow<float3>(mesh, triangles, "normal");
    if (mesh.hasProperty("texcoord"))
        expectCornersFollow<float2>(mesh, triangles, "texcoord");
}

// One mesh with UVs and many groups, one with a face of 66 corners.
TEST(TriangulateMesh, RealMeshesKeepUvsNormalsAndGroupsThroughFiles)
{
    for (const char* name : {"spider.obj", "concave_polygon.obj"}) {
        SCOPED_TRACE(name);
        const std::string path = MeshFiles::installedModel(name);
        if (path.empty())
            GTEST_SKIP() << "needs the package assimp-testmodels";
        const auto mesh = MeshIo::readMesh(path).mesh;
        const auto triangles = triangulateAll(*mesh).mesh;

        const auto obj = writtenAndRead(*triangles, MeshIo::MeshFormat::Obj).mesh;
        EXPECT_EQ(MeshFiles::firstDifference(*obj, *triangles), "");
        expectCornersFollow(*mesh, *obj);
        expectFacesFollow<String>(*mesh, *obj, "group");
        expectFacesFollow<String>(*mesh, *obj, "material");
        for (const auto format : {MeshIo::MeshFormat::PlyBinary, MeshIo::MeshFormat::PlyAscii})
            expectCornersFollow(*mesh, *writtenAndRead(*triangles, format).mesh);
    }
}

TEST(TriangulateMesh, RandomMeshesFollowTheFanCornerByCorner)
{
    for (std::uint32_t seed = 0; seed < 50; ++seed) {
        SCOPED_TRACE(seed);
        const PolygonMesh random = randomPolygons(seed, 1 + seed * 7);
        const auto mesh =
            makeMesh(Array<float3>(random.pointCount), random.faceOffset, random.faceVertex);
        std::mt19937 generator(seed);
        Array<uint> indices, faceIndices;
        for (std::size_t i = 0; i < random.faceVertex.size(); ++i)
            indices.push_back(generator() % 4 == 0 ? kNone : generator() % 3);
        for (uint f = 0; f < random.faceCount(); ++f)
            faceIndices.push_back(generator() % 3);
        addRangeGeoProperty(*mesh, "corner", sFaceVertexComp, makeMutable<Array<uint>>(indices));
        addRangeGeoProperty(*mesh, "face", sFaceComp, makeMutable<Array<uint>>(faceIndices));
        addDataGeoProperty<int>(*mesh, "a", "corner", shared<int>({1, 2, 3}));
        addDataGeoProperty<int>(*mesh, "b", "face", shared<int>({4, 5, 6}));
        addDataGeoProperty<uint>(*mesh, "c", sFaceVertexComp, makeMutable<Array<uint>>(indices));

        const auto triangles = triangulateAll(*mesh).mesh;
        expectCornersFollow<int>(*mesh, *triangles, "a");
        expectFacesFollow<int>(*mesh, *triangles, "b");
        expectCornersFollow<uint>(*mesh, *triangles, "c");
    }
}

}  // namespace
