// Topology against plain ways to do the same: the dual table against a serial counting sort, edges
// against a serial bucket sort, adjacency against a two-thread walk of the shorter list. Quads have
// to be near the time of copying what they read and write. Outputs are written to touched memory.

#include "support/FileMeshes.h"
#include "support/Inputs.h"
#include "support/Measure.h"
#include "support/TopologyReferences.h"

#include <Korvane/Geometry.h>
#include <Tessary/HalfEdge.h>
#include <Tessary/Topology.h>

#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

using namespace Bench;
using Korvane::Object;
using Pelon::MutablePtr;
using Tessary::HalfEdge;
namespace Geometry = Korvane::Geometry;

namespace {

// A mesh and the tables that kernels take from each other, made when first asked for.
class Case {
public:
    explicit Case(Triangles mesh) : m_mesh(std::move(mesh)) {}

    const Triangles& mesh() const { return m_mesh; }

    const Dual& dual()
    {
        if (!m_dual) {
            m_dual.emplace(m_mesh);
            m_dual->prepare();
            Tessary::constructDualMesh(m_mesh.faceVertex, m_dual->offset, m_dual->corners);
        }
        return *m_dual;
    }

    const Array<uint>& edges()
    {
        if (!m_edges)
            Tessary::computeTriEdges(m_mesh.faceVertex, m_edges.emplace());
        return *m_edges;
    }

private:
    Triangles m_mesh;
    std::optional<Dual> m_dual;
    std::optional<Array<uint>> m_edges;
};

Work workOn(const Case& input, std::uint64_t bytes)
{
    return {input.mesh().triangleCount(), "triangle", bytes, ""};
}

std::uint64_t hashOfDual(const Dual& dual)
{
    return hashOf(dual.corners, hashOf(dual.offset));
}

// Prepared arrays have been written, so their memory is always touched.
Contender dualContender(Dual& dual, const std::function<void()>& build)
{
    Contender contender;
    contender.run = build;
    contender.prepare = [&dual] { dual.prepare(); };
    contender.hash = [&dual] { return hashOfDual(dual); };
    contender.release = [&dual] { dual.release(); };
    return contender;
}

// Both ways write to the same arrays: their start counts.
void constructDual(Row& row, Case& input)
{
    const Array<uint>& corners = input.mesh().faceVertex;
    Dual dual(input.mesh());
    const std::uint64_t bytes = 4 * (3 * corners.size() + 4 * dual.offset.size());
    row.compare(
        workOn(input, bytes),
        dualContender(dual,
                      [&] { Tessary::constructDualMesh(corners, dual.offset, dual.corners); }),
        {"counting sort", dualContender(dual, [&] { countingSortDual(corners, dual); }),
         "serial, with the offsets as cursors; does not look whether the arrays are prepared"});
}

// An output array that kernels size themselves.
Contender arrayContender(Array<uint>& output, const std::function<void()>& run)
{
    Contender contender;
    contender.run = run;
    contender.hash = [&output] { return hashOf(output); };
    contender.release = [&output] { output = {}; };
    return contender;
}

void edges(Row& row, Case& input)
{
    const Array<uint>& corners = input.mesh().faceVertex;
    Array<uint> output;
    row.compare(workOn(input, 4 * (corners.size() + input.edges().size())),
                arrayContender(output, [&] { Tessary::computeTriEdges(corners, output); }),
                {"bucket sort", arrayContender(output, [&] { countingSortEdges(corners, output); }),
                 "serial; takes manifold meshes only"});
}

void adjacency(Row& row, Case& input)
{
    const Array<uint>& corners = input.mesh().faceVertex;
    const Dual& dual = input.dual();
    Array<uint> output;
    const auto walk = [&] {
        output.resize(corners.size());
        walkShorterLists(corners, dual, output);
    };
    const auto populate = [&] {
        Tessary::populateAdjacentTri(corners, dual.offset, dual.corners, output);
    };
    row.compare(workOn(input, 4 * (3 * corners.size() + dual.offset.size())),
                arrayContender(output, populate),
                {"shorter list", arrayContender(output, walk),
                 "on two threads from 50 000 triangles on; takes manifold meshes only"});
}

// A book's edge has as many triangles as the book: the walk of its lists would take hours.
void adjacencyAlone(Row& row, Case& input)
{
    const Array<uint>& corners = input.mesh().faceVertex;
    const Dual& dual = input.dual();
    Array<uint> ours;
    row.measure(workOn(input, 4 * (3 * corners.size() + dual.offset.size())),
                arrayContender(ours, [&] {
                    Tessary::populateAdjacentTri(corners, dual.offset, dual.corners, ours);
                }));
}

template <class Crease>
void quads(Row& row, Case& input)
{
    const Array<uint>& corners = input.mesh().faceVertex;
    const Array<uint>& triEdges = input.edges();
    Array<Crease> creases(corners.size());
    if (std::is_same_v<Crease, float>)
        creases = Array<Crease>(corners.size(), static_cast<Crease>(HUGE_VALF));
    Array<uint> output;
    const std::uint64_t bytes =
        4 * (5 * corners.size() + triEdges.size()) + sizeof(Crease) * creases.size();
    const uint firstIndex = input.mesh().pointCount;
    row.compare(
        workOn(input, bytes),
        arrayContender(
            output,
            [&] { Tessary::computeQuadMesh(corners, triEdges, creases, firstIndex, output); }),
        {"plain loops",
         arrayContender(output, [&] { smoothQuads(corners, triEdges, firstIndex, output); }),
         "serial; does not look for creases"});
}

MutablePtr<Object> objectOf(const Triangles& mesh)
{
    Array<uint> offsets(std::size_t{mesh.triangleCount()} + 1);
    for (uint t = 0; t < offsets.size(); ++t)
        offsets[t] = 3 * t;
    return Geometry::makeMesh(Array<Korvane::Math::float3>(mesh.pointCount), std::move(offsets),
                              mesh.faceVertex);
}

// Properties are made anew in each run: a second build would add to the first.
Contender objectContender(MutablePtr<Object>& mesh, const Object& source,
                          const std::function<void()>& run, const char* property)
{
    Contender contender;
    contender.run = run;
    contender.prepare = [&mesh, &source] { mesh = Pelon::makeMutable<Object>(source); };
    contender.clear = [&mesh] { mesh = nullptr; };
    contender.hash = [&mesh, property] {
        return hashOf(*Geometry::dataArray<uint>(*mesh, property));
    };
    return contender;
}

void storedDual(Row& row, Case& input)
{
    const MutablePtr<Object> source = objectOf(input.mesh());
    MutablePtr<Object> mesh;
    const auto run = [&] {
        Tessary::addDual(*mesh, Geometry::sPointComp, Geometry::sFaceVertex, "dual", "dual_corner",
                         "dual_offset");
    };
    row.measure(workOn(input, 4 * (3 * input.mesh().faceVertex.size() +
                                   std::size_t{4} * input.mesh().pointCount)),
                objectContender(mesh, *source, run, "dual_corner"));
}

void storedAdjacency(Row& row, Case& input)
{
    const MutablePtr<Object> source = objectOf(input.mesh());
    MutablePtr<Object> mesh;
    const auto run = [&] {
        Tessary::addAdjacentTri(*mesh, Geometry::sFaceVertexComp, Geometry::sFaceVertex, "dual",
                                "dual_corner", "dual_offset");
    };
    row.measure(workOn(input, 4 * (6 * input.mesh().faceVertex.size() +
                                   std::size_t{5} * input.mesh().pointCount)),
                objectContender(mesh, *source, run, "face_vertex_adjacent_tri"));
}

Contender halfEdgeContender(Array<HalfEdge>& output, const std::function<void()>& run)
{
    Contender contender;
    contender.run = run;
    contender.hash = [&output] { return hashOf(output); };
    return contender;
}

void findNeighbours(Row& row, Case& input)
{
    const Array<uint>& corners = input.mesh().faceVertex;
    const Dual& dual = input.dual();
    Array<HalfEdge> output(corners.size());
    Work work = workOn(input, 4 * (4 * corners.size() + dual.offset.size()));
    work.note = "a call for each corner, on one thread";
    row.measure(work, halfEdgeContender(output, [&] {
                    for (uint c = 0; c < output.size(); ++c)
                        output[c] = Tessary::findAdjacentHalfEdge(corners, dual.offset,
                                                                  dual.corners, {c, c / 3});
                }));
}

struct Kernel {
    const char* name;
    void (*fill)(Row&, Case&);
    bool isParallel;
};

constexpr Kernel kKernels[] = {
    {"constructDualMesh", constructDual, false},
    {"addDual", storedDual, false},
    {"computeTriEdges", edges, true},
    {"populateAdjacentTri", adjacency, true},
    {"addAdjacentTri", storedAdjacency, true},
    {"computeQuadMesh flags", quads<bool>, true},
    {"computeQuadMesh weights", quads<float>, true},
    {"findAdjacentHalfEdge", findNeighbours, false},
};

// One point's list is as long as the mesh, and looking half-edges up takes time quadratic in it.
constexpr Kernel kFanKernels[] = {
    {"constructDualMesh", constructDual, false},
    {"computeTriEdges", edges, true},
    {"populateAdjacentTri", adjacency, true},
    {"computeQuadMesh flags", quads<bool>, true},
};

constexpr Kernel kBookKernels[] = {
    {"constructDualMesh", constructDual, false},
    {"populateAdjacentTri", adjacencyAlone, true},
};

template <std::size_t N>
void add(const std::string& name, std::uint64_t size, const std::function<Triangles()>& make,
         const Kernel (&kernels)[N])
{
    static Latest<Case> latest;
    for (const Kernel& kernel : kernels) {
        const auto fill = [=](Row& row) {
            kernel.fill(row, latest.get(name + std::to_string(size), [&] { return Case(make()); }));
        };
        const RowName row{kernel.name, name, size};
        if (kernel.isParallel)
            addParallelRow(row, fill);
        else
            addRow(row, fill);
    }
}

std::size_t fanCorners(const Polygons& mesh)
{
    return 3 * (mesh.faceVertex.size() - std::size_t{2} * mesh.faceCount());
}

void polyToTriEdges(Row& row, const Polygons& mesh)
{
    Array<HalfEdge> output(mesh.faceVertex.size());
    const Work work{output.size(), "corner", 16 * output.size(),
                    "a call for each corner, on one thread"};
    row.measure(work, halfEdgeContender(output, [&] {
                    for (uint f = 0; f < mesh.faceCount(); ++f)
                        for (uint c = mesh.faceOffset[f]; c < mesh.faceOffset[f + 1]; ++c)
                            output[c] = Tessary::polyEdgeToTriEdge(mesh.faceOffset, {c, f});
                }));
}

void triToPolyEdges(Row& row, const Polygons& mesh)
{
    Array<HalfEdge> output(fanCorners(mesh));
    const Work work{output.size(), "corner", 16 * output.size(),
                    "a call for each corner of the triangles, on one thread"};
    row.measure(work, halfEdgeContender(output, [&] {
                    for (uint c = 0; c < output.size(); ++c)
                        output[c] = Tessary::triEdgeToPolyEdge(mesh.faceOffset, {c, c / 3});
                }));
}

void quadFaceValues(Row& row, const Polygons& mesh)
{
    const Array<uint> values(mesh.faceCount(), 7u);
    Array<uint> output(fanCorners(mesh));
    const auto repeat = [&] {
        std::size_t out = 0;
        for (uint f = 0; f < mesh.faceCount(); ++f)
            for (uint c = mesh.faceOffset[f] + 2; c < mesh.faceOffset[f + 1]; ++c, out += 3)
                output[out] = output[out + 1] = output[out + 2] = values[f];
    };
    const auto hash = [&] { return hashOf(output); };
    const auto kernel = [&] {
        Tessary::quadFaceIndexedInterpolation(mesh.faceOffset, values, output);
    };
    row.compare({output.size() / 3, "triangle", 4 * (2 * values.size() + output.size())},
                {kernel, nullptr, nullptr, hash},
                {"plain loop", {repeat, nullptr, nullptr, hash}, "serial"});
}

// Polygons of 3 to 8 corners, and the corners of their fans.
void addPolygons(std::uint64_t size)
{
    static Latest<Polygons> latest;
    const auto with = [size](void (*fill)(Row&, const Polygons&)) {
        return [size, fill](Row& row) {
            fill(row, latest.get(std::to_string(size),
                                 [&] { return mixedPolygons(static_cast<uint>(size)); }));
        };
    };
    addRow({"polyEdgeToTriEdge", "mixed polygons", size}, with(polyToTriEdges));
    if (size <= 8000000)  // a search each
        addRow({"triEdgeToPolyEdge", "mixed polygons", size}, with(triToPolyEdges));
    addParallelRow({"quadFaceIndexedInterpolation", "mixed polygons", size}, with(quadFaceValues));
}

}  // namespace

int main(int argc, char** argv)
{
    for (const uint size : kSizes) {
        add(
            "torus natural", size, [size] { return triangleTorus(size, PointOrder::Natural); },
            kKernels);
        if (size >= 100000)
            add(
                "torus random", size, [size] { return triangleTorus(size, PointOrder::Random); },
                kKernels);
        addPolygons(size);
    }
    for (const uint size : {10u, 200000u})
        add(
            "fan", size, [size] { return triangleFan(size); }, kFanKernels);
    add(
        "book", 200000, [] { return triangleBook(200000); }, kBookKernels);
    add(
        "demo mesh", 1000000, [] { return trianglesOf(demoPolygons(512)); }, kKernels);
    if (hasBunny())
        add(
            "bunny", 70000, [] { return trianglesOf(bunny()); }, kKernels);
    return run(argc, argv);
}
