#include "support/Cancellation.h"
#include "support/MeshBuilding.h"

#include <Tessary/Triangulation.h>
#include <gtest/gtest.h>
#include <tbb/task_arena.h>

#include <cmath>

using namespace TestSupport;

namespace {

// A quad and a triangle: triangles 0 and 1, then 2; corners 0 1 2, 0 2 3, then 4 5 6.
MutablePtr<Object> quadAndTriangle()
{
    return meshOf(5, {{0, 1, 2, 3}, {1, 4, 2}});
}

MutablePtr<Object> triangulated(const Object& source, const Array<String>& names)
{
    MutablePtr<Object> target = Korvane::createObject();
    EXPECT_TRUE(Tessary::triangulatePolyMesh(source, names, *target));
    return target;
}

}  // namespace

TEST(CopyProperties, PlainValuesFollowTheirPointFaceOrCorner)
{
    const MutablePtr<Object> mesh = quadAndTriangle();
    Geometry::addDataGeoProperty<float>(*mesh, "p", Geometry::sPointComp,
                                        shared({0.f, 1.f, 2.f, 3.f, 4.f}), 9.f, Mode::None);
    Geometry::addDataGeoProperty<int>(*mesh, "f", Geometry::sFaceComp, shared({10, 20}), -1,
                                      Mode::None);
    Geometry::addDataGeoProperty<String>(*mesh, "c", Geometry::sFaceVertexComp,
                                         shared<String>({"a", "b", "c", "d", "e", "f", "g"}),
                                         "none", Mode::Constant);
    const MutablePtr<Object> target = triangulated(*mesh, {"p", "f", "c"});

    EXPECT_EQ(dataOf<float>(*target, "p"), dataOf<float>(*mesh, "p")) << "points share the array";
    EXPECT_EQ(*dataOf<int>(*target, "f"), (Array<int>{10, 10, 20}));
    EXPECT_EQ(*dataOf<String>(*target, "c"),
              (Array<String>{"a", "b", "c", "a", "c", "d", "e", "f", "g"}));

    EXPECT_EQ(entryOf<float>(*target, "p", Geometry::sDefault), 9.f);
    EXPECT_EQ(entryOf<String>(*target, "c", Geometry::sDefault), "none");
    EXPECT_EQ(entryOf<Mode>(*target, "p", Geometry::sInterp), Mode::Linear) << "reset to 1";
    EXPECT_EQ(entryOf<Mode>(*target, "f", Geometry::sInterp), Mode::None) << "kept";
    EXPECT_EQ(entryOf<String>(*target, "f", Geometry::sTarget), Geometry::sFaceComp);
}

TEST(CopyProperties, WhatTheSourceLacksIsZeroOneAndEmpty)
{
    const MutablePtr<Object> mesh = quadAndTriangle();
    const MutablePtr<Object> property = Korvane::createObject();
    property->setProperty(Geometry::sData, shared({4, 5}));
    property->setProperty(Geometry::sTarget, Geometry::sFaceComp);
    property->setProperty(Geometry::sDefault, 3.0);  // not an int
    property->setProperty(Geometry::sDependsOn, shared<String>({"f"}));
    mesh->setProperty("f", property);
    const MutablePtr<Object> target = triangulated(*mesh, {"f"});
    EXPECT_EQ(*dataOf<int>(*target, "f"), (Array<int>{4, 4, 5}));
    EXPECT_EQ(entryOf<int>(*target, "f", Geometry::sDefault), 0);
    EXPECT_EQ(entryOf<Mode>(*target, "f", Geometry::sInterp), Mode::Linear);
    EXPECT_TRUE(entryOf<Ptr<Array<String>>>(*target, "f", Geometry::sDependsOn)->empty());
}

TEST(CopyProperties, PassesOverTopologyUnknownNamesOtherTypesAndLongChains)
{
    const MutablePtr<Object> mesh = quadAndTriangle();
    Geometry::addDataGeoProperty<char>(*mesh, "char", Geometry::sFaceComp, shared({'a', 'b'}));
    Geometry::addRangeGeoProperty(*mesh, "inner", Geometry::sFaceComp, shared<uint>({0, 0}));
    Geometry::addRangeGeoProperty(*mesh, "outer", "inner", shared<uint>({0}));
    Geometry::addDataGeoProperty<int>(*mesh, "deep", "outer", shared({1}));
    Geometry::addDataGeoProperty<int>(*mesh, "last", Geometry::sFaceComp, shared({1, 2}));
    const MutablePtr<Object> target =
        triangulated(*mesh, {Geometry::sPointPosition, Geometry::sFaceOffset, Geometry::sFaceVertex,
                             "missing", Geometry::sFaceComp, "inner", "char", "deep", "last"});
    Array<String> expected = triangulated(*mesh, {})->propertyNames();
    expected.push_back("last");
    EXPECT_EQ(target->propertyNames(), expected);
    EXPECT_EQ(*dataOf<uint>(*target, Geometry::sFaceVertex),
              (Array<uint>{0, 1, 2, 0, 2, 3, 1, 4, 2}));
}

TEST(CopyProperties, APropertyOfAnotherComponentArrivesWithDefaultsOnly)
{
    const MutablePtr<Object> mesh = quadAndTriangle();
    Geometry::addDataGeoProperty<int>(*mesh, "p", "curve", shared({1, 2}), 8);
    Geometry::addDataGeoProperty<float>(*mesh, "minus zero", "curve", shared({1.f}), -0.f);
    const MutablePtr<Object> target = triangulated(*mesh, {});
    const MutablePtr<Object> curve = Korvane::createObject();
    Geometry::populateComponentGeoProperty(3, *curve);
    target->setProperty("curve", curve);
    Tessary::copyPropertiesToTriangulatedMesh(*mesh, {"p", "minus zero"}, *target);
    EXPECT_EQ(*dataOf<int>(*target, "p"), (Array<int>{8, 8, 8}));
    EXPECT_TRUE(std::signbit((*dataOf<float>(*target, "minus zero"))[2]));
}

TEST(CopyProperties, RenderSettingsAreStoredAsTheyAreIfThereAreAny)
{
    const MutablePtr<Object> mesh = quadAndTriangle();
    const String name = Geometry::sRenderSettings;
    EXPECT_FALSE(triangulated(*mesh, {name})->hasProperty(name));
    mesh->setProperty(name, 42);
    EXPECT_EQ(*triangulated(*mesh, {name})->getProperty(name).get<int>(), 42);
}

TEST(CopyProperties, IndexedPropertiesShareTheirValuesAndGetNewIndices)
{
    const MutablePtr<Object> mesh = quadAndTriangle();
    const auto values = shared({0.5f, 1.5f});
    const struct {
        const char* name;
        String component;
        Array<uint> indices;
        Array<uint> expected;
    } cases[] = {
        {"p", Geometry::sPointComp, {0, 1, 0, 1, 1}, {0, 1, 0, 1, 1}},
        {"f", Geometry::sFaceComp, {1, 0}, {1, 1, 0}},
        // Corners follow the rule of faces, and what lies behind the triangle count stays unset.
        {"c",
         Geometry::sFaceVertexComp,
         {1, 0, 1, 0, 1, 0, 1},
         {1, 1, 0, kNone, kNone, kNone, kNone, kNone, kNone}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const String range = std::string(c.name) + "_index";
        const Ptr<Array<uint>> indices = makeMutable<Array<uint>>(c.indices);
        Geometry::addRangeGeoProperty(*mesh, range, c.component, indices);
        Geometry::addDataGeoProperty<float>(*mesh, c.name, range, values, 2.f, Mode::None);
        const MutablePtr<Object> target = triangulated(*mesh, {c.name});

        EXPECT_EQ(dataOf<float>(*target, c.name), Ptr<Array<float>>(values)) << "values are shared";
        EXPECT_EQ(entryOf<String>(*target, c.name, Geometry::sTarget), range);
        EXPECT_EQ(entryOf<Mode>(*target, c.name, Geometry::sInterp), Mode::Linear);
        EXPECT_EQ(Geometry::getTargetComponent(*target, c.name), c.component);
        ASSERT_TRUE(rangeOf(*target, range));
        EXPECT_EQ(*rangeOf(*target, range), c.expected);
        EXPECT_EQ(rangeOf(*target, range) == indices, c.component == Geometry::sPointComp);
    }
}

TEST(CopyProperties, OnlyIndexedPropertiesThatAreCarriedBringTheirRange)
{
    const MutablePtr<Object> mesh = quadAndTriangle();
    Geometry::addRangeGeoProperty(*mesh, "range", Geometry::sFaceComp, shared<uint>({1, 0}));
    Geometry::addDataGeoProperty<int>(*mesh, "carried", "range", shared({4, 5}));
    Geometry::addDataGeoProperty<char>(*mesh, "not carried", "range", shared({'a', 'b'}));
    MutablePtr<Object> target = triangulated(*mesh, {"carried", "not carried"});
    ASSERT_TRUE(rangeOf(*target, "range"));
    EXPECT_EQ(*rangeOf(*target, "range"), (Array<uint>{1, 1, 0}));
    EXPECT_FALSE(triangulated(*mesh, {"not carried"})->hasProperty("range"));

    // A range of another component is stored empty; without a range the name is skipped.
    Geometry::addRangeGeoProperty(*mesh, "range", "curve", shared<uint>({0}));
    Geometry::addDataGeoProperty<int>(*mesh, "indexed", "range", shared({1}));
    Geometry::addDataGeoProperty<int>(*mesh, "dangling", "indexed", shared({1}));
    target = triangulated(*mesh, {"indexed", "dangling"});
    EXPECT_EQ(*dataOf<int>(*target, "indexed"), (Array<int>{1}));
    ASSERT_TRUE(target->hasProperty("range"));
    EXPECT_FALSE(Geometry::getRangeGeoProperty(*target, "range"));
    EXPECT_FALSE(target->hasProperty("dangling"));
}

TEST(CopyProperties, CarryingANameTwiceReusesThePropertyAndNeverTouchesASharedOne)
{
    const MutablePtr<Object> mesh = quadAndTriangle();
    Geometry::addDataGeoProperty<int>(*mesh, "f", Geometry::sFaceComp, shared({1, 2}));
    const MutablePtr<Object> target = triangulated(*mesh, {"f"});
    const Object* const object = target->getProperty("f").get<Ptr<Object>>()->get();
    Tessary::copyPropertiesToTriangulatedMesh(*mesh, {"f"}, *target);
    EXPECT_EQ(target->getProperty("f").get<Ptr<Object>>()->get(), object);

    const Object before = *target;
    Geometry::addDataGeoProperty<int>(*mesh, "f", Geometry::sFaceComp, shared({3, 4}));
    Tessary::copyPropertiesToTriangulatedMesh(*mesh, {"f"}, *target);
    EXPECT_EQ(*dataOf<int>(*target, "f"), (Array<int>{3, 3, 4}));
    EXPECT_EQ(*dataOf<int>(before, "f"), (Array<int>{1, 1, 2}));
}

TEST(CopyProperties, WithoutFaceOffsetsOnlyPointPropertiesAreCarried)
{
    const MutablePtr<Object> cloud = Korvane::createObject();
    ASSERT_TRUE(Geometry::populatePointCloud(shared<float3>({{0, 0, 0}, {1, 0, 0}}), *cloud));
    Geometry::addDataGeoProperty<int>(*cloud, "p", Geometry::sPointComp, shared({1, 2}));
    Geometry::addDataGeoProperty<int>(*cloud, "f", Geometry::sFaceComp, shared({1, 2}));
    const MutablePtr<Object> target = Korvane::createObject();
    Tessary::copyPropertiesToTriangulatedMesh(*cloud, {"f", "p"}, *target);
    EXPECT_EQ(target->propertyNames(), (Array<String>{"p"}));
}

// Triangulation refuses such faces, but a caller may bring triangles of its own making.
TEST(CopyProperties, FacesOfTooFewCornersWriteNothing)
{
    const MutablePtr<Object> mesh = meshOf(3, {{0}, {}, {0, 1, 2}});
    Geometry::addDataGeoProperty<int>(*mesh, "f", Geometry::sFaceComp, shared({1, 2, 3}), 7);
    Geometry::addDataGeoProperty<int>(*mesh, "c", Geometry::sFaceVertexComp, shared({1, 2, 3, 4}),
                                      7);
    const MutablePtr<Object> target = meshOf(3, {{0, 1, 2}});
    Tessary::copyPropertiesToTriangulatedMesh(*mesh, {"f", "c"}, *target);
    EXPECT_EQ(*dataOf<int>(*target, "f"), (Array<int>{7}));
    EXPECT_EQ(*dataOf<int>(*target, "c"), (Array<int>{7, 7, 7}));
}

TEST(CopyProperties, ACancelledJobThrowsAndLeavesAWellFormedProperty)
{
    const MutablePtr<Object> mesh = quadAndTriangle();
    Geometry::addDataGeoProperty<int>(*mesh, "f", Geometry::sFaceComp, shared({1, 2}), 7);
    Geometry::addDataGeoProperty<int>(*mesh, "g", Geometry::sFaceComp, shared({1, 2}), 7);
    const MutablePtr<Object> target = triangulated(*mesh, {});
    EXPECT_TRUE(endsWhenCancelled([&] {
        Tessary::copyPropertiesToTriangulatedMesh(*mesh, {"f", "g"}, *target);
    }));
    EXPECT_EQ(*dataOf<int>(*target, "f"), (Array<int>{1, 1, 2}));
    EXPECT_FALSE(target->hasProperty("g"));

    // One face is a range within its grain: it is not polled.
    const MutablePtr<Object> quad = meshOf(4, {{0, 1, 2, 3}});
    Geometry::addDataGeoProperty<int>(*quad, "f", Geometry::sFaceComp, shared({1}));
    EXPECT_FALSE(endsWhenCancelled([&] { triangulated(*quad, {"f"}); }));
}

TEST(CopyProperties, EqualThePolygonsCornersAtAnyThreadCount)
{
    for (std::uint32_t seed = 0; seed < 30; ++seed) {
        SCOPED_TRACE(seed);
        const PolygonMesh polygons = randomPolygons(seed, 2 + seed * 20);
        const MutablePtr<Object> mesh = meshOf(polygons);
        // The corner's own point as its value: the triangles' corners must agree with it.
        Geometry::addDataGeoProperty<uint>(*mesh, "c", Geometry::sFaceVertexComp,
                                           makeMutable<Array<uint>>(polygons.faceVertex));
        Array<uint> faces, expected;  // expected: once for each triangle of the face
        for (uint f = 0; f < polygons.faceCount(); ++f) {
            faces.push_back(f);
            expected.resize(
                expected.size() + polygons.faceOffset[f + 1] - polygons.faceOffset[f] - 2, f);
        }
        Geometry::addDataGeoProperty<uint>(*mesh, "f", Geometry::sFaceComp,
                                           makeMutable<Array<uint>>(faces));
        MutablePtr<Object> target;
        tbb::task_arena(1 + static_cast<int>(seed % 4)).execute([&] {
            target = triangulated(*mesh, {"c", "f"});
        });
        EXPECT_EQ(*dataOf<uint>(*target, "c"), *dataOf<uint>(*target, Geometry::sFaceVertex));
        EXPECT_EQ(*dataOf<uint>(*target, "f"), expected);
    }
}
