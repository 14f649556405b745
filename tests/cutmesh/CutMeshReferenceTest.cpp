#include "cutmesh/CutMeshCases.h"
#include "support/Cost.h"

#include <gtest/gtest.h>
#include <tbb/task_arena.h>

#include <vector>

using namespace TestSupport;
using namespace Korvane::Math;

namespace {

template <class T>
T randomValue(std::mt19937& random)
{
    if constexpr (std::is_same_v<T, String>) {
        return String(std::to_string(random() % 100));
    } else if constexpr (std::is_same_v<T, bool>) {
        return random() % 2 == 0;
    } else {
        using S = std::conditional_t<Literal::kIsReal<T>, Literal::ScalarOf<T>, float>;
        S scalars[(sizeof(T) + sizeof(S) - 1) / sizeof(S)];
        for (S& s : scalars)
            s = (S(random()) - S(2e9)) / S(1e7);
        T value;
        std::memcpy(&value, scalars, sizeof(T));
        return value;
    }
}

template <class T>
Array<T> randomValues(std::mt19937& random, std::size_t count)
{
    Array<T> values;
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(randomValue<T>(random));
    return values;
}

// Adds properties of every kind to a case and compares each with the literal rules.
class Comparison {
public:
    explicit Comparison(CutCase cut, std::uint32_t seed) : m_cut(std::move(cut)), m_random(seed) {}

    template <class T>
    void add(const std::string& type)
    {
        const PolygonMesh& mesh = m_cut.polygons;
        addOn<T>(type + " point", Geometry::sPointComp, mesh.pointCount, Literal::pointValues<T>,
                 Literal::indexedPoints<T>);
        addOn<T>(type + " face", Geometry::sFaceComp, mesh.faceCount(), Literal::faceValues<T>,
                 [](const CutCase& cut, const Literal::Indexed<T>& in, const T&) {
                     return Literal::Indexed<T>{Literal::faceValues(cut, in.indices), in.values};
                 });
        addOn<T>(type + " corner", Geometry::sFaceVertexComp, mesh.faceVertex.size(),
                 Literal::cornerValues<T>, Literal::indexedCorners<T>);
    }

    void run()
    {
        m_cut.interpolate();
        for (const auto& check : m_checks)
            check();
    }

private:
    template <class T, class Plain, class Indexed>
    void addOn(const std::string& name, const String& component, std::size_t count, Plain plain,
               Indexed indexed)
    {
        const Array<T> values = randomValues<T>(m_random, count);
        Geometry::addDataGeoProperty<T>(*m_cut.source, name, component,
                                        makeMutable<Array<T>>(values));
        m_checks.push_back([this, name, values, plain] {
            SCOPED_TRACE(name);
            ASSERT_TRUE(dataOf<T>(*m_cut.target, name));
            EXPECT_EQ(*dataOf<T>(*m_cut.target, name), plain(m_cut, values));
        });

        const std::string valueName = name + " indexed";
        Literal::Indexed<T> in{{}, randomValues<T>(m_random, 5)};
        for (std::size_t i = 0; i < count; ++i)
            in.indices.push_back(m_random() % 7 == 0 ? kNone : m_random() % 5);
        const T none = randomValue<T>(m_random);
        addIndexed<T>(*m_cut.source, valueName, component, in.indices,
                      makeMutable<Array<T>>(in.values), none);
        m_checks.push_back([this, valueName, in, none, indexed] {
            SCOPED_TRACE(valueName);
            const Literal::Indexed<T> expected = indexed(m_cut, in, none);
            ASSERT_TRUE(dataOf<T>(*m_cut.target, valueName));
            EXPECT_EQ(*dataOf<T>(*m_cut.target, valueName), expected.values);
            ASSERT_TRUE(rangeOf(*m_cut.target, valueName + " range"));
            EXPECT_EQ(*rangeOf(*m_cut.target, valueName + " range"), expected.indices);
        });
    }

    CutCase m_cut;
    std::mt19937 m_random;
    std::vector<std::function<void()>> m_checks;
};

void compareAllKinds(CutCase cut, std::uint32_t seed)
{
    Comparison comparison(std::move(cut), seed);
    comparison.add<float>("float");
    comparison.add<double>("double");
    comparison.add<float2>("float2");
    comparison.add<float3>("float3");
    comparison.add<float4>("float4");
    comparison.add<double2>("double2");
    comparison.add<double3>("double3");
    comparison.add<double4>("double4");
    comparison.add<int>("int");
    comparison.add<unsigned long long>("ulong");
    comparison.add<bool>("bool");
    comparison.add<String>("string");
    comparison.add<float2x2>("float2x2");
    comparison.add<uchar4>("uchar4");
    tbb::task_arena(1 + static_cast<int>(seed % 4)).execute([&comparison] { comparison.run(); });
}

void randomiseWeights(CutCase& cut, std::mt19937& random)
{
    const auto weight = [&random] { return float(random() % 11) / 10.0f - (random() % 7 ? 0 : 1); };
    for (float& t : cut.edgeWeights)
        t = weight();
    for (float& w : cut.triangleWeights)
        w = weight();
}

TEST(CutMesh, EqualsTheLiteralRulesOnAnyPolygonsAndOrigins)
{
    for (std::uint32_t seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        // Few points, so that edges are shared by any number of faces, in any direction.
        PolygonMesh polygons = randomPolygons(seed, 1 + seed % 30);
        for (uint& point : polygons.faceVertex)
            point %= 4 + seed % 20;
        CutCase cut = cutCase(polygons);
        randomiseWeights(cut, random);
        Array<uint> ids, origins;
        for (uint i = 0; i < 20 + seed; ++i)
            origins.push_back(random() % (4 * static_cast<uint>(cut.triFaceVertex.size())));
        for (uint i = 0; i < 5 * seed; ++i)
            ids.push_back(random() % static_cast<uint>(origins.size()));
        setPoints(cut, ids, origins);
        compareAllKinds(std::move(cut), seed);
    }
}

// With the codes of a quad mesh's own entries, as a program makes them.
TEST(CutMesh, EqualsTheLiteralRulesOnQuadMeshesWithAndWithoutCreases)
{
    for (std::uint32_t seed = 0; seed < 30; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        CutCase cut = cutCase(randomPolygonPatch(seed));
        Array<uint> quads;
        Array<bool> creases(cut.triFaceVertex.size());
        for (bool& crease : creases)
            crease = seed % 2 == 1 && random() % 4 == 0;
        const uint points =
            Tessary::computeQuadMesh(cut.triFaceVertex, triEdgesOf(cut.triFaceVertex).pairs,
                                     creases, cut.polygons.pointCount, quads);
        Array<uint> ids, origins(points);
        for (uint entry = 0; entry < quads.size(); ++entry)
            origins[quads[entry]] = entry;
        for (uint p = 0; p < points; ++p)
            ids.push_back(p);
        setPoints(cut, ids, origins);
        compareAllKinds(std::move(cut), seed);
    }
}

// A search that walks the list of a point would take hundreds of times as long on the wheel.
TEST(CutMesh, APointInEveryTriangleCostsAboutAsMuchAsOneInEach)
{
    constexpr uint kTriangles = 50000;
    PolygonMesh wheel, apart;
    wheel.pointCount = kTriangles + 2;
    apart.pointCount = 3 * kTriangles;
    for (uint t = 0; t < kTriangles; ++t) {
        wheel.addFace(Array<uint>{0, t + 1, t + 2});
        apart.addFace(Array<uint>{3 * t, 3 * t + 1, 3 * t + 2});
    }
    const auto transfer = [](const PolygonMesh& mesh, uint values) {
        CutCase cut = cutCase(mesh);
        addIndexed<int>(*cut.source, "p", Geometry::sFaceVertexComp,
                        Array<uint>(mesh.faceVertex.size()), shared({3}));
        cut.interpolate();
        EXPECT_EQ(dataOf<int>(*cut.target, "p")->size(), values);
    };
    // 3 edges and a centre per triangle, less one per shared edge.
    EXPECT_LT(costRatio([&] { transfer(wheel, 1 + 4 * kTriangles - (kTriangles - 1)); },
                        [&] { transfer(apart, 1 + 4 * kTriangles); }),
              20);
}

}  // namespace
