#include "support/MeshBuilding.h"

#include <Korvane/ElementTypes.h>
#include <TessaryMesh/Operations.h>

#include "mesh/MeshFiles.h"

#include <algorithm>
#include <cmath>

using namespace TestSupport;
using namespace Korvane::Geometry;
using namespace MeshFiles;
using TessaryMesh::makeSampleCloud;
using TessaryMesh::Carry;
using TessaryMesh::Result;
using TessaryMesh::SurfaceSamples;

namespace {

using Names = std::vector<std::string>;

// Polygons over random points, with samples wherever the kernel puts them.
struct Sampled {
    MutablePtr<Object> mesh;
    SurfaceSamples samples;

    explicit Sampled(std::uint32_t seed)
    {
        std::mt19937 random(seed);
        const PolygonMesh polygons = randomPolygons(seed, 30);
        Array<float3> points(polygons.pointCount);
        for (float3& p : points)
            p = {unit(random), unit(random), unit(random)};
        mesh = makeMesh(points, polygons.faceOffset, polygons.faceVertex);
        samples = TessaryMesh::SampledSurface(*mesh).sample(0.05f, seed);
    }

    static float unit(std::mt19937& random) { return static_cast<float>(random()) * 0x1p-32f; }

    Result cloud() const { return makeSampleCloud(*mesh, samples); }
    uint count(const String& component) const { return getElementCount(*mesh, component); }

    // The corners of the polygon mesh that each triangle has, listed by the kernel.
    Array<uint> cornersOfTriangles() const
    {
        Array<uint> ids(count(sFaceVertexComp)), offset, corners;
        for (uint i = 0; i < ids.size(); ++i)
            ids[i] = i;
        Tessary::computeTriangulation(*dataOf<uint>(*mesh, sFaceOffset), ids, offset, corners);
        return corners;
    }
};

int largest(const float3& w)
{
    const float all[] = {w.x, w.y, w.z};
    return static_cast<int>(std::max_element(all, all + 3) - all);
}

TEST(SampleCloud, SamplesKnowTheirPlaceAndRealValuesFollowPositionsBitForBit)
{
    for (std::uint32_t seed = 0; seed < 5; ++seed) {
        Sampled s(seed);
        const auto positions = dataOf<float3>(*s.mesh, sPointPosition);
        const auto corners = dataOf<uint>(*s.mesh, sFaceVertex);
        const auto atCorners = makeMutable<Array<float3>>();
        for (const uint point : *corners)
            atCorners->push_back((*positions)[point]);
        addDataGeoProperty<float3>(*s.mesh, "here", sPointComp, positions);
        addDataGeoProperty<float3>(*s.mesh, "there", sFaceVertexComp, atCorners);
        addRangeGeoProperty(*s.mesh, "indices", sFaceVertexComp, corners);
        addDataGeoProperty<float3>(*s.mesh, "everywhere", "indices", positions);

        const Result result = s.cloud();
        EXPECT_TRUE(result.warnings.empty());
        ASSERT_GT(s.samples.count(), 500u);
        for (const char* name : {"here", "there", "everywhere"})
            EXPECT_EQ(*dataOf<float3>(*result.mesh, name), *s.samples.positions) << name;
        const auto face = dataOf<uint>(*result.mesh, "face_id");
        const auto triangle = dataOf<uint>(*result.mesh, "triangle_id");
        const Array<uint>& offset = *dataOf<uint>(*s.mesh, sFaceOffset);
        const Array<uint> triCorners = s.cornersOfTriangles();
        for (std::size_t i = 0; i < face->size(); ++i)
            for (uint k = 0; k < 3; ++k) {
                const uint corner = triCorners[3 * (*triangle)[i] + k];
                ASSERT_GE(corner, offset[(*face)[i]]);
                ASSERT_LT(corner, offset[(*face)[i] + 1]);
            }
        EXPECT_EQ(*triangle, *s.samples.triangles);
    }
}

TEST(SampleCloud, OtherValuesArePickedFromTheHeaviestCornerAndFacesKeepTheirs)
{
    Sampled s(11);
    const auto names = makeMutable<Array<String>>();
    const auto stepped = makeMutable<Array<float>>();
    for (uint i = 0; i < s.count(sFaceVertexComp); ++i) {
        names->push_back("corner " + std::to_string(i));
        stepped->push_back(float(i));
    }
    const auto share = makeMutable<Array<double>>();
    for (uint f = 0; f < s.count(sFaceComp); ++f)
        share->push_back(f / 3.0);
    addDataGeoProperty<String>(*s.mesh, "label", sFaceVertexComp, names);
    addDataGeoProperty<double>(*s.mesh, "share", sFaceComp, share);
    addDataGeoProperty<float>(*s.mesh, "stepped", sFaceVertexComp, stepped, 0.0f,
                              Common::DataInterpolationMode::None);

    const Result result = s.cloud();
    const Array<uint> corners = s.cornersOfTriangles();
    const auto label = dataOf<String>(*result.mesh, "label");
    const auto weight = dataOf<float3>(*result.mesh, "weight");
    for (std::size_t i = 0; i < label->size(); ++i) {
        const uint corner = corners[3 * (*s.samples.triangles)[i] + largest((*weight)[i])];
        ASSERT_EQ((*label)[i], (*names)[corner]);
        ASSERT_EQ((*dataOf<float>(*result.mesh, "stepped"))[i], float(corner));
        const uint face = (*dataOf<uint>(*result.mesh, "face_id"))[i];
        ASSERT_EQ((*dataOf<double>(*result.mesh, "share"))[i], face / 3.0) << "not blended";
    }
}

TEST(SampleCloud, TiesGoToTheFirstCornerAndMissingValuesToTheDefault)
{
    const auto mesh = meshOf(4, {{0, 1, 2, 3}});
    SurfaceSamples samples;
    samples.positions = shared<float3>({{0, 0, 0}, {0, 0, 0}, {0, 0, 0}});
    samples.weights = shared<float>({0.25f, 0.25f, 0.5f, 0.5f, 0.5f, 0, 0.2f, 0.4f, 0.4f});
    samples.triangles = shared<uint>({1, 1, 1});  // points 0 2 3
    addValues<int>(*mesh, "id", sPointComp, {10, 11, 12, 13});
    addIndices(*mesh, "range", sFaceVertexComp, {0, 0, kNone, 1});
    addValues<int>(*mesh, "picked", "range", {5, 6}, -1);
    addValues<double>(*mesh, "real", "range", {5, 6}, 0.5);
    addIndices(*mesh, "gap", sFaceVertexComp, {kNone, 0, 0, 1});
    addValues<double>(*mesh, "first", "gap", {5, 6}, 1.5);
    const Result result = makeSampleCloud(*mesh, samples, {"id", "picked", "real", "first"});
    EXPECT_EQ(*dataOf<int>(*result.mesh, "id"), (Array<int>{13, 10, 12}));
    EXPECT_EQ(*dataOf<int>(*result.mesh, "picked"), (Array<int>{6, 5, -1}));
    EXPECT_EQ(*dataOf<double>(*result.mesh, "real"), (Array<double>{0.5, 0.5, 0.5}));
    EXPECT_EQ(*dataOf<double>(*result.mesh, "first"), (Array<double>{1.5, 1.5, 1.5}));
    EXPECT_EQ(result.warnings,
              (Names{"property \"picked\" has no value at 1 samples, which get its default",
                     "property \"real\" has no value at 3 samples, which get its default",
                     "property \"first\" has no value at 3 samples, which get its default"}));
}

TEST(SampleCloud, NamesThatAreTakenGiveWayAndWhatHasNoRuleIsLeftOut)
{
    Sampled s(3);
    addDataGeoProperty<int>(*s.mesh, "face_id", sFaceComp,
                            makeMutable<Array<int>>(s.count(sFaceComp), 9));
    addValues<float>(*s.mesh, "other", "somewhere", {1});
    s.mesh->setProperty("material_library", String("roof.mtl"));
    const Result result = s.cloud();
    EXPECT_EQ(result.warnings,
              (Names{"property \"other\" does not follow onto samples and is left out",
                     "property \"face_id\" of the mesh is called \"mesh_face_id\" here, as the "
                     "samples have their own"}));
    EXPECT_EQ((*dataOf<int>(*result.mesh, "mesh_face_id"))[0], 9);
    EXPECT_TRUE(dataOf<uint>(*result.mesh, "face_id"));
    EXPECT_EQ(*result.mesh->getProperty("material_library").get<String>(), "roof.mtl");
    const Result bare = makeSampleCloud(*s.mesh, s.samples, Carry::none(), false);
    EXPECT_EQ(TessaryMesh::carriedPropertyNames(*bare.mesh), (Array<String>{"normal"}));
}

TEST(SampleCloud, OfNoSamplesNeedsNoFaces)
{
    const auto cloud = Korvane::createObject();
    populatePointCloud(shared<float3>({{1, 2, 3}}), *cloud);
    EXPECT_EQ(getElementCount(*makeSampleCloud(*cloud, {}).mesh, sPointComp), 0u);
}

TEST(SampleCloud, NormalsAreThoseOfTheTrianglesUnlessTheMeshHasSome)
{
    const auto mesh = makeMesh({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 2}}, {0, 4}, {0, 1, 2, 3});
    const SurfaceSamples samples = TessaryMesh::SampledSurface(*mesh).sample(0.2f, 1);
    const auto normals =
        dataOf<float3>(*makeSampleCloud(*mesh, samples, Carry::none()).mesh, "normal");
    const float s = std::sqrt(1 / 3.0f);
    for (std::size_t i = 0; i < normals->size(); ++i) {
        const float3 expected = (*samples.triangles)[i] == 0 ? float3{0, 0, 1} : float3{s, -s, s};
        ASSERT_NEAR((*normals)[i].x, expected.x, 1e-6);
        ASSERT_NEAR((*normals)[i].y, expected.y, 1e-6);
        ASSERT_NEAR((*normals)[i].z, expected.z, 1e-6);
    }
    addValues<float3>(*mesh, "normal", sFaceComp, {{1, 0, 0}});
    EXPECT_EQ((*dataOf<float3>(*makeSampleCloud(*mesh, samples, {"normal"}).mesh, "normal"))[0],
              (float3{1, 0, 0}));
    for (const char* name : {"nx", "ny", "nz"})
        addValues<float>(*mesh, name, sFaceComp, {1});
    const auto scalars = makeSampleCloud(*mesh, samples, {"nx", "ny", "nz"}).mesh;
    EXPECT_FALSE(scalars->hasProperty("normal"));
}

}  // namespace
