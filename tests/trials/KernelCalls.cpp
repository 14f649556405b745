#include "trials/Calls.h"
#include "trials/Hash.h"

#include <Tessary/Tessary.h>
#include <TessaryMesh/Operations.h>

#include <limits>
#include <memory>
#include <stdexcept>

namespace Trials {
namespace {

using Korvane::Object;
using Korvane::Math::float3;
using Pelon::Array;
using Pelon::MutablePtr;
using Pelon::Ptr;
using Pelon::String;
using Tessary::uint;
namespace Geometry = Korvane::Geometry;

// What the kernels are called with: the demo mesh, its triangles and their tables.
struct Inputs {
    MutablePtr<Object> mesh;
    Ptr<Array<float3>> points;
    Ptr<Array<uint>> faceOffset, faceVertex;
    Array<uint> triFaceOffset, triFaceVertex, dualOffset, dualCorners, triEdges;
    Array<uint> quads, ids, origins;
    Array<float> weights, creases;
    Array<bool> flags;
    MutablePtr<Object> triMesh;
    Array<String> names;

    uint pointCount() const { return static_cast<uint>(points->size()); }
    std::size_t corners() const { return triFaceVertex.size(); }
};

void prepareTables(Inputs& in)
{
    Tessary::computeTriangulation(*in.faceOffset, *in.faceVertex, in.triFaceOffset,
                                  in.triFaceVertex);
    in.dualOffset = Array<uint>(std::size_t{in.pointCount()} + 1);
    in.dualCorners = Array<uint>(in.corners(), 0xFFFFFFFF);
    Tessary::constructDualMesh(in.triFaceVertex, in.dualOffset, in.dualCorners);
    Tessary::computeTriEdges(in.triFaceVertex, in.triEdges);
    in.weights = Array<float>(in.corners(), 1.0f / 3);
    in.creases = Array<float>(in.corners(), std::numeric_limits<float>::max());
    in.flags = Array<bool>(in.corners());
    for (std::size_t corner = 0; corner < in.corners(); corner += 5) {
        in.creases[corner] = 1;
        in.flags[corner] = true;
    }
}

// The point of every entry of the quads, and one entry that says where it lies.
void prepareCut(Inputs& in)
{
    const uint points = Tessary::computeQuadMesh(in.triFaceVertex, in.triEdges, in.flags,
                                                 in.pointCount(), in.quads);
    in.ids = Array<uint>(points);
    for (uint entry = 0; entry < in.quads.size(); ++entry) {
        in.origins.push_back(entry);
        in.ids[in.quads[entry]] = entry;
    }
    in.triMesh = Geometry::makeMesh(*in.points, in.triFaceOffset, in.triFaceVertex);
    Tessary::addDual(*in.triMesh, Geometry::sPointComp, Geometry::sFaceVertex, "dual_component",
                     "dual_face_vertex", "dual_face_offset");
}

std::shared_ptr<const Inputs> inputsOf(uint resolution)
{
    const auto in = std::make_shared<Inputs>();
    in->mesh = TessaryMesh::makeDemoMesh(resolution);
    in->points = Geometry::dataArray<float3>(*in->mesh, Geometry::sPointPosition);
    in->faceOffset = Geometry::dataArray<uint>(*in->mesh, Geometry::sFaceOffset);
    in->faceVertex = Geometry::dataArray<uint>(*in->mesh, Geometry::sFaceVertex);
    in->names = TessaryMesh::carriedPropertyNames(*in->mesh);
    prepareTables(*in);
    prepareCut(*in);
    return in;
}

std::uint64_t triangulation(const Inputs& in)
{
    Array<uint> offsets, corners;
    Tessary::computeTriangulation(*in.faceOffset, *in.faceVertex, offsets, corners);
    return hashOf(offsets, corners);
}

std::uint64_t triangulatedMesh(const Inputs& in)
{
    const MutablePtr<Object> target = Korvane::createObject();
    Tessary::triangulatePolyMesh(*in.mesh, in.names, *target);
    return hashOfObject(*target);
}

std::uint64_t copiedProperties(const Inputs& in)
{
    const MutablePtr<Object> target =
        Geometry::makeMesh(*in.points, in.triFaceOffset, in.triFaceVertex);
    Tessary::copyPropertiesToTriangulatedMesh(*in.mesh, in.names, *target);
    return hashOfObject(*target);
}

std::uint64_t triEdges(const Inputs& in)
{
    Array<uint> edges;
    Tessary::computeTriEdges(in.triFaceVertex, edges);
    return hashOf(edges);
}

std::uint64_t dualTable(const Inputs& in)
{
    Array<uint> offset(std::size_t{in.pointCount()} + 1), corners(in.corners(), 0xFFFFFFFF);
    Tessary::constructDualMesh(in.triFaceVertex, offset, corners);
    return hashOf(offset, corners);
}

std::uint64_t addedDual(const Inputs& in)
{
    const MutablePtr<Object> mesh = Geometry::makeMesh({}, in.triFaceOffset, in.triFaceVertex);
    Geometry::setElementCount(Geometry::sPointComp, in.pointCount(), *mesh);
    Tessary::addDual(*mesh, Geometry::sPointComp, Geometry::sFaceVertex, "dual", "corners",
                     "offset");
    return hashOfObject(*mesh);
}

std::uint64_t adjacency(const Inputs& in)
{
    Array<uint> adjacent;
    Tessary::populateAdjacentTri(in.triFaceVertex, in.dualOffset, in.dualCorners, adjacent);
    return hashOf(adjacent);
}

std::uint64_t addedAdjacency(const Inputs& in)
{
    const MutablePtr<Object> mesh =
        Geometry::makeMesh(*in.points, in.triFaceOffset, in.triFaceVertex);
    Tessary::addAdjacentTri(*mesh, Geometry::sFaceVertexComp, Geometry::sFaceVertex, "dual",
                            "corners", "offset");
    return hashOfObject(*mesh);
}

template <class Creases>
std::uint64_t quadMesh(const Inputs& in, const Creases& creases)
{
    Array<uint> quads;
    const uint next =
        Tessary::computeQuadMesh(in.triFaceVertex, in.triEdges, creases, in.pointCount(), quads);
    return hashOf(quads, next);
}

std::uint64_t quadFaceValues(const Inputs& in)
{
    Array<uint> values(in.corners());
    Tessary::quadFaceIndexedInterpolation(*in.faceOffset, *in.faceOffset, values);
    return hashOf(values);
}

std::uint64_t cutMesh(const Inputs& in)
{
    Array<uint> offset(in.corners() + 1);
    for (uint f = 0; f < offset.size(); ++f)
        offset[f] = 4 * f;
    const MutablePtr<Object> target =
        Geometry::makeMesh(Array<float3>(in.ids.size()), std::move(offset), in.quads);
    Tessary::interpolatePropertiesToCutMesh(*in.mesh, in.weights, in.weights, *in.triMesh, in.ids,
                                            in.origins, *target);
    return hashOfObject(*target);
}

std::uint64_t sphere(const Inputs& in)
{
    const Tessary::Sphere ball = Tessary::computeBoundingSphere(*in.points);
    return hashOf(ball.getCenter(), ball.getRadius());
}

std::uint64_t overlaps(const Inputs& in)
{
    Hash hash;
    for (std::size_t t = 0; t < in.corners() / 3; ++t) {
        const uint* const p = &in.triFaceVertex[3 * t];
        const float3* const points = in.points->data();
        const float x = points[p[0]].x;
        hash.add(Tessary::intersect_triangle_with_axis_aligned_box(
            points[p[0]], points[p[1]], points[p[2]], {x, x, x / 2}, {0.3f, 0.2f, 0.1f}));
    }
    return hash.value();
}

std::uint64_t bins(const Inputs& in)
{
    Tessary::PointBins bins;
    for (uint i = 0; i < in.pointCount(); ++i) {
        const uint x = i * 2654435761u;
        bins.points.push_back({i, 0, {}, {x % 7, x / 7 % 7, x / 49 % 7}});
    }
    bins.sortDedup();
    Hash hash;
    hash.add(bins.binOffsets);
    hash.add(bins.binCells);
    for (const Tessary::LocalPosition& point : bins.points)
        hash.add(point.id());
    return hash.value();
}

// A cancelled call leaves the cloud as it was.
std::uint64_t samples(const Inputs& in)
{
    const MutablePtr<Object> cloud = Korvane::createObject();
    try {
        Tessary::poissonSampleTriMesh(0.1f, 7, *in.triMesh, *cloud, nullptr);
    } catch (const std::runtime_error&) {
        if (!cloud->propertyNames().empty())
            throw std::logic_error("a cancelled call has changed the cloud");
        throw;
    }
    return hashOfObject(*cloud);
}

std::uint64_t contacts(const Inputs& in)
{
    Tessary::Multicollider solver;
    for (uint g = 0; g < 60 && g < in.pointCount(); ++g) {
        const float3& p = (*in.points)[g];
        solver.addCollider(g % 7 == 0 ? 0 : 1 + p.x, {p.y, p.z, p.x});
        for (uint c = 0; c < g % 4; ++c)
            solver.addContact({p.z + static_cast<float>(c), p.x, p.y});
    }
    solver.maxIterations = 100;
    solver.preparePairs();
    const bool done = solver.solve();
    return hashOf(solver.displacements, solver.pairLambdas, done);
}

std::uint64_t halfEdges(const Inputs& in)
{
    Hash hash;
    for (uint corner = 0; corner < in.corners(); ++corner) {
        const Tessary::HalfEdge edge{corner, corner / 3};
        const auto poly = Tessary::triEdgeToPolyEdge(*in.faceOffset, edge);
        const auto other =
            Tessary::findAdjacentHalfEdge(in.triFaceVertex, in.dualOffset, in.dualCorners, edge);
        hash.add(poly.faceVertex);
        hash.add(other.faceVertex);
        if (poly.faceVertex != 0xFFFFFFFF)
            hash.add(Tessary::polyEdgeToTriEdge(*in.faceOffset, poly).faceVertex);
    }
    return hash.value();
}

std::uint64_t scratch(const Inputs& in)
{
    Tessary::Scratch<float> floats(in.pointCount());
    Tessary::Scratch<double> doubles;
    try {
        floats.resize(std::size_t{2} * in.pointCount());
    } catch (...) {
        if (floats.data() || floats.size() != 0)
            throw std::logic_error("a resize that failed has left something");
        throw;
    }
    doubles.grow(in.pointCount());
    return hashOf(floats.size() + doubles.size());
}

}  // namespace

std::vector<Call> kernelCalls(uint resolution)
{
    const auto in = inputsOf(resolution);
    const auto with = [&in](std::uint64_t (*kernel)(const Inputs&)) {
        return [in, kernel] { return kernel(*in); };
    };
    return {
        {"computeTriangulation", with(triangulation)},
        {"triangulatePolyMesh", with(triangulatedMesh)},
        {"copyPropertiesToTriangulatedMesh", with(copiedProperties)},
        {"computeTriEdges", with(triEdges)},
        {"constructDualMesh", with(dualTable)},
        {"addDual", with(addedDual)},
        {"populateAdjacentTri", with(adjacency)},
        {"addAdjacentTri", with(addedAdjacency)},
        {"computeQuadMesh, weights", [in] { return quadMesh(*in, in->creases); }},
        {"computeQuadMesh, flags", [in] { return quadMesh(*in, in->flags); }},
        {"quadFaceIndexedInterpolation", with(quadFaceValues)},
        {"interpolatePropertiesToCutMesh", with(cutMesh)},
        {"computeBoundingSphere", with(sphere)},
        {"intersect_triangle_with_axis_aligned_box", with(overlaps)},
        {"PointBins::sortDedup", with(bins)},
        {"poissonSampleTriMesh", with(samples)},
        {"Multicollider", with(contacts)},
        {"half-edges", with(halfEdges)},
        {"Scratch", with(scratch)},
    };
}

}  // namespace Trials
