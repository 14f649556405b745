#include "support/MeshBuilding.h"

#include <Korvane/Geometry.h>
#include <gtest/gtest.h>

namespace {

using namespace TestSupport;
using namespace Korvane::Geometry;
using Korvane::createObject;

//  3---2     one quad; "temperature" is a plain property on points, "uv" holds two values that the
//  |   |     corners address through the range property "uv_index"
//  0---1
MutablePtr<Object> quad()
{
    const auto mesh = makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0, 4}, {0, 1, 2, 3});
    addDataGeoProperty<float>(*mesh, "temperature", sPointComp, shared<float>({1, 2, 3, 4}), 9,
                              Mode::Constant);
    addRangeGeoProperty(*mesh, "uv_index", sFaceVertexComp, shared<uint>({0, 1, 1, 0}));
    addDataGeoProperty<int>(*mesh, "uv", "uv_index", shared<int>({5, 6}));
    return mesh;
}

TEST(Geometry, AMeshHasItsTopologyAndMatchingCounts)
{
    const auto mesh = quad();
    EXPECT_EQ(getElementCount(*mesh, sPointComp), 4u);
    EXPECT_EQ(getElementCount(*mesh, sFaceComp), 1u);
    EXPECT_EQ(getElementCount(*mesh, sFaceVertexComp), 4u);
    EXPECT_EQ(*dataArray<uint>(*mesh, sFaceOffset), (Array<uint>{0, 4}));
    EXPECT_EQ(*dataArray<uint>(*mesh, sFaceVertex), (Array<uint>{0, 1, 2, 3}));
    EXPECT_EQ((*dataArray<float3>(*mesh, sPointPosition))[2], (float3{1, 1, 0}));
    EXPECT_EQ(getTargetComponent(*mesh, sFaceOffset), sFaceComp);
    EXPECT_EQ(getTargetComponent(*mesh, sFaceVertex), sFaceVertexComp);

    populateMesh(*mesh);
    EXPECT_EQ(getElementCount(*mesh, sPointComp), 0u);
    EXPECT_EQ(getElementCount(*mesh, sFaceVertexComp), 0u);
    EXPECT_EQ(*dataArray<uint>(*mesh, sFaceOffset), (Array<uint>{0}));
    EXPECT_TRUE(dataArray<float3>(*mesh, sPointPosition)->empty());
    EXPECT_TRUE(mesh->hasProperty("temperature"));
    EXPECT_EQ(getElementCount(*makeMesh({}, {}, {}), sFaceComp), 0u);
}

TEST(Geometry, ElementCountsBelongToComponentsAlone)
{
    const auto mesh = quad();
    const Object before = *mesh;
    EXPECT_TRUE(setElementCount(sPointComp, 11, *mesh));
    EXPECT_EQ(getElementCount(*mesh, sPointComp), 11u);
    EXPECT_EQ(getElementCount(before, sPointComp), 4u);  // the shared component was copied first
    EXPECT_EQ(dataArray<float>(*mesh, "temperature")->size(), 4u);

    EXPECT_FALSE(setElementCount("nothing", 1, *mesh));
    EXPECT_FALSE(setElementCount("temperature", 1, *mesh));
    EXPECT_EQ(getElementCount(*mesh, "nothing"), 0u);
    EXPECT_EQ(getElementCount(*mesh, "temperature"), 0u);
}

TEST(Geometry, DataPropertiesShareTheirArrayAndAnswerOnlyToTheirType)
{
    const auto mesh = quad();
    ASSERT_TRUE(getDataGeoProperty(*mesh, "temperature"));
    EXPECT_EQ(entryOf<float>(*mesh, "temperature", sDefault), 9.0f);
    EXPECT_EQ(entryOf<Mode>(*mesh, "temperature", sInterp), Mode::Constant);
    EXPECT_EQ(entryOf<String>(*mesh, "temperature", sTarget), sPointComp);
    EXPECT_TRUE(entryOf<Ptr<Array<String>>>(*mesh, "temperature", sDependsOn)->empty());
    EXPECT_EQ(*dataArray<float>(*mesh, "temperature"), (Array<float>{1, 2, 3, 4}));
    EXPECT_FALSE(dataArray<double>(*mesh, "temperature"));
    EXPECT_FALSE(dataArray<uint>(*mesh, "uv_index"));
    EXPECT_FALSE(getDataGeoProperty(*mesh, sPointComp));
    EXPECT_FALSE(getDataGeoProperty(*mesh, "nothing"));
}

TEST(Geometry, RangePropertiesHoldIndicesAndATarget)
{
    const auto mesh = quad();
    const Ptr<Object> range = getRangeGeoProperty(*mesh, "uv_index");
    ASSERT_TRUE(range);
    EXPECT_EQ(*getRangeGeoPropIndices(*range), (Array<uint>{0, 1, 1, 0}));
    EXPECT_FALSE(getRangeGeoProperty(*mesh, "uv"));
    EXPECT_FALSE(getRangeGeoPropIndices(*getDataGeoProperty(*mesh, "uv")));

    const auto empty = createObject();
    EXPECT_FALSE(populateRangeGeoProperty(nullptr, sFaceComp, *empty));
    EXPECT_TRUE(empty->propertyNames().empty());
}

TEST(Geometry, TargetsAreFollowedToTheComponentAndCirclesHaveNone)
{
    const auto mesh = quad();
    for (const auto& [name, target] : {std::pair{"deep", "uv"},
                                       {"lost", "edge_component"},
                                       {"self", "self"},
                                       {"a", "b"},
                                       {"b", "a"},
                                       {"lead-in", "a"}})
        addDataGeoProperty<int>(*mesh, name, target, shared<int>({1}));
    const struct {
        String name, component;
        Array<String> chain;
    } cases[] = {{"temperature", sPointComp, {}},
                 {"uv", sFaceVertexComp, {"uv_index"}},
                 {"deep", sFaceVertexComp, {"uv", "uv_index"}}};
    for (const auto& c : cases) {
        EXPECT_EQ(getTargetComponent(*mesh, c.name), c.component);
        EXPECT_EQ(getTargetChain(*mesh, c.name), c.chain);
    }
    EXPECT_EQ(getTargetComponent(*mesh, "lost"), "edge_component");
    for (const String& name : {String("nothing"), sPointComp, String("self"), String("a"),
                               String("b"), String("lead-in")})
        EXPECT_EQ(getTargetComponent(*mesh, name), "") << name.c_str();
}

TEST(Geometry, APointCloudIsItsPositions)
{
    const auto cloud = createObject();
    EXPECT_FALSE(populatePointCloud(nullptr, *cloud));
    const auto positions = shared<float3>({{1, 2, 3}, {4, 5, 6}});
    EXPECT_TRUE(populatePointCloud(positions, *cloud));
    EXPECT_EQ(dataArray<float3>(*cloud, sPointPosition), positions);
    EXPECT_EQ(getElementCount(*cloud, sPointComp), 2u);
}

}  // namespace
