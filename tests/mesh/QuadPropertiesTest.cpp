#include <TessaryMesh/Operations.h>

#include <Korvane/Geometry.h>

#include <gtest/gtest.h>
#include <support/Cancellation.h>
#include <support/MeshBuilding.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace Korvane::Geometry;
using namespace TestSupport;
using TessaryMesh::Carry;
using TessaryMesh::QuadOptions;

TessaryMesh::QuadResult quadsOf(const Object& mesh, const QuadOptions& options = {})
{
    return TessaryMesh::makeQuads(mesh, options);
}

// A grid of quads and pentagons (a quad with one edge halved), which no file has more of.
MutablePtr<Object> grid(uint side)
{
    Array<float3> points;
    for (uint i = 0; i < side * side; ++i)
        points.push_back({float(i % side), float(i / side), float(i % 3)});
    PolygonMesh polygons;
    for (uint y = 0; y + 1 < side; ++y)
        for (uint x = 0; x + 1 < side; ++x) {
            const uint a = y * side + x;
            Array<uint> face{a, a + 1, a + side + 1, a + side};
            if (y == 0) {
                face.push_back(static_cast<uint>(points.size()));
                points.push_back({float(x), .5f, 7});
            }
            polygons.addFace(face);
        }
    return makeMesh(points, polygons.faceOffset, polygons.faceVertex);
}

// The triangle's own three values, blended as the options say: slot s of 12.
float expectedAt(uint s, const float (&f)[3], const uint (&points)[3], const QuadOptions& options)
{
    const uint r = s / 4, next = (r + 1) % 3, prev = (r + 2) % 3;
    const float* const w = options.innerWeights;
    const auto onEdge = [&](uint a, uint b) {
        const float t = points[a] < points[b] ? options.edgeWeight : 1 - options.edgeWeight;
        return t * f[a] + (1 - t) * f[b];
    };
    const float corners[] = {f[r], onEdge(r, next), w[0] * f[0] + w[1] * f[1] + w[2] * f[2],
                             onEdge(prev, r)};
    return corners[s % 4];
}

TEST(QuadProperties, IndexedCornersKeepTheirSeamsAndTheirGaps)
{
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto mesh = grid(6);
        Array<uint> indices = *dataOf<uint>(*mesh, sFaceVertex);
        for (uint& index : indices) {
            const uint kind = random() % 10;
            index = kind == 0 ? kNone : kind < 3 ? random() % 40 : index;
        }
        const auto values = makeMutable<Array<float>>();
        for (uint i = 0; i < 64; ++i)
            values->push_back(float(random() % 1000));
        addRangeGeoProperty(*mesh, "uv_index", sFaceVertexComp, makeMutable<Array<uint>>(indices));
        addDataGeoProperty<float>(*mesh, "uv", "uv_index", values);
        QuadOptions options;
        options.edgeWeight = 0.25f;
        options.innerWeights[0] = 0.5f;
        options.innerWeights[1] = options.innerWeights[2] = 0.25f;
        const auto quads = quadsOf(*mesh, options).mesh;
        const auto triangles = TessaryMesh::triangulate(*mesh, {"uv"}).mesh;
        const Array<uint> before = *rangeOf(*triangles, "uv_index");
        const Array<uint> after = *rangeOf(*quads, "uv_index");
        const Array<float> all = *dataOf<float>(*quads, "uv");
        const Array<uint> fv = *dataOf<uint>(*triangles, sFaceVertex);
        ASSERT_EQ(after.size(), 4 * before.size());
        for (uint c = 0; c < before.size(); c += 3) {
            const uint points[3] = {fv[c], fv[c + 1], fv[c + 2]};
            float f[3] = {};
            for (uint k = 0; k < 3; ++k)
                f[k] = before[c + k] == kNone ? NAN : all[before[c + k]];
            for (uint s = 0; s < 12; ++s) {
                const float expected = expectedAt(s, f, points, options);
                const uint index = after[4 * c + s];
                ASSERT_EQ(index == kNone, std::isnan(expected)) << c << ' ' << s;
                ASSERT_TRUE(index == kNone || all[index] == expected) << c << ' ' << s;
            }
        }
    }
}

TEST(QuadProperties, ValuesAreSharedWhereThereIsNoSeam)
{
    // Two triangles of a plane, once with the same indices along their edge, once with a seam.
    for (const bool seam : {false, true}) {
        const auto mesh = meshOf(4, {{0, 1, 2}, {2, 1, 3}});
        addRangeGeoProperty(*mesh, "range", sFaceVertexComp,
                            shared<uint>({0, 1, 2, seam ? 4u : 2u, 1, 3}));
        addDataGeoProperty<float>(*mesh, "uv", "range", shared<float>({0, 1, 2, 3, 4}));
        EXPECT_EQ(dataOf<float>(*quadsOf(*mesh).mesh, "uv")->size(), 5u + 2 + (seam ? 6 : 5));
    }
}

QuadOptions uneven()
{
    QuadOptions options;
    options.edgeWeight = 0.3f;
    return options;
}

TEST(QuadProperties, PointValuesFollowWithThePositions)
{
    const auto mesh = grid(4);
    const auto copy = makeMutable<Array<float3>>(*dataOf<float3>(*mesh, sPointPosition));
    addDataGeoProperty<float3>(*mesh, "same", sPointComp, copy);
    addDataGeoProperty<float3>(*mesh, sPointVelocity, sPointComp, copy);
    const auto result = quadsOf(*mesh, uneven());
    EXPECT_TRUE(result.warnings.empty());
    const Array<float3> positions = *dataOf<float3>(*result.mesh, sPointPosition);
    EXPECT_EQ(*dataOf<float3>(*result.mesh, "same"), positions);
    EXPECT_EQ(*dataOf<float3>(*result.mesh, sPointVelocity), positions);
}

TEST(QuadProperties, AsManyValuesOfOneRangeStayInOneRange)
{
    const auto mesh = grid(4);
    const auto heights = makeMutable<Array<double>>();
    const auto ids = makeMutable<Array<uint>>();
    for (const float3& point : *dataOf<float3>(*mesh, sPointPosition)) {
        ids->push_back(static_cast<uint>(ids->size()));
        heights->push_back(point.z);
    }
    addRangeGeoProperty(*mesh, "shared", sPointComp, ids);
    addDataGeoProperty<double>(*mesh, "height", "shared", heights, 0,
                               Common::DataInterpolationMode::Constant);
    addDataGeoProperty<uint>(*mesh, "id", "shared", ids);
    addDataGeoProperty<uint>(*mesh, "longer", "shared", makeMutable<Array<uint>>(100, 5u));
    const auto quads = quadsOf(*mesh, uneven()).mesh;
    const Array<uint> indices = *rangeOf(*quads, "shared");
    const Array<float3> positions = *dataOf<float3>(*quads, sPointPosition);
    for (uint p = 0; p < positions.size(); ++p)
        ASSERT_NEAR((*dataOf<double>(*quads, "height"))[indices[p]], positions[p].z, 1e-5);
    EXPECT_EQ(entryOf<String>(*quads, "id", sTarget), "shared");
    EXPECT_EQ(entryOf<String>(*quads, "longer", sTarget), "shared_longer") << "more values";
    EXPECT_EQ(entryOf<Common::DataInterpolationMode>(*quads, "height", sInterp),
              Common::DataInterpolationMode::Constant);
}

TEST(QuadProperties, ValuesOfFacesAndOfTheMeshAreThoseOfTheSource)
{
    const auto mesh = grid(4);
    const auto names = makeMutable<Array<String>>(getElementCount(*mesh, sFaceComp), "a");
    (*names)[1] = "b";
    addDataGeoProperty<String>(*mesh, "material", sFaceComp, names);
    mesh->setProperty("material_library", String("roof.mtl"));
    mesh->setProperty(sRenderSettings, 3);
    const auto quads = quadsOf(*mesh).mesh;
    const Array<String> materials = *dataOf<String>(*quads, "material");
    EXPECT_EQ(std::count(materials.begin(), materials.end(), String("b")), 3 * 3) << "a pentagon";
    EXPECT_EQ(*quads->getProperty("material_library").get<String>(), "roof.mtl");
    EXPECT_EQ(*quads->getProperty(sRenderSettings).get<int>(), 3);
}

TEST(QuadProperties, WhatHasNoRuleIsLeftOutWithAWarningAndWhatIsNotNamedWithoutOne)
{
    const auto mesh = grid(3);
    addDataGeoProperty<float>(*mesh, "weight", "samples", shared<float>({1}));
    addDataGeoProperty<int>(*mesh, "id", sFaceComp, makeMutable<Array<int>>(4));
    const auto all = quadsOf(*mesh);
    EXPECT_EQ(all.warnings, std::vector<std::string>{
                                "property \"weight\" does not follow onto quads and is left out"});
    EXPECT_TRUE(all.mesh->hasProperty("id"));
    const auto none = TessaryMesh::makeQuads(*mesh, {}, Carry::none());
    EXPECT_TRUE(none.warnings.empty());
    EXPECT_TRUE(TessaryMesh::carriedPropertyNames(*none.mesh).empty());
}

TEST(QuadProperties, ACancelledJobEndsTheWork)
{
    const auto mesh = grid(5);
    EXPECT_TRUE(endsWhenCancelled([&] { quadsOf(*mesh); }));
}

}  // namespace
