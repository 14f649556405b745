#include <gtest/gtest.h>

#include <tests/support/MeshBuilding.h>

#include <TessaryMesh/Check.h>
#include <TessaryMesh/Operations.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <set>

using namespace TestSupport;
using Korvane::Math::float2;
using TessaryMesh::makeDemoMesh;

namespace {

struct Demo {
    explicit Demo(uint resolution)
        : mesh(makeDemoMesh(resolution)),
          points(*dataOf<float3>(*mesh, Geometry::sPointPosition)),
          offset(*dataOf<uint>(*mesh, Geometry::sFaceOffset)),
          corners(*dataOf<uint>(*mesh, Geometry::sFaceVertex))
    {}

    MutablePtr<Object> mesh;
    const Array<float3>& points;
    const Array<uint>& offset;
    const Array<uint>& corners;
};

float3 minus(const float3& a, const float3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

float3 cross(const float3& a, const float3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float dot(const float3& a, const float3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

TEST(DemoMesh, IsClosedAndOrientedAtEveryResolution)
{
    for (const uint resolution : {8u, 9u, 10u, 15u, 16u, 33u}) {
        SCOPED_TRACE(resolution);
        const auto mesh = makeDemoMesh(resolution);
        const TessaryMesh::MeshShape shape = TessaryMesh::shapeOf(*mesh);
        EXPECT_EQ(shape.genus, 1u) << "only a closed and oriented mesh has one";
        EXPECT_EQ(shape.unusedPoints, 0u);
        EXPECT_TRUE(TessaryMesh::validateMesh(*mesh).problems.empty());
    }
}

TEST(DemoMesh, MixesFacesOfManySizesAndGrowsWithTheResolution)
{
    const Demo demo(32);
    std::map<uint, int> sizes;
    for (std::size_t f = 0; f + 1 < demo.offset.size(); ++f)
        ++sizes[demo.offset[f + 1] - demo.offset[f]];
    for (const uint size : {3u, 4u, 5u, 6u, 8u})
        EXPECT_GT(sizes[size], 100) << size;
    EXPECT_EQ(sizes.size(), 5u);
    EXPECT_GT(Demo(8).offset.size(), 200u);
    EXPECT_LT(Demo(8).offset.size(), 1000u);
    EXPECT_NEAR(double(demo.offset.size()) * 256, 1e6, 2e5);
    EXPECT_THROW(makeDemoMesh(7), TessaryMesh::ArgumentError);
    EXPECT_THROW(makeDemoMesh(8193), TessaryMesh::ArgumentError);
}

TEST(DemoMesh, NormalsPointOutwardsAndBreakAtRidges)
{
    const Demo demo(32);
    const auto& normals = *dataOf<float3>(*demo.mesh, "normal");
    const auto& index = *rangeOf(*demo.mesh, "normal_index");
    std::map<uint, std::set<uint>> normalsOfPoint;
    for (std::size_t f = 0; f + 1 < demo.offset.size(); ++f) {
        float3 area = {0, 0, 0};
        const float3 first = demo.points[demo.corners[demo.offset[f]]];
        for (uint c = demo.offset[f] + 1; c + 1 < demo.offset[f + 1]; ++c) {
            const float3 n = cross(minus(demo.points[demo.corners[c]], first),
                                   minus(demo.points[demo.corners[c + 1]], first));
            area = {area.x + n.x, area.y + n.y, area.z + n.z};
        }
        for (uint c = demo.offset[f]; c < demo.offset[f + 1]; ++c) {
            ASSERT_NEAR(dot(normals[index[c]], normals[index[c]]), 1, 1e-5);
            // Within 25 degrees of the face's own normal.
            ASSERT_GT(dot(normals[index[c]], area), 0.9f * std::sqrt(dot(area, area))) << f;
            normalsOfPoint[demo.corners[c]].insert(index[c]);
        }
    }
    const auto broken = std::count_if(normalsOfPoint.begin(), normalsOfPoint.end(),
                                      [](const auto& entry) { return entry.second.size() == 2; });
    EXPECT_EQ(broken, 2 * 4 * 32);
}

TEST(DemoMesh, TextureCoordinatesHaveASeamAndNoJumpInsideAFace)
{
    const Demo demo(16);
    const auto& uvs = *dataOf<float2>(*demo.mesh, "texcoord");
    const auto& index = *rangeOf(*demo.mesh, "texcoord_index");
    EXPECT_EQ(uvs.size(), 17u * 65u);
    EXPECT_EQ(demo.points.size(), 16u * 64u);
    for (std::size_t f = 0; f + 1 < demo.offset.size(); ++f)
        for (uint c = demo.offset[f]; c < demo.offset[f + 1]; ++c) {
            const float2 a = uvs[index[c]];
            const float2 b = uvs[index[demo.offset[f]]];
            ASSERT_LE(std::fabs(a.x - b.x), 3.01f / 64) << f;
            ASSERT_LE(std::fabs(a.y - b.y), 1.01f / 16) << f;
        }
}

TEST(DemoMesh, CarriesFaceAndPointProperties)
{
    const Demo demo(8);
    const auto& materials = *dataOf<String>(*demo.mesh, "material");
    EXPECT_EQ(std::set<String>(materials.begin(), materials.end()).size(), 5u);
    const auto& ids = *dataOf<int>(*demo.mesh, "face_id");
    EXPECT_EQ(std::set<int>(ids.begin(), ids.end()).size(), ids.size());
    for (const float3& color : *dataOf<float3>(*demo.mesh, "color"))
        for (const float part : {color.x, color.y, color.z})
            ASSERT_TRUE(part >= 0 && part <= 1);
}

template <class T>
void mix(std::uint64_t& hash, const Array<T>& values)
{
    for (const T& value : values) {
        std::uint32_t words[sizeof(T) / 4];
        std::memcpy(words, &value, sizeof(T));
        for (const std::uint32_t word : words)
            hash = (hash ^ word) * 0x100000001B3u;
    }
}

TEST(DemoMesh, HasTheSameBitsOnEveryMachine)
{
    const Demo demo(24);
    std::uint64_t hash = 0xCBF29CE484222325u;
    mix(hash, demo.points);
    mix(hash, demo.offset);
    mix(hash, demo.corners);
    mix(hash, *dataOf<float3>(*demo.mesh, "normal"));
    mix(hash, *dataOf<float2>(*demo.mesh, "texcoord"));
    mix(hash, *dataOf<float3>(*demo.mesh, "color"));
    mix(hash, *rangeOf(*demo.mesh, "normal_index"));
    mix(hash, *rangeOf(*demo.mesh, "texcoord_index"));
    EXPECT_EQ(hash, 10904425144183943910u);
}

}  // namespace
