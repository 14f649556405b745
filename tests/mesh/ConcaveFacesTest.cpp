#include <TessaryMesh/Check.h>
#include <TessaryMesh/Operations.h>

#include <gtest/gtest.h>
#include <mesh/check/EarClipping.h>
#include <tests/support/Cost.h>
#include <tests/support/MeshBuilding.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using namespace Korvane::Geometry;
using namespace TestSupport;
using Korvane::Math::double3;
using TessaryMesh::clipEars;
using TessaryMesh::Concave;
using TessaryMesh::ConcaveFaces;
using TessaryMesh::PlanePoint;
using Polygon = std::vector<PlanePoint>;

double twiceArea(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c)
{
    return (double{b.x} - a.x) * (double{c.y} - a.y) - (double{b.y} - a.y) * (double{c.x} - a.x);
}

// All a triangulation has to be: its triangles are turned like the polygon, and their sides are those of
// the polygon once and others in pairs. Then they cover it without overlapping.
void expectTriangulation(const Polygon& polygon, const std::string& what)
{
    std::vector<uint> triangles;
    ASSERT_TRUE(clipEars(polygon, triangles)) << what;
    ASSERT_EQ(triangles.size(), 3 * (polygon.size() - 2)) << what;
    std::vector<std::pair<uint, uint>> sides;
    for (std::size_t t = 0; t < triangles.size(); t += 3) {
        const uint* const v = triangles.data() + t;
        ASSERT_GE(TessaryMesh::orientation(polygon[v[0]], polygon[v[1]], polygon[v[2]]), 0) << what;
        for (int k = 0; k < 3; ++k)
            sides.emplace_back(v[k], v[(k + 1) % 3]);
    }
    for (uint i = 0; i < polygon.size(); ++i)
        sides.emplace_back((i + 1) % polygon.size(), i);
    std::sort(sides.begin(), sides.end());
    ASSERT_EQ(std::unique(sides.begin(), sides.end()), sides.end()) << what;
    for (const auto& [from, to] : sides)
        ASSERT_TRUE(std::binary_search(sides.begin(), sides.end(), std::make_pair(to, from)))
            << what;
}

// Around the origin, at random distances: as concave as can be.
Polygon star(uint count, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> radius(0.2f, 1);
    Polygon polygon;
    for (uint i = 0; i < count; ++i) {
        const float r = radius(random);
        const double angle = 2 * M_PI * i / count;
        polygon.push_back({r * float(std::cos(angle)), r * float(std::sin(angle))});
    }
    return polygon;
}

// A corridor that winds inwards: at any time there are few ears.
Polygon spiral(uint count)
{
    Polygon polygon(count);
    for (uint i = 0; i < count / 2; ++i) {
        const double angle = 60.0 * i / count, r = 1 + angle;
        polygon[i] = {float(r * std::cos(angle)), float(r * std::sin(angle))};
        polygon[count - 1 - i] = {float((r - 0.5) * std::cos(angle)),
                                  float((r - 0.5) * std::sin(angle))};
    }
    std::reverse(polygon.begin(), polygon.end());
    if (twiceArea(polygon[0], polygon[1], polygon[count - 1]) < 0)
        std::reverse(polygon.begin(), polygon.end());
    return polygon;
}

Polygon comb(uint teeth)
{
    Polygon polygon;
    for (uint i = teeth; i-- > 0;) {
        polygon.push_back({i + 0.5f, 1000});
        polygon.push_back({float(i), 0});
    }
    polygon.push_back({0, -1});
    polygon.push_back({float(teeth), -1});
    return polygon;
}

TEST(EarClipping, CoversAnySimplePolygonOnce)
{
    for (unsigned seed = 0; seed < 200; ++seed)
        expectTriangulation(star(4 + seed % 60, seed), "star " + std::to_string(seed));
    expectTriangulation(spiral(200), "spiral");
    expectTriangulation(comb(50), "comb");
    // Corners on sides, a spike, a hole that a seam joins to the outside, and points twice in a row.
    expectTriangulation({{0, 0}, {1, 0}, {2, 0}, {2, 2}, {1, 2}, {0, 2}, {0, 1}}, "flat corners");
    expectTriangulation({{0, 0}, {2, 0}, {3, 0}, {2, 0}, {2, 2}, {0, 2}}, "spike");
    expectTriangulation(
        {{0, 0}, {3, 0}, {3, 3}, {0, 3}, {0, 0}, {1, 1}, {1, 2}, {2, 2}, {2, 1}, {1, 1}}, "hole");
    expectTriangulation({{0, 0}, {0, 0}, {2, 0}, {1, 1}, {1, 1}, {2, 2}, {0, 2}}, "twice");
}

TEST(EarClipping, RefusesWhatCrossesItself)
{
    std::vector<uint> triangles;
    EXPECT_FALSE(clipEars({{0, 0}, {1, 1}, {1, 0}, {0, 1}}, triangles));
    EXPECT_FALSE(clipEars({{0, 0}, {4, 0}, {4, 3}, {1, -1}, {1, 3}}, triangles));
}

TEST(EarClipping, OfALongFaceTakesFarLessThanQuadraticTime)
{
    using Shape = Polygon (*)(uint);
    const Shape shapes[] = {spiral, [](uint n) { return comb(n / 2); },
                            [](uint n) { return star(n, 1); }};
    for (const Shape shape : shapes) {
        std::vector<uint> triangles;
        const Polygon small = shape(5000), large = shape(80000);
        EXPECT_LT(costRatio([&] { EXPECT_TRUE(clipEars(large, triangles)); },
                            [&] { EXPECT_TRUE(clipEars(small, triangles)); }),
                  100);
    }
}

// As sums of products of whole numbers, floats being such times a power of two.
int exactly(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c)
{
    const auto whole = [](float x) { return static_cast<__int128>(std::ldexp(double{x}, 40)); };
    const __int128 determinant = (whole(a.x) - whole(c.x)) * (whole(b.y) - whole(c.y)) -
                                 (whole(a.y) - whole(c.y)) * (whole(b.x) - whole(c.x));
    return (determinant > 0) - (determinant < 0);
}

TEST(Orientation, IsExactNextToALine)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> unit(0.5f, 1);
    int onLine = 0;
    for (int i = 0; i < 20000; ++i) {
        PlanePoint a{unit(random), unit(random)}, b{unit(random) * 16, unit(random) * 16}, c;
        const float t = i % 4 == 0 ? 0.5f : unit(random);
        c = {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)};
        ASSERT_EQ(TessaryMesh::orientation(a, b, c), exactly(a, b, c));
        onLine += exactly(a, b, c) == 0;
    }
    EXPECT_GT(onLine, 0);
    EXPECT_EQ(TessaryMesh::orientation({1e30f, 1e30f}, {-1e30f, -1e30f}, {1e-45f, 0}), 1);
    EXPECT_EQ(TessaryMesh::orientation({3e38f, 3e38f}, {-3e38f, -3e38f}, {0, 1e-45f}), -1);
}

//  2.__
//   \  `--.__     face 0 is the dart 0 1 2 3, whose corner 3 is not convex; face 1 fills its notch; face 2 is
//    3       `1   a square that crosses itself
//   / __,--'
//  0'
MutablePtr<Object> dart()
{
    const auto mesh = makeMesh(
        {{0, 0, 0}, {4, 2, 0}, {0, 4, 0}, {1, 2, 0}, {9, 0, 0}, {9, 1, 1}, {9, 0, 1}, {9, 1, 0}},
        {0, 4, 7, 11}, {0, 1, 2, 3, 0, 3, 2, 4, 5, 6, 7});
    addDataGeoProperty<int>(*mesh, "id", sFaceComp,
                            makeMutable<Array<int>>(Array<int>{10, 20, 30}));
    addDataGeoProperty<float>(
        *mesh, "sharp", sFaceVertexComp,
        makeMutable<Array<float>>(Array<float>{0, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9}));
    addRangeGeoProperty(*mesh, "uv_index", sFaceVertexComp,
                        makeMutable<Array<uint>>(Array<uint>{0, 1, 2, 3, 0, 3, 2, 1, 1, 1, 1}));
    addDataGeoProperty<float>(*mesh, "uv", "uv_index",
                              makeMutable<Array<float>>(Array<float>{5, 6, 7, 8}));
    return mesh;
}

TEST(ConcaveFaces, AreToldWithTheirAreas)
{
    const auto mesh = dart();
    const ConcaveFaces found = TessaryMesh::concaveFaces(*mesh);
    ASSERT_EQ(found.concave.count, 1u);
    EXPECT_EQ(found.concave.places[0].text, "face 0 (area 6, as a fan 10)");
    EXPECT_EQ(found.concave.places[0].index, 0u);
    EXPECT_EQ(found.area, 6);
    EXPECT_EQ(found.fanArea, 10);
    ASSERT_EQ(found.selfCrossing.count, 1u);
    EXPECT_EQ(found.selfCrossing.places[0].text, "face 2 (area 0, as a fan 1)");
    // A fan from the corner that sees all of the face fits.
    const auto turned =
        makeMesh({{0, 0, 0}, {4, 2, 0}, {0, 4, 0}, {1, 2, 0}}, {0, 4}, {3, 0, 1, 2});
    EXPECT_TRUE(TessaryMesh::concaveFaces(*turned).problems().empty());
}

// One face of these points, turned about some axis and moved, so that nothing lies on the axes.
ConcaveFaces foundIn(const std::vector<double3>& points, double offset = 0)
{
    Array<float3> turned;
    Array<uint> corners;
    for (const auto& [x, y, z] : points) {  // a rotation by thirds of its columns
        corners.push_back(static_cast<uint>(turned.size()));
        turned.push_back({float((2 * x - y + 2 * z) / 3 + offset),
                          float((2 * x + 2 * y - z) / 3 + offset),
                          float((-x + 2 * y + 2 * z) / 3 + offset)});
    }
    const uint count = static_cast<uint>(corners.size());
    return TessaryMesh::concaveFaces(*makeMesh(turned, {0, count}, corners));
}

TEST(ConcaveFaces, AreNeitherBentNorRoundedNorSlightlyHollow)
{
    for (const double bend : {0.1, 0.5, 2.0})
        EXPECT_EQ(foundIn({{0, 0, 0}, {1, 0, bend}, {1, 1, 0}, {0, 1, bend}}).slight, 0u) << bend;
    // Corners on a side are beside it by what rounding does; nearer to the origin that would be a dent.
    const std::vector<double3> onSide = {{0, 0, 0},   {2, 0, 0},   {2, 1, 0},
                                         {1.3, 1, 0}, {0.6, 1, 0}, {0, 1, 0}};
    for (const double offset : {0.0, 100.0, 100000.0}) {
        const ConcaveFaces found = foundIn(onSide, offset);
        EXPECT_EQ(found.slight + found.concave.count + found.selfCrossing.count, 0u) << offset;
    }
    const auto hollow = [](double depth) {  // in the middle of a side of length 2
        return foundIn({{0, 1, 0}, {0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1 - depth, 0}});
    };
    EXPECT_EQ(hollow(0.01).slight, 1u);
    EXPECT_EQ(hollow(0.01).concave.count, 0u);
    EXPECT_EQ(hollow(0.3).concave.count, 1u);
    // A dent as small as that is one all the same: it is no curve.
    EXPECT_EQ(
        foundIn(
            {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1.02, 1, 0}, {1, 0.9, 0}, {0.98, 1, 0}, {0, 1, 0}})
            .concave.count,
        1u);
    EXPECT_TRUE(TessaryMesh::concaveFaces(*TessaryMesh::makeDemoMesh(64)).problems().empty());
}

TEST(ConcaveFaces, ThatCrossThemselvesAreNamedHoweverManyCornersTheyHave)
{
    const auto isNamed = [](const std::vector<double3>& points) {
        const ConcaveFaces found = foundIn(points);
        return found.selfCrossing.count == 1 && found.concave.count + found.slight == 0;
    };
    // Twice around, so that no triangle of the fan is turned over, and a corridor over its own beginning.
    std::vector<double3> twice, corridor, large;
    for (int i = 0; i < 10; ++i)
        twice.push_back({(9 - i / 2 * 0.1) * std::cos(0.4 * M_PI * i + 0.01 * i),
                         9 * std::sin(0.4 * M_PI * i + 0.01 * i), 0});
    EXPECT_TRUE(isNamed(twice));
    for (int i = 0; i < 30; ++i)
        corridor.push_back({4 * std::cos(0.25 * i), 4 * std::sin(0.25 * i), 0});
    for (int i = 30; i-- > 0;)
        corridor.push_back({3 * std::cos(0.25 * i), 3 * std::sin(0.25 * i), 0});
    std::reverse(corridor.begin(), corridor.end());
    EXPECT_TRUE(isNamed(corridor));
    for (const PlanePoint& p : star(50000, 3))
        large.push_back({p.x, p.y, 0});
    EXPECT_EQ(foundIn(large).concave.count, 1u);
    std::swap(large[100], large[20000]);
    EXPECT_TRUE(isNamed(large));
}

TEST(ConcaveFaces, AreSplitWithAllThatTheyCarry)
{
    const auto mesh = dart();
    for (const bool isWhole : {false, true}) {  // splitting alone, and on the way to triangles
        const TessaryMesh::Result result = isWhole
                                               ? TessaryMesh::triangulate(*mesh, {}, Concave::Split)
                                               : TessaryMesh::splitConcaveFaces(*mesh);
        const std::size_t corners = isWhole ? 15 : 13;
        Array<uint> corner{3, 0, 1, 3, 1, 2, 4, 5, 6, 7, 8, 9, 10};
        if (isWhole)
            corner = {3, 0, 1, 3, 1, 2, 4, 5, 6, 7, 8, 9, 7, 9, 10};
        ASSERT_EQ(*result.parents.corner, corner);
        EXPECT_EQ(*result.parents.face,
                  isWhole ? (Array<uint>{0, 0, 1, 2, 2}) : (Array<uint>{0, 0, 1, 2}));
        EXPECT_EQ((*dataOf<int>(*result.mesh, "id"))[1], 10);
        const Array<uint>& before = *dataOf<uint>(*mesh, sFaceVertex);
        const Array<uint>& after = *dataOf<uint>(*result.mesh, sFaceVertex);
        const Array<uint>& uv =
            *getRangeGeoPropIndices(*getRangeGeoProperty(*result.mesh, "uv_index"));
        ASSERT_EQ(after.size(), corners);
        for (std::size_t c = 0; c < corners; ++c) {
            EXPECT_EQ(after[c], before[corner[c]]);
            EXPECT_EQ((*dataOf<float>(*result.mesh, "sharp"))[c],
                      (*dataOf<float>(*mesh, "sharp"))[corner[c]]);
            EXPECT_EQ(
                uv[c],
                (*getRangeGeoPropIndices(*getRangeGeoProperty(*mesh, "uv_index")))[corner[c]]);
        }
        EXPECT_TRUE(result.warnings.empty());
        EXPECT_EQ(dataOf<float>(*result.mesh, "uv").get(), dataOf<float>(*mesh, "uv").get());
    }
}

// The new edge inside of a face is none of it: neither angles nor values of corners crease it.
TEST(ConcaveFaces, AreOneFaceToCreasesAndOneParentToSamples)
{
    const auto mesh = makeMesh({{0, 0, 0}, {4, 2, 1}, {0, 4, 0}, {1, 2, 0}}, {0, 4}, {0, 1, 2, 3});
    addDataGeoProperty<bool>(*mesh, "sharp", sFaceVertexComp,
                             makeMutable<Array<bool>>(Array<bool>{true, true, true, true}));
    TessaryMesh::QuadOptions options;
    options.concave = Concave::Split;
    options.creaseAngle = 0;
    const auto byAngle = TessaryMesh::makeQuads(*mesh, options);
    EXPECT_EQ(byAngle.creasedEdges, 0u);
    EXPECT_EQ(*byAngle.parents.corner, (Array<uint>{3, 0, 1, 3, 1, 2}));
    EXPECT_EQ(*byAngle.parents.face, Array<uint>(6, 0));
    options.creaseProperty = "sharp";
    const auto byProperty = TessaryMesh::makeQuads(*mesh, options);
    EXPECT_EQ(byProperty.creasedEdges, 4u);

    TessaryMesh::SampleOptions samples;
    samples.distance = 0.1f;
    samples.concave = Concave::Split;
    const auto flat = makeMesh({{0, 0, 0}, {4, 2, 0}, {0, 4, 0}, {1, 2, 0}}, {0, 4}, {0, 1, 2, 3});
    const auto inside = TessaryMesh::sample(*flat, samples);
    for (const float3& p : *dataOf<float3>(*inside.mesh, sPointPosition))
        EXPECT_GE(p.x, std::min(p.y / 2, 2 - p.y / 2) - 1e-5f);  // none in the notch
    const auto split = TessaryMesh::sample(*dart(), samples);
    const Array<uint>& faces = *dataOf<uint>(*split.mesh, "face_id");
    EXPECT_EQ(*std::max_element(faces.begin(), faces.end()), 2u);
    samples.concave = Concave::Fan;
    EXPECT_NEAR(TessaryMesh::sample(*dart(), samples).area - split.area, 4, 1e-6);
}

}  // namespace
