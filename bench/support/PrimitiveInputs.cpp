#include "support/PrimitiveInputs.h"

#include <cmath>
#include <random>

using Korvane::Math::float3;

namespace Bench {
namespace {

class Random {
public:
    explicit Random(std::uint32_t seed) : m_bits(seed) {}
    float unit() { return static_cast<float>(m_bits()) * 0x1p-31f - 1.0f; }  // [-1, 1)
    std::uint32_t below(std::uint32_t n) { return m_bits() % n; }

    float3 vector()
    {
        const float x = unit(), y = unit(), z = unit();
        return {x, y, z};
    }

private:
    std::mt19937 m_bits;
};

float squared(const float3& p)
{
    return p.x * p.x + p.y * p.y + p.z * p.z;
}

float3 inBall(Random& random)
{
    float3 p = random.vector();
    while (!(squared(p) <= 1 && squared(p) > 0.01f))
        p = random.vector();
    return p;
}

float3 onSphere(Random& random)
{
    const float3 p = inBall(random);
    const float length = std::sqrt(squared(p));
    return {p.x / length, p.y / length, p.z / length};
}

float3 onCube(Random& random)
{
    float3 p = random.vector();
    (&p.x)[random.below(3)] = random.below(2) == 0 ? -1.0f : 1.0f;
    return p;
}

// Half of the unit circle for t from -1 to 1; library functions may differ in the last bit.
float3 onHalfCircle(float t)
{
    return {(1 - t * t) / (1 + t * t), 2 * t / (1 + t * t), 0};
}

// Patches along a flat ring.
float3 onMesh(Random& random, std::size_t i)
{
    const float3 along = onHalfCircle(static_cast<float>(i / 2048 % 4096) / 2048 - 1);
    const float3 across = onHalfCircle(random.unit());
    const float side = i / 1024 % 2 == 0 ? 1.0f : -1.0f;
    const float r = 1 + 0.3f * across.x;
    return {side * r * along.x, 0.7f * r * along.y, 0.3f * across.y};
}

float3 makePoint(Points kind, Random& random, std::size_t i)
{
    switch (kind) {
        case Points::InABall:
            return inBall(random);
        case Points::OnASphere:
            return onSphere(random);
        case Points::OnACube:
            return onCube(random);
        case Points::OnAMesh:
            break;
    }
    return onMesh(random, i);
}

}  // namespace

std::string nameOf(Points kind)
{
    switch (kind) {
        case Points::InABall:
            return "in a ball";
        case Points::OnASphere:
            return "on a sphere";
        case Points::OnACube:
            return "on a cube";
        case Points::OnAMesh:
            break;
    }
    return "on a mesh";
}

Array<float3> makePoints(Points kind, std::size_t count)
{
    Random random(1);
    Array<float3> points(count);
    for (std::size_t i = 0; i < count; ++i)
        points[i] = makePoint(kind, random, i);
    return points;
}

Array<TriangleAndBox> trianglesAndBoxes(std::size_t count, float distance)
{
    Random random(5);
    Array<TriangleAndBox> pairs(count);
    for (TriangleAndBox& pair : pairs) {
        const float3 at = onSphere(random);
        pair.center = random.vector();
        for (float3* const p : {&pair.a, &pair.b, &pair.c}) {
            const float3 spread = random.vector();
            *p = {pair.center.x + distance * at.x + spread.x,
                  pair.center.y + distance * at.y + spread.y,
                  pair.center.z + distance * at.z + spread.z};
        }
        const float3 half = random.vector();
        pair.half = {0.5f + 0.4f * half.x, 0.5f + 0.4f * half.y, 0.5f + 0.4f * half.z};
    }
    return pairs;
}

}  // namespace Bench
