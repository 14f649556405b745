#include <TessaryMesh/Arrays.h>
#include <TessaryMesh/Check.h>
#include <TessaryMesh/Operations.h>

#include <gtest/gtest.h>
#include <support/MeshBuilding.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace TessaryMesh;
using namespace TestSupport;
using Korvane::Math::float2;
using TessaryMesh::Faces;
using TestSupport::kNone;
using Code = ArrayError::Code;
using Uints = std::vector<uint>;

//  3--2     one quad, in memory that cannot be written: whoever tries crashes
//  |  |
//  0--1
const float kPoints[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
const uint kCorners[] = {0, 1, 2, 3};
const int kSignedCorners[] = {0, 1, 2, 3};
const uint kOffsets[] = {0, 4};
const float kUvs[] = {0, 0, 1, 0, 1, 1, 0, 1};

struct OwnVector {
    float x, y, z;
};

MutablePtr<Object> quad()
{
    return makeMesh(kPoints, kCorners, Faces::fromOffsets(kOffsets));
}

template <class T>
std::vector<T> copied(const View<T>& view)
{
    return {view.begin(), view.end()};
}

static_assert(std::is_constructible_v<View<int>, std::vector<int>>);
static_assert(!std::is_constructible_v<View<int>, std::initializer_list<int>>);
static_assert(!std::is_constructible_v<View<bool>, std::vector<bool>&>);
static_assert(!std::is_constructible_v<View<float>, std::vector<double>&>);

TEST(MakeMesh, ReadsArraysOfItsOwnTypesInPlace)
{
    const std::vector<OwnVector> own{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
    const Array<float3> hostPoints{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
    const Ptr<Array<uint>> corners = shared<uint>({0, 1, 2});
    const struct {
        const void *points, *corners;
        MutablePtr<Object> mesh;
    } cases[] = {
        {kPoints, kCorners, quad()},
        {kPoints, kCorners, makeMesh(kPoints, kCorners, Faces::quads())},
        {kPoints, kSignedCorners, makeMesh(kPoints, kSignedCorners, Faces::quads())},
        {own.data(), corners->data(), makeMesh(own, corners, Faces::triangles())},
        {hostPoints.data(), corners->data(), makeMesh(hostPoints, corners, Faces::triangles())},
        {kPoints, kCorners,
         makeMesh(Numbers(kPoints, 12, NumberType::Float32), View(kCorners, 4), Faces::quads())},
    };
    for (const auto& [points, corner, mesh] : cases) {
        EXPECT_EQ(pointsOf(*mesh).data(), points);
        EXPECT_EQ(cornersOf(*mesh).data(), corner);
    }
    EXPECT_EQ(offsetsOf(*cases[0].mesh).data(), kOffsets);
    EXPECT_EQ(cornersOf(*cases[3].mesh).array(), corners) << "an array of the host is shared";
}

TEST(MakeMesh, ConvertsNumbersOfOtherTypesAndUnalignedOnes)
{
    const auto corners = [](auto number) {
        using T = decltype(number);
        const std::array<T, 4> values{T(0), T(1), T(2), T(3)};
        return copied(cornersOf(*makeMesh(kPoints, values, Faces::quads())));
    };
    for (const Uints& found : {corners(std::int8_t()), corners(std::int16_t()),
                               corners(std::int64_t()), corners(std::uint8_t()),
                               corners(std::uint16_t()), corners(std::uint64_t()), corners(0LL)})
        EXPECT_EQ(found, (Uints{0, 1, 2, 3}));

    const std::vector<double> points{0.1, 0, 0, 1, 0, 0, 0, std::numeric_limits<float>::max(), 0};
    EXPECT_EQ(pointsOf(*makeMesh(points, Uints{0, 1, 2}, Faces::triangles()))[0].x, 0.1f);

    char bytes[sizeof kPoints + 1];
    std::memcpy(bytes + 1, kPoints, sizeof kPoints);
    const auto mesh =
        makeMesh(Numbers(bytes + 1, 12, NumberType::Float32), kCorners, Faces::quads());
    EXPECT_EQ(copied(pointsOf(*mesh)), copied(pointsOf(*quad())));
}

TEST(MakeMesh, KnowsFacesOfOneSizeOffsetsAndSizes)
{
    const Uints corners{0, 1, 2, 0, 2, 3};
    const std::vector<std::int64_t> offsets{0, 3, 6};
    const struct {
        Uints corners;
        Faces faces;
        Uints expected;
    } cases[] = {
        {corners, Faces::triangles(), {0, 3, 6}},
        {corners, Faces::fromOffsets(offsets), {0, 3, 6}},
        {corners, Faces::ofSize(6), {0, 6}},
        {corners, Faces::fromSizes(Uints{3, 3}), {0, 3, 6}},
        {{}, Faces::triangles(), {0}},
        {{}, Faces::fromSizes(Numbers()), {0}},
    };
    for (const auto& [given, faces, expected] : cases) {
        const auto mesh = makeMesh(kPoints, given, faces);
        EXPECT_EQ(copied(offsetsOf(*mesh)), expected);
        EXPECT_EQ(Geometry::getElementCount(*mesh, Geometry::sFaceComp), expected.size() - 1);
    }
}

// What a call throws: code, array, element, text.
std::string refusalOf(const std::function<void()>& call)
{
    try {
        call();
        return "nothing";
    } catch (const ArrayError& error) {
        return std::to_string(static_cast<int>(error.code())) + " " + error.array() + " " +
               (error.element() ? std::to_string(*error.element()) + "=" + error.value() : "-") +
               " | " + error.what();
    } catch (const InvalidMesh& error) {
        return error.report().firstError()->code;
    }
}

TEST(MakeMesh, RefusesWhatDoesNotFit)
{
    const auto points = [](auto values) {
        return [=] { makeMesh(values, kCorners, Faces::quads()); };
    };
    const auto corners = [](auto values, Faces faces = Faces::ofSize(3)) {
        return [=] { makeMesh(kPoints, values, faces); };
    };
    using Doubles = std::vector<double>;
    using Longs = std::vector<std::int64_t>;
    const struct {
        std::function<void()> call;
        std::string expected;
    } cases[] = {
        {points(Doubles{0, 0, 0, 0, -1e300, 0}),
         R"(3 points 4=-1.0000000000000001e+300 | "points": the y of point 1 is )"
         R"(-1.0000000000000001e+300, which is more than a float can hold)"},
        {points(Doubles{0, 0, 0, 0, INFINITY, 0, 0, 0, 0, 0, 0, 0}), "point-not-finite"},
        {points(Uints{0, 0, 0}),
         R"(1 points - | "points": uint32 numbers, where points are float or double)"},
        {points(std::vector<float>(10)),
         R"(2 points - | "points": 10 numbers are no points of 3 each)"},
        {points(std::vector<float2>(3)),
         R"(1 points - | "points": vectors of 2 numbers, where points have 3)"},
        {points(Numbers(nullptr, 3, NumberType::Float32)),
         R"(0 points - | "points": the pointer to its elements is null)"},
        {corners(std::vector<int>{0, 1, -1}),
         R"(3 corners 2=-1 | "corners": number 2 is -1, which is negative)"},
        {corners(std::vector<std::int8_t>{0, -5, -1}),
         R"(3 corners 1=-5 | "corners": number 1 is -5, which is negative)"},
        {corners(Longs{4294967296, 0, 0}),
         R"(3 corners 0=4294967296 | "corners": number 0 is 4294967296, which is over 4294967295)"},
        {corners(Longs{4294967295, 0, 0}), "index-out-of-range"},
        {corners(std::vector<float>{0, 1, 2}),
         R"(1 corners - | "corners": float numbers, where indices are integers)"},
        {corners(Uints{0, 1, 2, 3}),
         R"(2 corners - | "corners": 4 corners do not make faces of 3)"},
        {corners(Uints{0, 1, 2}, Faces::ofSize(0)),
         R"(2 corners - | "corners": 3 corners do not make faces of 0)"},
        {corners(Numbers(kPoints, 0xFFFFFFFF, NumberType::UInt32)),
         R"(4 corners - | "corners": 4294967295 elements are more than 32-bit indices can name; )"
         "split the mesh"},
        {corners(Uints{0, 1, 2}, Faces::fromSizes(Longs{4294967295, 4})),
         R"(2 sizes - | "sizes": the faces have 4294967299 corners, where there are 3)"},
        {corners(Uints{0, 1, 2}, Faces::fromOffsets(Uints{})),
         R"(2 offsets - | "offsets": there are none, where a mesh without faces has one, which is 0)"},
        {corners(Uints{0, 1, 2}, Faces::fromOffsets(Uints{0, 2})), "offset-order"},
    };
    for (const auto& [call, expected] : cases)
        EXPECT_EQ(refusalOf(call), expected);
}

TEST(MakeMesh, TakesTheCallersWordOnRequest)
{
    const std::vector<int> corners{0, 1, -1};
    const auto mesh = makeMesh(kPoints, corners, Faces::triangles(), Checks::None);
    EXPECT_EQ(copied(cornersOf(*mesh)), (Uints{0, 1, kNone}));
}

TEST(MakeMesh, KeepsOwnersUntilTheLastMeshThatSharesTheirMemory)
{
    int released = 0;
    std::shared_ptr<const void> owner(kPoints, [&released](const void*) { ++released; });
    auto mesh = makeMesh(View(kPoints, 12, std::move(owner)), Uints{0, 1, 2, 3}, Faces::quads());

    Object other = *mesh;  // shares the arrays, as results of operations do
    mesh = nullptr;
    EXPECT_EQ(copied(cornersOf(other)), (Uints{0, 1, 2, 3})) << "a vector that was moved in";
    View<float3> points = pointsOf(other);
    other = {};
    EXPECT_EQ(released, 0);
    EXPECT_EQ(points.data(), static_cast<const void*>(kPoints));
    points = {};
    EXPECT_EQ(released, 1);
}

TEST(Attributes, OfTheDemoMeshHaveTheKnownNames)
{
    const auto mesh = makeDemoMesh(8);
    for (const char* name : {kTexcoord, kNormal, kColor, kMaterial})
        EXPECT_TRUE(mesh->hasProperty(name)) << name;
}

TEST(Attributes, OfEveryElementTypeStandOnEveryComponent)
{
    const auto mesh = quad();
    Korvane::anyElementType([&](auto tag, const char* name) {
        using T = typename decltype(tag)::type;
        const Array<T> values(4);
        addAttribute(*mesh, name, Component::Corner, values);
        EXPECT_EQ(view<T>(*mesh, name).data() == values.data(), !(std::is_same_v<T, String>))
            << name;
        addAttribute(*mesh, name, Component::Face, Array<T>(1));
        EXPECT_EQ(Geometry::getTargetComponent(*mesh, name), Geometry::sFaceComp);
        addIndexedAttribute(*mesh, name, Component::Point, Array<T>(2), Uints{1, 0, kNone, 1});
        EXPECT_EQ(view<T>(*mesh, name).size(), 2u);
        EXPECT_EQ(copied(indicesOf(*mesh, name)), (Uints{1, 0, kNone, 1}));
        EXPECT_EQ(Geometry::getTargetComponent(*mesh, name), Geometry::sPointComp);
        return false;
    });
    EXPECT_FALSE(validateMesh(*mesh).hasErrors());
}

TEST(Attributes, OfPlainNumbersGetTheElementTypeOfTheirWidth)
{
    const auto mesh = quad();
    const std::vector<OwnVector> own(4);
    const auto add = [&](auto number, unsigned width) {
        std::vector<decltype(number)> values(4 * width);
        addAttribute(*mesh, "a", Component::Corner, std::move(values), width);
        std::string found;
        Korvane::visitArray(Geometry::getDataGeoProperty(*mesh, "a")->getProperty("data"),
                            [&found](const auto&, const char* type) { found = type; });
        return found;
    };
    using Strings = std::vector<std::string>;
    EXPECT_EQ((Strings{add(0.f, 1), add(0.f, 2), add(0.f, 4), add(0.f, 9), add(0.0, 16)}),
              (Strings{"float", "float2", "float4", "float3x3", "double4x4"}));
    EXPECT_EQ((Strings{add(0, 4), add(short(), 6), add(0L, 1), add('a', 1), add(0ULL, 1)}),
              (Strings{"int2x2", "short2x3", "long", "char", "ulong"}));
    addAttribute(*mesh, "uv", Component::Corner, kUvs, 2);
    EXPECT_EQ(view<float2>(*mesh, "uv").data(), static_cast<const void*>(kUvs));
    addAttribute(*mesh, "uv", Component::Corner, Numbers(kUvs, 4, NumberType::Float32));
    EXPECT_EQ(view<float>(*mesh, "uv").data(), static_cast<const void*>(kUvs));
    addAttribute(*mesh, "own", Component::Corner, own);
    EXPECT_EQ(view<float3>(*mesh, "own").data(), static_cast<const void*>(own.data()));
    addIndexedAttribute(*mesh, "uv", Component::Face, kUvs, 2, std::vector<short>{3});
    EXPECT_EQ(view<float2>(*mesh, "uv")[indicesOf(*mesh, "uv")[0]], (float2{0, 1}));
}

TEST(Attributes, AreRefusedWhereTheyDoNotFitTheMesh)
{
    const auto mesh = quad();
    const auto add = [&](const char* name, auto values, unsigned width = 0) {
        return [=] { addAttribute(*mesh, name, Component::Corner, Numbers(values), width); };
    };
    const auto addIndexed = [&](auto indices) {
        return [=] { addIndexedAttribute(*mesh, "c", Component::Face, Uints{5, 6}, indices); };
    };
    using Floats = std::vector<float>;
    const struct {
        std::function<void()> call;
        std::string expected;
    } cases[] = {
        {add("a", Floats(3)), R"(2 a - | "a": 3 values for the 4 corners of the mesh)"},
        {add("a", Floats(7), 2), R"(2 a - | "a": 7 numbers are no elements of 2 each)"},
        {add("a", Floats(20), 5), R"(1 a - | "a": there is no element type of 5 float numbers)"},
        {add("a", Numbers(nullptr, 4, NumberType::Int8)),
         R"(0 a - | "a": the pointer to its elements is null)"},
        {add("face_offset", Floats(4)),
         R"(5 face_offset - | "face_offset": the mesh needs this name for itself; use another)"},
        {add("point_component", Floats(4)), R"(5 point_component - | "point_component": )"
                                            "the mesh needs this name for itself; use another"},
        {addIndexed(Uints{0, 1}),
         R"(2 c_index - | "c_index": 2 values for the 1 faces of the mesh)"},
        {addIndexed(Uints{2}),
         R"(3 c_index 0=2 | "c_index": index 0 is 2, where there are 2 values)"},
        {addIndexed(std::vector<int>{-1}),
         R"(3 c_index 0=-1 | "c_index": number 0 is -1, which is negative)"},
        {[] {
             const auto other = quad();
             addAttribute(*other, "uv_index", Component::Corner, kUvs, 2);
             addIndexedAttribute(*other, "uv", Component::Face, kUvs, 2, Uints{3});
         },
         R"(5 uv_index - | "uv_index": an attribute has this name, which the indices of "uv" need)"},
        {[] {
             const auto other = quad();
             addIndexedAttribute(*other, "uv", Component::Face, kUvs, 2, Uints{3});
             addAttribute(*other, "uv_index", Component::Corner, kUvs, 2);
         },
         R"(5 uv_index - | "uv_index": the indices of an attribute have this name; use another)"},
        {[&] { view<float>(*mesh, "b"); },
         R"(0 b - | "b": the mesh has no attribute of this name)"},
        {[&] { view<int>(*mesh, Geometry::sPointPosition); },
         R"(1 point_position - | "point_position": its elements are float3, not int)"},
    };
    for (const auto& [call, expected] : cases)
        EXPECT_EQ(refusalOf(call), expected);
    EXPECT_EQ(mesh->propertyNames(), quad()->propertyNames()) << "something stayed behind";
}

TEST(Take, MovesWhatTheMeshAloneHoldsAndCopiesTheRest)
{
    Array<float> values(4, 7);
    const float* const storage = values.data();
    const auto mesh = quad();
    addAttribute(*mesh, "moved", Component::Corner, std::move(values));
    addAttribute(*mesh, "lent", Component::Corner, View(kUvs, 4));
    addAttribute(*mesh, "shared", Component::Corner, Array<float>(4, 8));
    const View<float> reader = view<float>(*mesh, "shared");
    Object copy = *mesh;
    EXPECT_NE(take<float>(*mesh, "moved").data(), storage) << "the copy of the mesh has it, too";
    EXPECT_EQ(view<float>(copy, "moved").data(), storage);

    Array<float> taken = take<float>(copy, "moved");
    EXPECT_EQ(taken.data(), storage);
    EXPECT_FALSE(copy.hasProperty("moved"));
    for (const char* name : {"lent", "shared"}) {
        taken = take<float>(copy, name);
        EXPECT_FALSE(copy.hasProperty(name));
        taken[0] = 9;
    }
    EXPECT_EQ(reader[0], 8);
    EXPECT_EQ(takeCorners(copy), (Array<uint>{0, 1, 2, 3}));
    EXPECT_THROW(cornersOf(copy), ArrayError);
}

}  // namespace
