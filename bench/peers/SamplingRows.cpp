#include "peers/SamplingRows.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using Korvane::Math::float3;
namespace Geometry = Korvane::Geometry;

namespace Bench {
namespace {

constexpr uint kSeed = 1;

double squaredDistance(const float3& a, const float3& b)
{
    const double x = double{a.x} - b.x, y = double{a.y} - b.y, z = double{a.z} - b.z;
    return x * x + y * y + z * z;
}

// The least distance of two points, looked for up to `reach`. Points that are near are near in x.
double leastDistance(const Samples& points, double reach)
{
    std::vector<float3> sorted(points.begin(), points.end());
    std::sort(sorted.begin(), sorted.end(),
              [](const float3& a, const float3& b) { return a.x < b.x; });
    double least = reach * reach;
    for (std::size_t i = 0; i < sorted.size(); ++i)
        for (std::size_t j = i + 1; j < sorted.size() && sorted[j].x - sorted[i].x < reach; ++j)
            least = std::min(least, squaredDistance(sorted[i], sorted[j]));
    return std::sqrt(least);
}

const Samples& samplesOf(const Korvane::Object& cloud)
{
    return *Geometry::dataArray<float3>(cloud, Geometry::sPointPosition);
}

Contender samplingKernel(const Korvane::Object& source, float distance,
                         Pelon::MutablePtr<Korvane::Object>& out)
{
    return {[&source, &out, distance] {
                Tessary::poissonSampleTriMesh(distance, kSeed, source, *out, nullptr);
            },
            [&out] { out = Korvane::createObject(); }, [&out] { out = nullptr; },
            [&out] { return hashOfSamples(*out); }};
}

void fillRow(Row& row, const Surface& surface, const MakeSampler& makePeer)
{
    const float area = areaOf(surface);
    const float distance = distanceLeaving(row.size(), area);
    const auto source = objectOf(surface);
    auto out = Korvane::createObject();
    Tessary::poissonSampleTriMesh(distance, kSeed, *source, *out, nullptr);
    Samples ours = samplesOf(*out), others;
    const SamplingJob job{surface, distance, Reference::candidateCount(area, distance),
                          ours.size()};
    const Other peer = makePeer(job, others);
    row.compare({job.candidates, "candidate", 0, ""}, samplingKernel(*source, distance, out), peer);
    const double reach = 2.0 * distance;
    row.figure("left", static_cast<double>(ours.size()));
    row.figure("other_left", static_cast<double>(others.size()));
    row.figure("apart", leastDistance(ours, reach) / distance);
    row.figure("other_apart", leastDistance(others, reach) / distance);
    row.expectNear("number of samples", static_cast<double>(ours.size()),
                   static_cast<double>(others.size()), 0.02);
}

}  // namespace

Samples uniformCloud(const Surface& surface, std::size_t count)
{
    const auto corner = [&](std::size_t c) { return surface.points[surface.faceVertex[c]]; };
    std::vector<double> areaUpTo;
    double area = 0;
    for (const float each : Reference::triangleAreas(surface))
        areaUpTo.push_back(area += each);
    std::mt19937_64 random(kSeed);
    const auto share = [&] { return static_cast<double>(random() >> 11) * 0x1p-53; };
    Samples cloud(count);
    for (float3& point : cloud) {
        const auto found = std::upper_bound(areaUpTo.begin(), areaUpTo.end(), area * share());
        const auto t = std::min<std::size_t>(found - areaUpTo.begin(), areaUpTo.size() - 1);
        const double root = std::sqrt(share()), second = share();
        const double u = 1 - root, v = root * (1 - second), w = root * second;
        const float3 a = corner(3 * t), b = corner(3 * t + 1), c = corner(3 * t + 2);
        point = {static_cast<float>(u * a.x + v * b.x + w * c.x),
                 static_cast<float>(u * a.y + v * b.y + w * c.y),
                 static_cast<float>(u * a.z + v * b.z + w * c.z)};
    }
    return cloud;
}

void addSamplingRows(const char* peer, std::uint64_t largest, const MakeSampler& makePeer)
{
    for (const std::uint64_t samples : {20000u, 100000u, 500000u}) {
        if (samples > largest)
            continue;
        addRow({"poissonSampleTriMesh", "sphere of 100k triangles", samples, 0, peer},
               [=](Row& row) { fillRow(row, sphereSurface(100000), makePeer); });
        addRow({"poissonSampleTriMesh", "torus of 100k triangles", samples, 0, peer},
               [=](Row& row) { fillRow(row, torusSurface(100000), makePeer); });
    }
}

}  // namespace Bench
