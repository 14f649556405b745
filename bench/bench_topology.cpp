// Topology against plain ways to do the same: the dual table against a serial counting sort, edges
// against a serial bucket sort, adjacency against a two-thread walk of the shorter list, quads
// against the time of copying what they read and write. Outputs are written to touched memory.

#include "support/Inputs.h"
#include "support/Measure.h"
#include "support/TopologyReferences.h"

#include <Tessary/Topology.h>

#include <memory>
#include <string>

using namespace Bench;

namespace {

// Prepared arrays have been written, so their memory is always touched.
void constructDual(benchmark::State& state, const Triangles& mesh)
{
    Dual dual(mesh);
    Dual sorted(mesh);
    const Contender kernel{
        [&] { Tessary::constructDualMesh(mesh.faceVertex, dual.offset, dual.corners); },
        [&] { dual.prepare(); }};
    const Contender reference{[&] { countingSortDual(mesh.faceVertex, sorted); },
                              [&] { sorted.prepare(); }};
    kernel.run();
    reference.run();
    const std::uint64_t bytes = 4 * (3 * mesh.faceVertex.size() + 4 * dual.offset.size());
    compare(state, kernel, reference, bytes, hashOf(dual.corners, hashOf(dual.offset)),
            hashOf(sorted.corners, hashOf(sorted.offset)));
}

void edges(benchmark::State& state, const Triangles& mesh)
{
    Array<uint> ours;
    Array<uint> plain;
    const Contender kernel{[&] { Tessary::computeTriEdges(mesh.faceVertex, ours); }};
    const Contender reference{[&] { countingSortEdges(mesh.faceVertex, plain); }};
    kernel.run();
    reference.run();
    compare(state, kernel, reference, 4 * (mesh.faceVertex.size() + ours.size()), hashOf(ours),
            hashOf(plain));
}

void adjacency(benchmark::State& state, const Triangles& mesh)
{
    Dual dual(mesh);
    Tessary::constructDualMesh(mesh.faceVertex, dual.offset, dual.corners);
    Array<uint> ours(mesh.faceVertex.size());
    Array<uint> plain(mesh.faceVertex.size());
    const Contender kernel{
        [&] { Tessary::populateAdjacentTri(mesh.faceVertex, dual.offset, dual.corners, ours); }};
    const Contender reference{[&] { walkShorterLists(mesh.faceVertex, dual, plain); }};
    kernel.run();
    reference.run();
    compare(state, kernel, reference, 4 * (3 * ours.size() + dual.offset.size()), hashOf(ours),
            hashOf(plain));
}

// The kernel stands for its own reference: x_copy is the figure to read.
void quads(benchmark::State& state, const Triangles& mesh)
{
    Array<uint> triEdges;
    Tessary::computeTriEdges(mesh.faceVertex, triEdges);
    const Array<bool> creases(mesh.faceVertex.size());
    Array<uint> quads;
    const Contender kernel{[&] {
        Tessary::computeQuadMesh(mesh.faceVertex, triEdges, creases, mesh.pointCount, quads);
    }};
    kernel.run();
    const std::uint64_t bytes =
        4 * (mesh.faceVertex.size() + triEdges.size() + quads.size()) + creases.size();
    compare(state, kernel, kernel, bytes, hashOf(quads), hashOf(quads));
}

void add(const std::string& input, Triangles triangles)
{
    const auto mesh = std::make_shared<const Triangles>(std::move(triangles));
    const auto row = [&](const char* kernel, const auto& run) {
        benchmark::RegisterBenchmark((std::string(kernel) + "/" + input).c_str(),
                                     [mesh, run](benchmark::State& state) { run(state, *mesh); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->MinTime(0.5);
    };
    row("constructDualMesh", constructDual);
    row("computeTriEdges", edges);
    row("populateAdjacentTri", adjacency);
    row("computeQuadMesh", quads);
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
