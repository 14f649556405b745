// Dual tables against a plain counting sort with a cursor per point.

#include "support/Inputs.h"
#include "support/Measure.h"

#include <Tessary/Topology.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace Bench;

namespace {

constexpr uint kNone = 0xFFFFFFFF;

struct Dual {
    Array<uint> offset;
    Array<uint> corners;

    explicit Dual(const Triangles& mesh)
        : offset(std::size_t{mesh.pointCount} + 1), corners(mesh.faceVertex.size(), kNone)
    {}
    void prepare()
    {
        std::fill(offset.begin(), offset.end(), 0u);
        std::fill(corners.begin(), corners.end(), kNone);
    }
};

void countingSort(const Array<uint>& faceVertex, Dual& dual)
{
    for (const uint point : faceVertex)
        ++dual.offset[std::size_t{point} + 1];
    for (std::size_t i = 1; i < dual.offset.size(); ++i)
        dual.offset[i] += dual.offset[i - 1];
    std::vector<uint> cursor(dual.offset.begin(), dual.offset.end() - 1);
    for (uint corner = 0; corner < faceVertex.size(); ++corner)
        dual.corners[cursor[faceVertex[corner]]++] = corner;
}

// Prepared arrays have been written, so their memory is always touched.
void constructDual(benchmark::State& state, const Triangles& mesh)
{
    Dual dual(mesh);
    Dual sorted(mesh);
    const Contender kernel{
        [&] { Tessary::constructDualMesh(mesh.faceVertex, dual.offset, dual.corners); },
        [&] { dual.prepare(); }};
    const Contender reference{[&] { countingSort(mesh.faceVertex, sorted); },
                              [&] { sorted.prepare(); }};
    kernel.run();
    reference.run();
    const std::uint64_t bytes = 4 * (3 * mesh.faceVertex.size() + 4 * dual.offset.size());
    compare(state, kernel, reference, bytes, hashOf(dual.corners, hashOf(dual.offset)),
            hashOf(sorted.corners, hashOf(sorted.offset)));
}

void add(const std::string& name, Triangles mesh)
{
    benchmark::RegisterBenchmark(
        ("constructDualMesh/" + name).c_str(),
        [mesh = std::move(mesh)](benchmark::State& state) { constructDual(state, mesh); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->MinTime(0.5);
}

}  // namespace

int main(int argc, char** argv)
{
    for (const uint triangles : {10u, 1000u, 1000000u, 8000000u})
        for (const PointOrder order : {PointOrder::Natural, PointOrder::Random})
            add("torus " + std::to_string(triangles) +
                    (order == PointOrder::Natural ? " natural" : " random"),
                triangleTorus(triangles, order));
    add("fan 200000", triangleFan(200000));
    return run(argc, argv);
}
