// Samples of closed surfaces against the literal steps: candidates sorted by comparison, a concurrent
// map from cell to bin, and a serial walk with 27 look-ups a candidate.

#include "support/Measure.h"
#include "support/SamplingInputs.h"

#include <Korvane/Geometry.h>
#include <Tessary/Sampling.h>

#include <string>

using namespace Bench;
using Korvane::Math::float3;
namespace Geometry = Korvane::Geometry;

namespace {

constexpr uint kSeed = 1;

// The literal steps' result, as the cloud that the kernel makes.
Pelon::MutablePtr<Korvane::Object> cloudOf(LiteralSampling::Result&& result)
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

void measure(Row& row, const Surface& surface)
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
        [&] { out = cloudOf(LiteralSampling::sample(surface, distance, kSeed)); }, nullptr, clear,
        hash};
    row.compare({LiteralSampling::candidateCount(area, distance), "candidate"}, kernel,
                {"literal steps", literal});
    row.figure("left", static_cast<double>(left));
}

}  // namespace

int main(int argc, char** argv)
{
    for (const std::uint64_t samples : {10u, 1000u, 20000u, 100000u, 500000u}) {
        addRow({"poissonSampleTriMesh", "sphere of 100k triangles", samples},
               [](Row& row) { measure(row, sphereSurface(100000)); });
        addRow({"poissonSampleTriMesh", "torus of 100k triangles", samples},
               [](Row& row) { measure(row, torusSurface(100000)); });
    }
    return run(argc, argv);
}
