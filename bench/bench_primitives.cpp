// The bounding sphere against one plain pass over the points on two threads, and the overlap test
// against its thirteen tests one after the other.

#include "reference/TriangleBox.h"
#include "support/Inputs.h"
#include "support/Measure.h"
#include "support/PrimitiveInputs.h"

#include <Tessary/Primitives.h>
#include <Tessary/Scratch.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <thread>
#include <vector>

using namespace Bench;
using Korvane::Math::float3;

namespace {

float dot(const float3& a, const float3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

float3 minus(const float3& a, const float3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
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

void boundingSphere(Row& row, const Array<float3>& points)
{
    Tessary::Sphere sphere = Tessary::computeBoundingSphere(points);
    const float3 center = sphere.getCenter();
    float plain = 0;
    Contender kernel;
    kernel.run = [&] { sphere = Tessary::computeBoundingSphere(points); };
    kernel.hash = [&] { return hashBytes(&sphere, sizeof sphere); };
    Contender pass;
    pass.run = [&] { plain = radiusOnTwoThreads(points, center); };
    row.compare(
        {points.size(), "point", sizeof(float3) * points.size()}, kernel,
        {"one pass", pass, "finds the farthest point from the known centre, on two threads"});
    row.expectNear("radius", sphere.getRadius(), plain);
}

bool inOrder(const TriangleAndBox& t)
{
    return Reference::triangleOverlapsBox(t.a, t.b, t.c, t.center, t.half);
}

bool ours(const TriangleAndBox& t)
{
    return Tessary::intersect_triangle_with_axis_aligned_box(t.a, t.b, t.c, t.center, t.half);
}

// Pairs that stay in the caches, so that it is the test that takes time.
constexpr std::size_t kMostPairs = 10000;

template <class Test>
Contender answers(const Array<TriangleAndBox>& pairs, std::size_t rounds, Array<bool>& output,
                  const Test& test)
{
    Contender contender;
    contender.run = [&pairs, rounds, &output, test] {
        for (std::size_t round = 0; round < rounds; ++round)
            for (std::size_t i = 0; i < pairs.size(); ++i)
                output[i] = test(pairs[i]);
    };
    contender.hash = [&output] { return hashOf(output); };
    return contender;
}

void triangleBox(Row& row, float distance)
{
    const Array<TriangleAndBox> pairs =
        trianglesAndBoxes(std::min<std::size_t>(row.size(), kMostPairs), distance);
    const std::size_t rounds = row.size() / pairs.size();
    Array<bool> kernel(pairs.size()), reference(pairs.size());
    row.compare(
        {row.size(), "pair", 0, "on one thread; at most 10000 different pairs"},
        answers(pairs, rounds, kernel, ours),
        {"tests in order", answers(pairs, rounds, reference, inOrder), "thirteen, in scalars"});
    const auto overlaps = std::count(kernel.begin(), kernel.end(), true);
    row.figure("overlap_%",
               100.0 * static_cast<double>(overlaps) / static_cast<double>(pairs.size()));
}

void addSpheres(Points kind, std::uint64_t size)
{
    static Latest<Array<float3>> latest;
    const std::string name = nameOf(kind);
    addParallelRow({"computeBoundingSphere", name, size}, [=](Row& row) {
        boundingSphere(
            row, latest.get(name + std::to_string(size), [&] { return makePoints(kind, size); }));
    });
}

void addTriangleBox(const char* name, float distance, std::uint64_t size)
{
    addRow({"intersect_triangle_with_axis_aligned_box", name, size},
           [distance](Row& row) { triangleBox(row, distance); });
}

// What a caller pays who needs a larger buffer: the call itself touches no memory.
void scratch(Row& row)
{
    const std::size_t count = row.size();
    Tessary::Scratch<float> ours;
    std::vector<float> vector;
    Contender kernel;
    kernel.run = [&] { ours.resize(count); };
    Contender other;
    other.run = [&] {
        std::vector<float>().swap(vector);
        vector.resize(count);
    };
    row.compare({count, "number"}, kernel, {"std::vector", other, "sets every number to 0"});
}

}  // namespace

int main(int argc, char** argv)
{
    for (const uint size : kSizes) {
        for (const Points kind : kPointSets)
            addSpheres(kind, size);
        addTriangleBox("mostly separated", 2.5f, size);
        addTriangleBox("mostly overlapping", 0.1f, size);
        addTriangleBox("nearly touching", 1.2f, size);
        addRow({"Scratch<float> resize", "none", size}, scratch);
    }
    return run(argc, argv);
}
