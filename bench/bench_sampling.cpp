// Samples of closed surfaces against the literal steps on one thread: a hash map from cell to
// candidates, and a walk with 27 look-ups for each candidate that is left.

#include "support/Measure.h"
#include "support/SamplingInputs.h"

#include <Korvane/Geometry.h>
#include <Tessary/Sampling.h>

#include <cmath>
#include <string>
#include <type_traits>
#include <utility>

using namespace Bench;
using Korvane::Math::float3;
namespace Geometry = Korvane::Geometry;

namespace {

constexpr uint kSeed = 1;

// The literal steps' result, as the cloud that the kernel makes.
Pelon::MutablePtr<Korvane::Object> cloudOf(Reference::SampleResult&& result)
{
    const auto out = Korvane::createObject();
    const auto add = [&out](const char* name, auto& array) {
        using Values = std::decay_t<decltype(array)>;
        Geometry::addDataGeoProperty<typename Values::value_type>(
            *out, name, Geometry::sPointComp, Pelon::makeMutable<Values>(std::move(array)));
    };
    add(Geometry::sPointPosition.c_str(), result.samples.positions);
    add("weight", result.samples.weights);
    add("face_id", result.samples.faceIds);
    add("face_sample_offset", result.faceOffset);
    return out;
}

// The literal steps take minutes for millions of samples.
enum class Literal { Beside, TooSlow };

void measure(Row& row, const Surface& surface, Literal steps)
{
    const float area = areaOf(surface), distance = distanceLeaving(row.size(), area);
    const auto source = objectOf(surface);
    auto out = Korvane::createObject();
    std::size_t left = 0;
    const auto clear = [&out] { out = nullptr; };
    const auto hash = [&] {
        left = Geometry::dataArray<float3>(*out, Geometry::sPointPosition)->size();
        return hashOfSamples(*out);
    };
    const Contender kernel{
        [&] { Tessary::poissonSampleTriMesh(distance, kSeed, *source, *out, nullptr); },
        [&] { out = Korvane::createObject(); }, clear, hash};
    const Contender literal{
        [&] { out = cloudOf(Reference::poissonSample(surface, distance, kSeed)); }, nullptr, clear,
        hash};
    const Work work{Reference::candidateCount(area, distance), "candidate"};
    if (steps == Literal::Beside)
        row.compare(work, kernel, {"literal steps", literal, "on one thread"});
    else
        row.measure(work, kernel);
    row.figure("left", static_cast<double>(left));
}

// Points in random order, about four to a cell.
Array<Tessary::LocalPosition> scatteredPoints(std::uint64_t count)
{
    const auto side = static_cast<uint>(std::cbrt(static_cast<double>(count) / 4) + 1);
    const Array<float> values = randomFloats(3 * count, 11);
    Array<Tessary::LocalPosition> points(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto cell = [&](std::size_t axis) {
            return static_cast<uint>(values[3 * i + axis] * static_cast<float>(side)) - side / 2;
        };
        points[i] = {static_cast<uint>(i), 0, {}, {cell(0), cell(1), cell(2)}};
    }
    return points;
}

void sortPoints(Row& row)
{
    const Array<Tessary::LocalPosition> points = scatteredPoints(row.size());
    Tessary::PointBins bins;
    Contender kernel;
    kernel.run = [&] { bins.sortDedup(); };
    kernel.prepare = [&] { bins.points.assign(points.begin(), points.end()); };
    kernel.hash = [&] { return hashOf(bins.binCells, hashOf(bins.binOffsets)); };
    kernel.release = [&] { bins = {}; };
    row.measure({points.size(), "point", 2 * sizeof points[0] * points.size(),
                 "peak memory includes the points"},
                kernel);
}

}  // namespace

int main(int argc, char** argv)
{
    using MakeSurface = Surface (*)(uint);
    const std::pair<const char*, MakeSurface> surfaces[] = {
        {"sphere of 100k triangles", sphereSurface}, {"torus of 100k triangles", torusSurface}};
    for (const std::uint64_t samples : {1u, 10u, 1000u, 20000u, 100000u, 500000u, 1000000u,
                                        8000000u, 30000000u, 100000000u, 200000000u})
        for (const auto& [name, make] : surfaces) {
            const auto fill = [samples, make = make](Row& row) {
                measure(row, make(100000), samples < 1000000 ? Literal::Beside : Literal::TooSlow);
            };
            // Half a minute for 8 million on one thread would be too long.
            if (samples <= 1000000)
                addParallelRow({"poissonSampleTriMesh", name, samples}, fill);
            else
                addRow({"poissonSampleTriMesh", name, samples}, fill);
        }
    for (const std::uint64_t points : kSizes)
        addParallelRow({"PointBins sortDedup", "four to a cell", points}, sortPoints);
    return run(argc, argv);
}
