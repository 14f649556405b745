// The bounding sphere against one plain pass over the points on two threads, and the overlap test
// against its thirteen tests one after the other.

#include "support/Inputs.h"
#include "support/Measure.h"

#include <Tessary/Primitives.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <thread>

using namespace Bench;
using Korvane::Math::float3;

namespace {

class Random {
public:
    explicit Random(std::uint32_t seed) : m_bits(seed) {}
    float unit() { return static_cast<float>(m_bits()) * 0x1p-31f - 1.0f; }  // [-1, 1)
    float3 vector() { return {unit(), unit(), unit()}; }
    std::uint32_t below(std::uint32_t n) { return m_bits() % n; }

private:
    std::mt19937 m_bits;
};

float dot(const float3& a, const float3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

float3 minus(const float3& a, const float3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

float3 inBall(Random& random)
{
    float3 p = random.vector();
    while (!(dot(p, p) <= 1 && dot(p, p) > 0.01f))
        p = random.vector();
    return p;
}

float3 onSphere(Random& random)
{
    const float3 p = inBall(random);
    const float length = std::sqrt(dot(p, p));
    return {p.x / length, p.y / length, p.z / length};
}

float3 onCube(Random& random)
{
    float3 p = random.vector();
    (&p.x)[random.below(3)] = random.below(2) == 0 ? -1.0f : 1.0f;
    return p;
}

// Neighbours in the array are neighbours in space: patches along a ring with bumps.
float3 onMesh(Random& random, std::size_t i)
{
    const float turn = static_cast<float>(i / 2048 % 4096) / 4096 * 6.2831853f;
    const float across = random.unit() * 3.1415926f;
    const float r = 1 + 0.3f * std::cos(across) + 0.05f * std::sin(9 * turn);
    return {r * std::cos(turn), 0.7f * r * std::sin(turn), 0.3f * std::sin(across)};
}

// The largest squared distance of points [begin, end) to c.
float largestDistance(const Array<float3>& points, std::size_t begin, std::size_t end,
                      const float3& c)
{
    float largest = 0;
    for (std::size_t i = begin; i < end; ++i) {
        const float3 d = minus(points[i], c);
        largest = std::max(largest, dot(d, d));
    }
    return largest;
}

float radiusOnTwoThreads(const Array<float3>& points, const float3& c)
{
    const std::size_t half = points.size() / 2;
    float other = 0;
    std::thread thread([&] { other = largestDistance(points, half, points.size(), c); });
    const float own = largestDistance(points, 0, half, c);
    thread.join();
    return std::sqrt(std::max(own, other));
}

void boundingSphere(benchmark::State& state, const Array<float3>& points)
{
    Tessary::Sphere sphere = Tessary::computeBoundingSphere(points);
    const float3 center = sphere.getCenter();
    const float ours = sphere.getRadius();
    float plain = radiusOnTwoThreads(points, center);
    const std::uint64_t hashes[] = {hashBytes(&ours, sizeof ours), hashBytes(&plain, sizeof plain)};
    compare(state, {[&] { sphere = Tessary::computeBoundingSphere(points); }},
            {[&] { plain = radiusOnTwoThreads(points, center); }}, sizeof(float3) * points.size(),
            hashes[0], hashes[1]);
}

// Pairs that stay in the caches, so that it is the test that takes time.
constexpr std::size_t kPairs = 10000;

struct Pair {
    float3 a, b, c, center, half;
};

float3 cross(const float3& a, const float3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

bool inOrder(const Pair& t)
{
    const float3& h = t.half;
    const float3 u[] = {minus(t.a, t.center), minus(t.b, t.center), minus(t.c, t.center)};
    const float3 e[] = {minus(t.b, t.a), minus(t.c, t.b), minus(t.a, t.c)};
    const float3 units[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (const float3& unit : units)
        for (const float3& edge : e) {
            const float3 a = cross(unit, edge);
            const float p0 = dot(a, u[0]), p1 = dot(a, u[1]), p2 = dot(a, u[2]);
            const float r = dot({std::fabs(a.x), std::fabs(a.y), std::fabs(a.z)}, h);
            if (std::max(std::min({p0, p1, p2}), -std::max({p0, p1, p2})) > r)
                return false;
        }
    for (float float3::*const x : {&float3::x, &float3::y, &float3::z})
        if (-(h.*x) > std::max({u[0].*x, u[1].*x, u[2].*x}) ||
            std::min({u[0].*x, u[1].*x, u[2].*x}) > h.*x)
            return false;
    const float3 n = cross(e[0], e[1]);
    return dot({std::fabs(n.x), std::fabs(n.y), std::fabs(n.z)}, h) >= std::fabs(dot(n, u[0]));
}

bool ours(const Pair& t)
{
    return Tessary::intersect_triangle_with_axis_aligned_box(t.a, t.b, t.c, t.center, t.half);
}

// Triangles at about `distance` from boxes of about their size.
Array<Pair> pairsAt(float distance)
{
    Random random(5);
    Array<Pair> pairs(kPairs);
    for (Pair& t : pairs) {
        const float3 at = onSphere(random);
        t.center = random.vector();
        for (float3* const p : {&t.a, &t.b, &t.c}) {
            const float3 spread = random.vector();
            *p = {t.center.x + distance * at.x + spread.x, t.center.y + distance * at.y + spread.y,
                  t.center.z + distance * at.z + spread.z};
        }
        const float3 half = random.vector();
        t.half = {0.5f + 0.4f * half.x, 0.5f + 0.4f * half.y, 0.5f + 0.4f * half.z};
    }
    return pairs;
}

// Ten million answers.
template <class Test>
void answer(const Array<Pair>& pairs, Array<bool>& answers, const Test& test)
{
    for (int round = 0; round < 1000; ++round)
        for (std::size_t i = 0; i < kPairs; ++i)
            answers[i] = test(pairs[i]);
}

void triangleBox(benchmark::State& state, const Array<Pair>& pairs)
{
    Array<bool> kernel(kPairs), reference(kPairs);
    answer(pairs, kernel, ours);
    answer(pairs, reference, inOrder);
    const std::uint64_t hashes[] = {hashOf(kernel), hashOf(reference)};
    const auto overlaps = std::count(reference.begin(), reference.end(), true);
    compare(state, {[&] { answer(pairs, kernel, ours); }},
            {[&] { answer(pairs, reference, inOrder); }}, 1000 * sizeof(Pair) * kPairs, hashes[0],
            hashes[1]);
    state.counters["overlap_%"] = 100.0 * static_cast<double>(overlaps) / kPairs;
}

template <class Make>
Array<float3> pointsOf(std::size_t count, const Make& make)
{
    Random random(1);
    Array<float3> points(count);
    for (std::size_t i = 0; i < count; ++i)
        points[i] = make(random, i);
    return points;
}

template <class Make>
void addSphere(const char* name, const Make& make)
{
    for (const std::size_t count : {std::size_t{1000}, std::size_t{100000}, std::size_t{10000000}})
        benchmark::RegisterBenchmark(
            ("computeBoundingSphere/" + std::to_string(count) + " " + name).c_str(),
            [count, make](benchmark::State& state) {
                boundingSphere(state, pointsOf(count, make));
            })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->MinTime(0.5);
}

void addTriangleBox(const char* name, float distance)
{
    benchmark::RegisterBenchmark(
        (std::string("triangleBox/10000000 ") + name).c_str(),
        [distance](benchmark::State& state) { triangleBox(state, pairsAt(distance)); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->MinTime(0.5);
}

}  // namespace

int main(int argc, char** argv)
{
    addSphere("in a ball", [](Random& random, std::size_t) { return inBall(random); });
    addSphere("on a sphere", [](Random& random, std::size_t) { return onSphere(random); });
    addSphere("on a cube", [](Random& random, std::size_t) { return onCube(random); });
    addSphere("on a mesh", [](Random& random, std::size_t i) { return onMesh(random, i); });
    addTriangleBox("mostly separated", 2.5f);
    addTriangleBox("mostly overlapping", 0.1f);
    addTriangleBox("nearly touching", 1.2f);
    return run(argc, argv);
}
