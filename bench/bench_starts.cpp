// Kernels whose arrays the caller places, with inputs at several starts relative to the output: none may
// mind much. Beside the plain loops, where there are any, on the same arrays.

#include "support/Inputs.h"
#include "support/Measure.h"
#include "support/Placement.h"
#include "support/TopologyReferences.h"

#include <Tessary/Topology.h>
#include <Tessary/Triangulation.h>

#include <cmath>
#include <functional>
#include <string>
#include <utility>

using namespace Bench;

namespace {

constexpr uint kSize = 1000000;

struct Input {
    Triangles mesh = triangleTorus(kSize, PointOrder::Natural);
    Dual dual{mesh};
    Array<uint> edges;
    Polygons polygons = quadTorus(static_cast<uint>(std::lround(std::sqrt(kSize))));

    Input()
    {
        dual.prepare();
        Tessary::constructDualMesh(mesh.faceVertex, dual.offset, dual.corners);
        Tessary::computeTriEdges(mesh.faceVertex, edges);
    }
};

const Work kTriangles{kSize, "triangle"};

Contender into(Array<uint>& output, const std::function<void()>& run)
{
    Contender contender;
    contender.run = run;
    contender.hash = [&output] { return hashOf(output); };
    return contender;
}

void dual(Row& row, const Input& in, std::size_t start)
{
    Dual out(in.mesh);
    out.prepare();
    const auto corners = copyBehind(out.corners.data(), start, in.mesh.faceVertex);
    const auto building = [&out](const std::function<void()>& run) {
        Contender contender = into(out.corners, run);
        contender.prepare = [&out] { out.prepare(); };
        contender.hash = [&out] { return hashOf(out.corners, hashOf(out.offset)); };
        return contender;
    };
    row.compare(kTriangles,
                building([&] { Tessary::constructDualMesh(*corners, out.offset, out.corners); }),
                {"counting sort", building([&] { countingSortDual(*corners, out); }), "serial"});
}

void edges(Row& row, const Input& in, std::size_t start)
{
    Array<uint> out = in.edges;
    const auto corners = copyBehind(out.data(), start, in.mesh.faceVertex);
    row.compare(kTriangles, into(out, [&] { Tessary::computeTriEdges(*corners, out); }),
                {"bucket sort", into(out, [&] { countingSortEdges(*corners, out); }), "serial"});
}

void adjacency(Row& row, const Input& in, std::size_t start)
{
    Array<uint> out(in.mesh.faceVertex.size());
    const auto corners = copyBehind(out.data(), start, in.mesh.faceVertex);
    const auto dualCorners = copyBehind(out.data(), start, in.dual.corners);
    row.measure(kTriangles, into(out, [&] {
                    Tessary::populateAdjacentTri(*corners, in.dual.offset, *dualCorners, out);
                }));
}

void quads(Row& row, const Input& in, std::size_t start)
{
    const Array<bool> creases(in.mesh.faceVertex.size());
    Array<uint> out(4 * in.mesh.faceVertex.size());
    const auto corners = copyBehind(out.data(), start, in.mesh.faceVertex);
    const auto triEdges = copyBehind(out.data(), start, in.edges);
    row.measure(kTriangles, into(out, [&] {
                    Tessary::computeQuadMesh(*corners, *triEdges, creases, in.mesh.pointCount, out);
                }));
}

void quadValues(Row& row, const Input& in, std::size_t start)
{
    const Array<uint> values(in.polygons.faceCount(), 7u);
    Array<uint> out(6 * values.size());
    const auto offset = copyBehind(out.data(), start, in.polygons.faceOffset);
    const auto placed = copyBehind(out.data(), start, values);
    row.measure({kSize, "polygon"},
                into(out, [&] { Tessary::quadFaceIndexedInterpolation(*offset, *placed, out); }));
}

void triangulation(Row& row, const Input& in, std::size_t start)
{
    Array<uint> offsets(std::size_t{2} * in.polygons.faceCount() + 1);
    Array<uint> out(6 * std::size_t{in.polygons.faceCount()});
    const auto offset = copyBehind(out.data(), start, in.polygons.faceOffset);
    const auto corners = copyBehind(out.data(), start, in.polygons.faceVertex);
    row.measure({kSize, "polygon"},
                into(out, [&] { Tessary::computeTriangulation(*offset, *corners, offsets, out); }));
}

}  // namespace

int main(int argc, char** argv)
{
    constexpr std::pair<const char*, void (*)(Row&, const Input&, std::size_t)> kKernels[] = {
        {"constructDualMesh", dual},
        {"computeTriEdges", edges},
        {"populateAdjacentTri", adjacency},
        {"computeQuadMesh", quads},
        {"quadFaceIndexedInterpolation", quadValues},
        {"computeTriangulation", triangulation},
    };
    static Latest<Input> latest;
    for (const auto& [name, fill] : kKernels)
        for (const std::size_t start : kStarts)
            addRow({name, "start " + std::to_string(start), kSize}, [fill = fill, start](Row& row) {
                fill(row, latest.get("", [] { return Input(); }), start);
            });
    return run(argc, argv);
}
