#include <TessaryMesh/Operations.h>

#include <gtest/gtest.h>
#include <support/Cancellation.h>
#include <support/MeshBuilding.h>

#include "MeshFiles.h"

#include <random>

namespace {

using namespace Korvane::Geometry;
using namespace MeshFiles;
using namespace TestSupport;
using Korvane::Math::float2;
using Korvane::Math::uint3;
using TessaryMesh::Result;
using TessaryMesh::triangulate;
using Strings = std::vector<std::string>;

//  3---2---4     face 0 is the quad 0 1 2 3, face 1 the pentagon 1 5 6 4 2
//  |   |    \.
//  0---1-5--6
MutablePtr<Object> quadAndPentagon()
{
    return meshOf(7, {{0, 1, 2, 3}, {1, 5, 6, 4, 2}});
}

std::vector<uint> listOf(const Array<uint>& array)
{
    return {array.begin(), array.end()};
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
    for (const uint index : *rangeOf(mesh, chain[0]))
        result.push_back(index == kNone ? T() : (*values)[index]);
    return result;
}

TEST(Triangulate, IndicesFollowTheCornersAndValuesAreShared)
{
    const auto mesh = quadAndPentagon();
    const auto uvs = shared<float2>({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {.5f, .5f}});
    addIndices(*mesh, "uv_index", sFaceVertexComp, {0, 1, 2, 3, 4, kNone, 0, 2, 1});
    addDataGeoProperty<float2>(*mesh, "uv", "uv_index", uvs, {9, 9},
                               Common::DataInterpolationMode::None);
    addValues<int>(*mesh, "paint", "uv_index", {10, 11, 12, 13, 14});

    const Result result = triangulate(*mesh);
    EXPECT_EQ(result.warnings, Strings());
    EXPECT_EQ(*dataOf<uint>(*result.mesh, sFaceVertex),
              (Array<uint>{0, 1, 2, 0, 2, 3, 1, 5, 6, 1, 6, 4, 1, 4, 2}));
    EXPECT_EQ(*rangeOf(*result.mesh, "uv_index"),
              (Array<uint>{0, 1, 2, 0, 2, 3, 4, kNone, 0, 4, 0, 2, 4, 2, 1}));
    EXPECT_EQ(getTargetComponent(*result.mesh, "paint"), sFaceVertexComp);
    EXPECT_EQ(dataOf<float2>(*result.mesh, "uv").get(), uvs.get());
    EXPECT_EQ(entryOf<float2>(*result.mesh, "uv", sDefault), (float2{9, 9}));
    EXPECT_EQ(entryOf<Common::DataInterpolationMode>(*result.mesh, "uv", sInterp),
              Common::DataInterpolationMode::None);
    EXPECT_EQ(rangeOf(*mesh, "uv_index")->size(), 9u) << "the source changed";
}

TEST(Triangulate, CarriesOnlyWhatIsNamedInTheOrderOfTheSource)
{
    const auto mesh = quadAndPentagon();
    addValues<String>(*mesh, "group", sFaceComp, {"left", "right"});
    addIndices(*mesh, "shade_index", sFaceComp, {1, 0});
    addValues<float>(*mesh, "shade", "shade_index", {.25f, .75f});
    addIndices(*mesh, "ink_index", sPointComp, {0, 0, 0, 1, 1, 1, 1});
    addValues<int>(*mesh, "ink", "ink_index", {5, 6});
    mesh->setProperty("material_library", String("roof.mtl"));
    mesh->setProperty(sRenderSettings, String("glossy"));

    const Result all = triangulate(*mesh);
    EXPECT_EQ(all.mesh->propertyNames(), mesh->propertyNames());
    EXPECT_EQ(*dataOf<String>(*all.mesh, "group"),
              (Array<String>{"left", "left", "right", "right", "right"}));
    EXPECT_EQ(*rangeOf(*all.mesh, "shade_index"), (Array<uint>{1, 1, 0, 0, 0}));
    EXPECT_EQ(*rangeOf(*all.mesh, "ink_index"), *rangeOf(*mesh, "ink_index"));

    const Result some = triangulate(*mesh, {"ink", "absent"});
    EXPECT_EQ(TessaryMesh::carriedPropertyNames(*some.mesh), Array<String>{"ink"});
    EXPECT_FALSE(some.mesh->hasProperty("shade_index"));
    EXPECT_FALSE(some.mesh->hasProperty(sRenderSettings));
    EXPECT_TRUE(some.mesh->hasProperty("material_library"));

    // Tags name points, unless they are holes.
    mesh->setProperty("subdivision_tags", String("crease 2/1/0 0 1 3"));
    EXPECT_TRUE(triangulate(*mesh).mesh->hasProperty("subdivision_tags"));
    mesh->setProperty("subdivision_tags", String("crease 2/1/0 0 1 3\nhole 1/0/0 1"));
    const Result withHole = triangulate(*mesh);
    EXPECT_FALSE(withHole.mesh->hasProperty("subdivision_tags"));
    EXPECT_EQ(withHole.warnings.size(), 1u);
}

void addList(Object& mesh, const std::string& name, Ptr<Array<uint>> offsets)
{
    const MutablePtr<Object> component = Korvane::createObject();
    populateComponentGeoProperty(3, *component);
    mesh.setProperty(name + "_component", component);
    addDataGeoProperty<int>(mesh, name, name + "_component", shared<int>({7, 8, 9}));
    addDataGeoProperty<uint>(mesh, name + "_offset", name, std::move(offsets));
}

TEST(Triangulate, ListsOfPointsStayAndOthersAreLeftOutWithAWarning)
{
    const auto mesh = quadAndPentagon();
    addList(*mesh, "near", shared<uint>({0, 1, 1, 2, 2, 2, 3, 3}));
    addList(*mesh, "tags", shared<uint>({0, 2, 3}));
    EXPECT_EQ(TessaryMesh::carriedPropertyNames(*mesh), (Array<String>{"near", "tags"}));

    const Result result = triangulate(*mesh);
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
    EXPECT_EQ(triangulate(*tetrahedron).warnings, result.warnings);

    // But if they say it themselves, as those of a file do, their word counts.
    for (const String& owner : {sPointComp, sFaceComp}) {
        const auto offsets = makeMutable<Object>(*getDataGeoProperty(*tetrahedron, "tags_offset"));
        offsets->setProperty(sDependsOn, makeMutable<Array<String>>(Array<String>{owner}));
        tetrahedron->setProperty("tags_offset", offsets);
        EXPECT_EQ(triangulate(*tetrahedron).warnings.size(), owner == sPointComp ? 0u : 1u);
    }
}

TEST(Triangulate, NamesInAWarningWhatHasNoRule)
{
    const auto mesh = quadAndPentagon();
    addValues<float>(*mesh, "weight", "sample_component", {1});
    addValues<uint3>(*mesh, "triple", sFaceComp, {{1, 2, 3}, {4, 5, 6}});
    addIndices(*mesh, "outer", sFaceComp, {0, 1});
    addIndices(*mesh, "inner", "outer", {1, 0});
    addValues<int>(*mesh, "deep", "inner", {3, 4});
    const std::string left = " does not follow onto triangles and is left out";
    EXPECT_EQ(triangulate(*mesh).warnings,
              (Strings{"property \"weight\"" + left,
                       "property of an unknown element type \"triple\"" + left,
                       "indexed property \"deep\"" + left}));
}

TEST(Triangulate, FacelessMeshesKeepTheirPoints)
{
    const auto cloud = Korvane::createObject();
    populatePointCloud(shared<float3>({{1, 2, 3}, {4, 5, 6}}), *cloud);
    addValues<int>(*cloud, "id", sPointComp, {8, 9});
    const Result result = triangulate(*cloud);
    EXPECT_EQ(firstDifference(*result.mesh, *cloud), "");
}

TEST(Triangulate, RejectsFacesOfTwoCornersAndEndsWithACancelledJob)
{
    EXPECT_EQ(
        messageOf<TessaryMesh::InvalidMesh>([] {
            triangulate(*meshOf(3, {{0, 1, 2}, {0, 1}, {2}}));
        }),
        "the mesh has faces that cannot be triangulated (2 times), first at face 1, which has 2; "
        "validate it");

    // Offsets that fall, or leave corners over: what nobody validated must not be read astray.
    for (const Array<uint>& offsets : {Array<uint>{0, 4, 3, 6}, {3, 6}, {0, 3}}) {
        const auto unsound = makeMesh(Array<float3>(4), offsets, {0, 1, 2, 0, 2, 3});
        EXPECT_THROW(triangulate(*unsound), TessaryMesh::InvalidMesh);
        EXPECT_THROW(TessaryMesh::makeQuads(*unsound), TessaryMesh::InvalidMesh);
    }

    const auto mesh = quadAndPentagon();
    EXPECT_TRUE(endsWhenCancelled([&] { triangulate(*mesh); }));
    addValues<int>(*mesh, "id", sFaceComp, {1, 2});
    EXPECT_TRUE(endsWhenCancelled([&] { triangulate(*mesh); }));
}

// The polygon corner from which each triangle corner of the fan comes, and its face.
struct Origins {
    explicit Origins(const Array<uint>& faceOffset)
    {
        for (uint face = 0; face + 1 < faceOffset.size(); ++face)
            for (uint corner = faceOffset[face] + 2; corner < faceOffset[face + 1]; ++corner) {
                corners.insert(corners.end(), {faceOffset[face], corner - 1, corner});
                faces.push_back(face);
            }
    }

    std::vector<uint> corners, faces;
};

template <class T>
void expectFollows(const Object& mesh, const Object& triangles, const String& name)
{
    SCOPED_TRACE(name.c_str());
    const Origins origins(*dataOf<uint>(mesh, sFaceOffset));
    const bool isOfFaces = getTargetComponent(mesh, name) == sFaceComp;
    const std::vector<T> before = resolved<T>(mesh, name);
    std::vector<T> expected;
    for (const uint origin : isOfFaces ? origins.faces : origins.corners)
        expected.push_back(before[origin]);
    EXPECT_TRUE(resolved<T>(triangles, name) == expected);
}

// One mesh with UVs and many groups, one with a face of 66 corners.
TEST(Triangulate, RealMeshesKeepUvsNormalsAndGroupsThroughFiles)
{
    for (const char* name : {"spider.obj", "concave_polygon.obj"}) {
        SCOPED_TRACE(name);
        const std::string path = installedModel(name);
        if (path.empty())
            GTEST_SKIP() << "needs the package assimp-testmodels";
        const auto mesh = TessaryMesh::readMesh(path).mesh;
        const auto triangles = triangulate(*mesh).mesh;
        const auto obj = parsed(written(*triangles, "obj")).mesh;
        EXPECT_EQ(firstDifference(*obj, *triangles), "");
        expectFollows<String>(*mesh, *obj, "group");
        expectFollows<String>(*mesh, *obj, "material");
        const auto ply = parsed(written(*triangles, "ply"));
        for (const auto& read : {obj, ply.mesh}) {
            EXPECT_EQ(resolved<float3>(*read, sPointPosition),
                      resolved<float3>(*mesh, sPointPosition));
            expectFollows<uint>(*mesh, *read, sFaceVertex);
            expectFollows<float3>(*mesh, *read, "normal");
            if (mesh->hasProperty("texcoord"))
                expectFollows<float2>(*mesh, *read, "texcoord");
        }
    }
}

TEST(Triangulate, RandomMeshesFollowTheFanCornerByCorner)
{
    for (std::uint32_t seed = 0; seed < 50; ++seed) {
        SCOPED_TRACE(seed);
        const PolygonMesh polygons = randomPolygons(seed, 1 + seed * 7);
        const auto mesh = meshOf(polygons);
        std::mt19937 random(seed);
        const auto indices = makeMutable<Array<uint>>(polygons.faceVertex.size());
        for (uint& index : *indices)
            index = random() % 4 == 0 ? kNone : random() % 3;
        const auto faceIndices = makeMutable<Array<uint>>(polygons.faceCount());
        for (uint& index : *faceIndices)
            index = random() % 3;
        addRangeGeoProperty(*mesh, "corner", sFaceVertexComp, indices);
        addRangeGeoProperty(*mesh, "face", sFaceComp, faceIndices);
        addValues<int>(*mesh, "a", "corner", {1, 2, 3});
        addValues<int>(*mesh, "b", "face", {4, 5, 6});
        addDataGeoProperty<uint>(*mesh, "c", sFaceVertexComp, indices);

        const Result result = triangulate(*mesh);
        const auto triangles = result.mesh;
        const Origins origins(polygons.faceOffset);
        EXPECT_EQ(listOf(*result.parents.face), origins.faces);
        EXPECT_EQ(listOf(*result.parents.corner), origins.corners);
        expectFollows<int>(*mesh, *triangles, "a");
        expectFollows<int>(*mesh, *triangles, "b");
        expectFollows<uint>(*mesh, *triangles, "c");
    }
}

}  // namespace
