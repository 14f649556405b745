#include "sampling/SamplingCases.h"
#include "support/Threads.h"

#include <algorithm>
#include <limits>
#include <vector>

using namespace TestSupport;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

struct Case {
    std::string name;
    Mesh mesh;
    float distance;
    uint candidates;  // about; what the distance is meant to give
};

float areaOf(const Mesh& mesh)
{
    return Reference::totalArea(Reference::triangleAreas(mesh));
}

// The distance at which a mesh gets about `candidates`.
float distanceFor(const Mesh& mesh, float candidates)
{
    return std::sqrt(20.0f * areaOf(mesh) / (3.14159f * candidates));
}

// The largest distance whose count passes 2^32, by less than 5000.
float wrappingDistance(const Mesh& mesh)
{
    float distance = distanceFor(mesh, 0x1p32f) * 1.00001f;
    while (Reference::candidateCount(areaOf(mesh), distance) > 5000)
        distance = std::nextafter(distance, 0.0f);
    return std::nextafter(distance, 0.0f);
}

Mesh withPoint(Mesh mesh, std::size_t index, const float3& point)
{
    mesh.points.resize(std::max(mesh.points.size(), index + 1));
    mesh.points[index] = point;
    return mesh;
}

// One right triangle and its mirror image, of these legs, in a plane x = `x`.
Mesh rectangle(float x, float y, float z)
{
    return {{{x, 0, 0}, {x, y, 0}, {x, y, z}, {x, 0, z}}, {0, 1, 2, 0, 2, 3}};
}

std::vector<Case> unusualCases()
{
    const Mesh plain = randomTriangles(3, 10);
    Mesh noArea = plain;
    for (std::size_t c = 0; c < noArea.faceVertex.size(); c += 3)
        noArea.faceVertex[c + 1] = noArea.faceVertex[c];
    const Mesh far = {
        {{1e10f, 1e10f, 1e10f}, {1e10f + 1024, 1e10f, 1e10f}, {1e10f, 1e10f + 1024, 1e10f}},
        {0, 1, 2}};
    return {
        {"no faces", {plain.points, {}}, 1, 0},
        {"no area", noArea, 0.01f, 0},
        {"one candidate", plain, distanceFor(plain, 1.5f), 1},
        {"no candidate", plain, distanceFor(plain, 0.9f), 0},
        {"endless distance", plain, kInfinity, 0},
        {"distance below the smallest normal", plain, 1e-40f, 0},
        {"count over 2^63", plain, 1e-9f, 0},
        {"count just over 2^32", rectangle(0, 1, 1), wrappingDistance(rectangle(0, 1, 1)), 1000},
        {"tiny", moved(plain, 1e-18f, {0, 0, 0}), 2e-19f, 1000},
        {"huge, hardly finite area", rectangle(0, 1.5e19f, 1.5e19f), 1e18f, 1400},
        {"total area overflows", rectangle(0, 2e19f, 3e19f), 1e18f, 0},
        {"an area overflows", rectangle(0, 1e30f, 1e30f), 1e28f, 0},
        {"cells outside 32 bits along x", rectangle(1e10f, 1, 1), 0.05f, 2500},
        {"cells outside 32 bits along -x", rectangle(-1e10f, 1, 1), 0.05f, 2500},
        {"cells just inside 32 bits along -x", rectangle(-107374182.4f, 1, 1), 0.05f, 2500},
        {"cells outside every range along x", rectangle(3e38f, 1, 1), 0.05f, 2500},
        {"odd cells beyond 2^23", moved(plain, 1, {1e6f, -2e6f, 3e6f}), 0.1f, 10000},
        {"every cell outside 32 bits", far, 4.6f, 150000},
        {"NaN in a point", withPoint(plain, 5, {0, kNaN, 0}), 0.1f, 0},
        {"infinity in a point", withPoint(plain, 5, {0, kInfinity, 0}), 0.1f, 0},
        {"NaN in a point of no face", withPoint(plain, 30, {kNaN, 0, 0}), 0.1f, 7000},
    };
}

void expectLiteralSteps(const Mesh& mesh, float distance, uint seed)
{
    const Result expected = Reference::poissonSample(mesh, distance, seed);
    atSeveralThreadCounts([&](int threads) {
        SCOPED_TRACE(threads);
        expectSame(resultOf(*sampled(mesh, distance, seed)), expected);
    });
}

TEST(PoissonSample, EqualsTheLiteralStepsOnUnusualMeshes)
{
    for (const Case& unusual : unusualCases()) {
        SCOPED_TRACE(unusual.name);
        const float area = areaOf(unusual.mesh);
        const uint candidates = Reference::candidateCount(area, unusual.distance);
        EXPECT_LE(candidates, 4 * unusual.candidates);
        EXPECT_GE(candidates, unusual.candidates / 4);
        expectLiteralSteps(unusual.mesh, unusual.distance, 7);
    }
}

TEST(PoissonSample, EqualsTheLiteralStepsOnFewAndManyCandidates)
{
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const float scale = std::ldexp(1.0f, static_cast<int>(random() % 41) - 20);
        const float3 by{randomCoordinate(random), randomCoordinate(random), 0};
        const Mesh mesh = moved(randomTriangles(seed, 1 + random() % 70), scale,
                                moved(by, random() % 3 == 0 ? 1000 * scale : 0, {0, 0, 0}));
        const float candidates = static_cast<float>(random() % (1u << random() % 14));
        expectLiteralSteps(mesh, distanceFor(mesh, candidates + 0.5f), seed * 2654435761u);
    }
    for (const Mesh& mesh : {roundedOctahedron(2), randomTriangles(1, 9), roundedOctahedron(3),
                             randomTriangles(3, 9), roundedOctahedron(4), randomTriangles(5, 9)})
        expectLiteralSteps(mesh, distanceFor(mesh, 60000), mesh.faceVertex[2]);
}

struct Golden {
    Mesh mesh;
    float distance;
    uint seed;
    std::uint64_t hash;
};

std::uint64_t hashOf(const Result& result)
{
    std::uint64_t hash = 14695981039346656037u;  // FNV-1a
    for (const char byte : bytesOf(result))
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211u;
    return hash;
}

// What earlier versions gave, in every build and on every machine.
TEST(PoissonSample, GivesTheBytesItEverGave)
{
    const Golden golden[] = {
        {randomTriangles(1, 1), 0.05f, 0, 0x266d6665cb5f2f53},
        {randomTriangles(1, 1), 0.05f, 1, 0x48c835c025e73ef0},
        {randomTriangles(2, 3), 0.05f, 0, 0x36d87094c8e2985d},
        {randomTriangles(3, 100), 0.125f, 12345, 0xa53d125d927c83ab},
        {randomTriangles(4, 1000), 0.5f, 0xFFFFFFFF, 0xadfe00dd88f27239},
        {roundedOctahedron(0), 0.03f, 5, 0x78829b2ac8509361},
        {roundedOctahedron(1), 1, 6, 0x0765c4b7c08d47de},
        {roundedOctahedron(3), 0.04f, 7, 0xf4c29661a6a9e745},
        {roundedOctahedron(5), 0.02f, 0, 0xe9f6d2b2c119fa9f},
        {moved(roundedOctahedron(2), 1e-6f, {0, 0, 0}), 5e-8f, 8, 0x098e36804ac1770b},
        {moved(roundedOctahedron(2), 1e6f, {3e8f, 0, -2e7f}), 7e4f, 9, 0x69acbf403922c168},
        {moved(randomTriangles(5, 20), 1, {1e5f, 0, 0}), 0.05f, 10, 0x1c0ac391a4db12d1},
    };
    for (const Golden& g : golden) {
        SCOPED_TRACE(&g - golden);
        atSeveralThreadCounts([&g](int threads) {
            SCOPED_TRACE(threads);
            EXPECT_EQ(hashOf(resultOf(*sampled(g.mesh, g.distance, g.seed))), g.hash);
        });
    }
}

}  // namespace
