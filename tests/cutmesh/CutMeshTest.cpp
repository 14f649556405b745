#include "cutmesh/CutMeshCases.h"
#include "support/Cancellation.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace TestSupport;

namespace {

// The values of a point property at codes 0 to 3 of corner 0 of one triangle.
template <class T>
Array<T> aroundCornerZero(float t, const Array<float>& w, std::initializer_list<T> values)
{
    CutCase cut = cutCase(polygonsOf(3, {{0, 1, 2}}), t, w);
    setPoints(cut, {0, 1, 2, 3}, {0, 1, 2, 3});
    Geometry::addDataGeoProperty<T>(*cut.source, "p", Geometry::sPointComp,
                                    Ptr<Array<T>>(makeMutable<Array<T>>(values)));
    cut.interpolate();
    return *dataOf<T>(*cut.target, "p");
}

TEST(CutMesh, RealValuesAreBlendedAndOthersArePicked)
{
    const Array<float> w{0.25f, 0.25f, 0.5f};
    EXPECT_EQ(aroundCornerZero<float>(0.25f, w, {4, 8, 16}), (Array<float>{4, 7, 11, 7}));
    EXPECT_EQ(aroundCornerZero<int>(0.25f, w, {4, 8, 16}), (Array<int>{4, 8, 16, 4}));
    EXPECT_EQ(aroundCornerZero<int>(0.5f, w, {4, 8, 16}), (Array<int>{4, 4, 16, 16}));
    EXPECT_EQ(aroundCornerZero<float>(1, w, {4, 8, 16}), (Array<float>{4, 4, 11, 16}));
    EXPECT_EQ(aroundCornerZero<String>(0.5f, w, {"a", "b", "c"}),
              (Array<String>{"a", "a", "c", "c"}));
    const float tenth = 0.1f;  // doubles are blended with weights widened first
    EXPECT_EQ(aroundCornerZero<double>(tenth, w, {1, 3, 5})[1],
              double{tenth} + (1 - double{tenth}) * 3);

    // Of equally heavy corners, the first is picked.
    const auto picked = [](float w0, float w1, float w2) {
        return aroundCornerZero<int>(0.5f, {w0, w1, w2}, {0, 1, 2})[2];
    };
    EXPECT_EQ(picked(0.2f, 0.4f, 0.4f), 1);
    EXPECT_EQ(picked(0.4f, 0.2f, 0.4f), 0);
    EXPECT_EQ(picked(0.4f, 0.4f, 0.2f), 0);
    EXPECT_EQ(picked(0.3f, 0.3f, 0.4f), 2);
    EXPECT_EQ(picked(std::nanf(""), 0.3f, 0.4f), 2);
    EXPECT_EQ(picked(0.4f, std::nanf(""), 0.3f), 2);
}

//  3---2     one quad: triangles 0 1 2 and 0 2 3
//  | / |
//  0---1
TEST(CutMesh, ThePartsOfAQuadShareItsFaceValueAndAnIndexOnItsDiagonal)
{
    CutCase cut = cutCase(polygonsOf(4, {{0, 1, 2, 3}}));
    cut.edgeWeights[2] = 0.25f;  // the diagonal as the first triangle sees it, from 2 to 0
    cut.edgeWeights[3] = 0.5f;   // and as the second one does, from 0 to 2
    const auto uv = shared<float>({0, 10, 20, 30});
    Geometry::addDataGeoProperty<int>(*cut.source, "id", Geometry::sFaceComp, shared({7}));
    Geometry::addDataGeoProperty<float>(*cut.source, "plain", Geometry::sFaceVertexComp, uv);
    addIndexed<float>(*cut.source, "p", Geometry::sFaceVertexComp, {0, 1, 2, 3}, uv, 0,
                      Mode::Constant);
    cut.interpolate();

    EXPECT_EQ(*dataOf<int>(*cut.target, "id"), (Array<int>(6, 7)));
    const Array<float> plain = *dataOf<float>(*cut.target, "plain");
    EXPECT_EQ(plain[3], 5) << "each triangle has its own weight";
    EXPECT_EQ(plain[12 + 1], 10);

    // New values: edge 0-1, centre, diagonal, edge 1-2, then centre, edge 3-0, edge 2-3.
    EXPECT_EQ(*dataOf<float>(*cut.target, "p"),
              (Array<float>{0, 10, 20, 30, 5, 12.5, 5, 15, 20, 15, 25}));
    EXPECT_EQ(*rangeOf(*cut.target, "p range"),
              (Array<uint>{0, 4, 5, 6, 1, 7,  5, 4, 2, 6, 5, 7,  //
                           0, 6, 8, 9, 2, 10, 8, 6, 3, 9, 8, 10}));
    EXPECT_EQ(entryOf<Mode>(*cut.target, "p", Geometry::sInterp), Mode::Linear);
    EXPECT_EQ(entryOf<String>(*cut.target, "p", Geometry::sTarget), "p range");
}

TEST(CutMesh, UncutPointsAreOnlyIndexedAgain)
{
    CutCase cut = cutCase(polygonsOf(3, {{0, 1, 2}}));
    setPoints(cut, {1, 0, 1}, {2 << 2, 1 << 2});
    const auto values = shared<String>({"x", "y"});
    addIndexed<String>(*cut.source, "p", Geometry::sPointComp, {0, 1, kNone}, values);
    cut.interpolate();
    EXPECT_EQ(dataOf<String>(*cut.target, "p"), values) << "shared";
    EXPECT_EQ(*rangeOf(*cut.target, "p range"), (Array<uint>{1, kNone, 1}));
}

TEST(CutMesh, WhatCannotBeInterpolatedIsDeclaredWithItsDefault)
{
    CutCase cut = cutCase(polygonsOf(3, {{0, 1, 2}}));
    Object& source = *cut.source;
    const Ptr<Array<int>> threeInts = shared({1, 2, 3});
    const auto remove = [&](const char* name, const String& entry) {
        const auto property = makeMutable<Object>(*Geometry::getDataGeoProperty(source, name));
        property->setProperty(entry, Pelon::Any());
        source.setProperty(name, property);
    };
    Geometry::addDataGeoProperty<int>(source, "off", Geometry::sFaceComp, shared({1}), 9,
                                      Mode::None);
    addIndexed<int>(*cut.source, "indexed off", Geometry::sPointComp, {0, 1, 2}, threeInts, 8,
                    Mode::None);
    addIndexed<int>(*cut.source, "deep", "indexed off range", {0, 1, 2}, threeInts, 7);
    Geometry::addDataGeoProperty<float>(source, "elsewhere", "curve", shared({1.f}), 6);
    Geometry::addDataGeoProperty<int>(source, "no default", Geometry::sFaceComp, shared({1}), 5);
    remove("no default", Geometry::sDefault);
    Geometry::addDataGeoProperty<int>(source, "no mode", Geometry::sFaceComp, shared({4}), 5);
    remove("no mode", Geometry::sInterp);
    Geometry::addDataGeoProperty<char>(source, "char", Geometry::sFaceComp, shared({'a'}), 'b');
    Tessary::addDual(source, Geometry::sPointComp, Geometry::sFaceVertex, "dual",
                     "dual_face_vertex", "dual_face_offset");
    cut.interpolate();

    const Object& target = *cut.target;
    EXPECT_EQ(*dataOf<int>(target, "off"), (Array<int>(3, 9)));
    EXPECT_EQ(entryOf<Mode>(target, "off", Geometry::sInterp), Mode::None);
    EXPECT_EQ(*dataOf<int>(target, "indexed off"), (Array<int>(12, 8)));
    EXPECT_EQ(entryOf<String>(target, "indexed off", Geometry::sTarget), Geometry::sPointComp);
    EXPECT_EQ(*dataOf<int>(target, "deep"), (Array<int>(12, 7)));
    EXPECT_TRUE(dataOf<float>(target, "elsewhere")->empty());
    EXPECT_EQ(*dataOf<int>(target, "no default"), (Array<int>(3, 0)));
    EXPECT_EQ(*dataOf<int>(target, "no mode"), (Array<int>(3, 4)));
    EXPECT_EQ(*dataOf<uint>(target, "dual_face_offset"), Array<uint>(12)) << "none of the quads";
    EXPECT_TRUE(dataOf<uint>(target, "dual_face_vertex")->empty());
    EXPECT_FALSE(target.hasProperty("char"));
    EXPECT_FALSE(target.hasProperty("indexed off range"));
}

TEST(CutMesh, WithoutADualIndexedCornersAreDeclaredAndTheRestIsInterpolated)
{
    CutCase cut = cutCase(polygonsOf(3, {{0, 1, 2}}));
    cut.triMesh->setProperty("dual_face_vertex", Pelon::Any());
    addIndexed<int>(*cut.source, "corner", Geometry::sFaceVertexComp, {0, 0, 0}, shared({4}), 9);
    addIndexed<int>(*cut.source, "point", Geometry::sPointComp, {0, 0, 0}, shared({4}), 9);
    cut.interpolate();
    EXPECT_EQ(*dataOf<int>(*cut.target, "corner"), (Array<int>(12, 9)));
    EXPECT_EQ(dataOf<int>(*cut.target, "point")->size(), 1u + 9);
}

TEST(CutMesh, PassesOverGeometryAndTakesRenderSettingsAsTheyAre)
{
    CutCase cut = cutCase(polygonsOf(3, {{0, 1, 2}}));
    const Array<String> before = cut.target->propertyNames();
    Geometry::addDataGeoProperty<float3>(*cut.source, Geometry::sPointVelocity,
                                         Geometry::sPointComp, makeMutable<Array<float3>>(3));
    cut.interpolate();
    EXPECT_EQ(cut.target->propertyNames(), before);
    EXPECT_EQ(dataOf<uint>(*cut.target, Geometry::sFaceVertex)->size(), 12u) << "untouched";

    cut.source->setProperty(Geometry::sRenderSettings, 42);
    Geometry::addDataGeoProperty<int>(*cut.source, "b", Geometry::sFaceComp, shared({1}));
    Geometry::addDataGeoProperty<int>(*cut.source, "a", Geometry::sFaceComp, shared({1}));
    cut.interpolate();
    Array<String> expected = before;
    for (const String& name : {Geometry::sRenderSettings, String("b"), String("a")})
        expected.push_back(name);
    EXPECT_EQ(cut.target->propertyNames(), expected);
    EXPECT_EQ(*cut.target->getProperty(Geometry::sRenderSettings).get<int>(), 42);
}

// Indexed properties are filled one value after the other and do not look for cancellation.
TEST(CutMesh, ACancelledJobThrowsAtTheFirstDirectPropertyAndLeavesWellFormedOnes)
{
    for (const bool indexed : {false, true}) {
        CutCase cut = cutCase(polygonsOf(4, {{0, 1, 2}, {2, 1, 3}}));
        const Ptr<Array<float>> values = makeMutable<Array<float>>(6, 2.f);
        if (indexed)
            addIndexed<float>(*cut.source, "f", Geometry::sFaceVertexComp, Array<uint>(6), values,
                              7);
        else
            Geometry::addDataGeoProperty<float>(*cut.source, "f", Geometry::sFaceVertexComp, values,
                                                7);
        Geometry::addDataGeoProperty<int>(*cut.source, "g", Geometry::sFaceComp, shared({1, 2}));
        EXPECT_TRUE(endsWhenCancelled([&] { cut.interpolate(); }));
        EXPECT_EQ(cut.target->hasProperty("g"), indexed);
        EXPECT_EQ(dataOf<float>(*cut.target, "f")->size(), indexed ? 6u + 7u : 24u);
    }
}

}  // namespace
