#include <Korvane/Geometry.h>

#include <gtest/gtest.h>

namespace {

using namespace Korvane::Geometry;
using Korvane::createObject;
using Korvane::Object;
using Korvane::Math::float3;
using Pelon::Array;
using Pelon::makeMutable;
using Pelon::Ptr;
using Pelon::String;
using Pelon::uint;

template <class T>
Ptr<Array<T>> shared(Array<T> values)
{
    return makeMutable<Array<T>>(std::move(values));
}

//  3---2     one quad; "temperature" is a plain property on points, "uv" holds two values that the
//  |   |     corners address through the range property "uv_index"
//  0---1
Pelon::MutablePtr<Object> quad()
{
    const auto mesh = makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0, 4}, {0, 1, 2, 3});
    addDataGeoProperty<float>(*mesh, "temperature", sPointComp, shared<float>({1, 2, 3, 4}), 9,
                              Common::DataInterpolationMode::Constant);
    addRangeGeoProperty(*mesh, "uv_index", sFaceVertexComp, shared<uint>({0, 1, 1, 0}));
    addDataGeoProperty<int>(*mesh, "uv", "uv_index", shared<int>({5, 6}));
    return mesh;
}

template <class T>
T entry(const Object& object, const String& name)
{
    const Pelon::Any value = object.getProperty(name);
    return value.get<T>() ? *value.get<T>() : T();
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
    const Ptr<Object> property = getDataGeoProperty(*mesh, "temperature");
    ASSERT_TRUE(property);
    EXPECT_EQ(entry<float>(*property, sDefault), 9.0f);
    EXPECT_EQ(entry<Common::DataInterpolationMode>(*property, sInterp),
              Common::DataInterpolationMode::Constant);
    EXPECT_EQ(entry<String>(*property, sTarget), sPointComp);
    EXPECT_TRUE(entry<Ptr<Array<String>>>(*property, sDependsOn)->empty());
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

TEST(Geometry, TargetsAreFollowedToTheComponent)
{
    const auto mesh = quad();
    EXPECT_EQ(getTargetComponent(*mesh, "temperature"), sPointComp);
    EXPECT_EQ(getTargetChain(*mesh, "temperature"), Array<String>());
    EXPECT_EQ(getTargetComponent(*mesh, "uv"), sFaceVertexComp);
    EXPECT_EQ(getTargetChain(*mesh, "uv"), (Array<String>{"uv_index"}));

    addDataGeoProperty<int>(*mesh, "deep", "uv", shared<int>({1}));
    EXPECT_EQ(getTargetComponent(*mesh, "deep"), sFaceVertexComp);
    EXPECT_EQ(getTargetChain(*mesh, "deep"), (Array<String>{"uv", "uv_index"}));

    addDataGeoProperty<int>(*mesh, "lost", "edge_component", shared<int>({1}));
    EXPECT_EQ(getTargetComponent(*mesh, "lost"), String("edge_component"));
    EXPECT_EQ(getTargetComponent(*mesh, "nothing"), String());
    EXPECT_EQ(getTargetComponent(*mesh, sPointComp), String());
}

TEST(Geometry, CirclesOfTargetsEndWithoutAComponent)
{
    const auto mesh = quad();
    const auto add = [&](const char* name, const char* target) {
        addDataGeoProperty<int>(*mesh, name, target, shared<int>({1}));
    };
    add("self", "self");
    add("a", "b");
    add("b", "a");
    add("lead-in", "a");
    for (const char* name : {"self", "a", "b", "lead-in"})
        EXPECT_EQ(getTargetComponent(*mesh, name), String()) << name;
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
