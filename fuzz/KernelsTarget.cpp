// Any arrays that validation lets pass: every kernel runs on them, on one thread and, cut for several, once more
// with the same result. Beside them, contacts and points that nobody validates.

#include "fuzz/Limits.h"
#include "fuzz/Values.h"
#include "tests/trials/Hash.h"

#include <Tessary/Tessary.h>
#include <TessaryMesh/Check.h>

#include <tbb/task_arena.h>

namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using Korvane::Math::float3;
using Korvane::Math::uint3;
using Pelon::Array;
using Pelon::makeMutable;
using Pelon::MutablePtr;
using Pelon::String;
using Pelon::uint;
using Trials::hashOf;
using Trials::hashOfObject;

constexpr uint kNone = 0xFFFFFFFF;

struct Case {
    MutablePtr<Object> mesh;
    Array<String> names;
    Array<float> weights, creases;
    float distance = 0;
    uint seed = 0;
};

// Faces of 0 to 9 corners: validation refuses those of fewer than three.
MutablePtr<Object> meshOf(Fuzz::Values& values)
{
    const uint points = values.below(40), faces = values.below(40);
    Array<uint> offset{0}, vertex;
    for (uint f = 0; f < faces; ++f) {
        const uint size = values.byte() < 250 ? 3 + values.below(7) : values.below(3);
        for (uint k = 0; k < size; ++k)
            vertex.push_back(values.below(points));
        offset.push_back(static_cast<uint>(vertex.size()));
    }
    const auto positions = values.array<float3>(points, [&] { return values.vector(); });
    return makeMesh(positions, std::move(offset), std::move(vertex));
}

template <class T, class Next>
void addProperty(Object& mesh, Fuzz::Values& values, Case& c, const Next& next)
{
    const String components[] = {sPointComp, sFaceComp, sFaceVertexComp};
    const String& component = components[values.below(3)];
    const String name = ("p" + std::to_string(c.names.size())).c_str();
    const uint count = getElementCount(mesh, component);
    const auto mode = static_cast<Common::DataInterpolationMode>(values.below(3));
    c.names.push_back(name);
    if (!values.flag()) {
        addDataGeoProperty<T>(mesh, name, component,
                              makeMutable<Array<T>>(values.array<T>(count, next)), T(), mode);
        return;
    }
    const uint different = values.below(9);
    const String range = (std::string(name.c_str()) + "i").c_str();
    addRangeGeoProperty(mesh, range, component,
                        makeMutable<Array<uint>>(values.array<uint>(
                            count, [&] { return different ? values.below(different) : kNone; })));
    addDataGeoProperty<T>(mesh, name, range,
                          makeMutable<Array<T>>(values.array<T>(different, next)), T(), mode);
}

Case caseOf(Fuzz::Values& values)
{
    Case c;
    c.mesh = meshOf(values);
    addProperty<float3>(*c.mesh, values, c, [&] { return values.vector(); });
    addProperty<int>(*c.mesh, values, c, [&] { return values.raw<int>(); });
    addProperty<double>(*c.mesh, values, c, [&] { return values.raw<double>(); });
    addProperty<bool>(*c.mesh, values, c, [&] { return values.flag(); });
    const std::size_t most = std::size_t{3} * getElementCount(*c.mesh, sFaceVertexComp);
    c.weights = values.array<float>(most, [&] { return values.real(); });
    c.creases = values.array<float>(most, [&] { return values.raw<float>(); });
    c.distance = 0.25f + static_cast<float>(values.byte()) / 64;
    c.seed = values.raw<uint>();
    return c;
}

std::uint64_t sampled(const Case& c, const Object& triangles)
{
    const float area =
        Tessary::computeBoundingSphere(*dataArray<float3>(triangles, sPointPosition)).getRadius();
    if (!(area < 100))
        return 0;  // only takes longer
    const MutablePtr<Object> cloud = Korvane::createObject();
    Tessary::poissonSampleTriMesh(c.distance, c.seed, triangles, *cloud, nullptr);
    return hashOfObject(*cloud);
}

std::uint64_t cutInto(const Case& c, const Object& triMesh, const Array<uint>& corners,
                      const Array<uint>& edges)
{
    Array<uint> quads, origins, offset;
    const uint points = static_cast<uint>(getElementCount(*c.mesh, sPointComp));
    const uint next = Tessary::computeQuadMesh(corners, edges, c.creases, points, quads);
    Array<uint> ids(next);
    for (uint entry = 0; entry < quads.size(); ++entry) {
        origins.push_back(entry);
        if (quads[entry] < next && !edges.empty())
            ids[quads[entry]] = entry;
    }
    if (origins.empty())
        return hashOf(next);
    for (uint f = 0; f <= corners.size(); ++f)
        offset.push_back(4 * f);
    const auto target = makeMesh(Array<float3>(next), std::move(offset), quads);
    Tessary::interpolatePropertiesToCutMesh(*c.mesh, c.weights, c.weights, triMesh, ids, origins,
                                            *target);
    return hashOf(quads, hashOfObject(*target));
}

std::uint64_t runAll(const Case& c)
{
    const auto faceOffset = dataArray<uint>(*c.mesh, sFaceOffset);
    Array<uint> offset, corners, edges, adjacent;
    Fuzz::require(Tessary::computeTriangulation(*faceOffset, *dataArray<uint>(*c.mesh, sFaceVertex),
                                                offset, corners),
                  "faces of a valid mesh are split");
    if (offset.empty())
        offset.push_back(0);
    const auto triMesh =
        makeMesh(*dataArray<float3>(*c.mesh, sPointPosition), offset, Array<uint>(corners));
    Tessary::addDual(*triMesh, sPointComp, sFaceVertex, "dual", "dual_face_vertex",
                     "dual_face_offset");
    Tessary::addAdjacentTri(*triMesh, sFaceVertexComp, sFaceVertex, "dual", "dual_face_vertex",
                            "dual_face_offset");
    Tessary::computeTriEdges(corners, edges);
    const MutablePtr<Object> carried = Korvane::createObject();
    Fuzz::require(Tessary::triangulatePolyMesh(*c.mesh, c.names, *carried), "it is triangulated");
    Array<uint> faceValues(corners.size());
    Tessary::quadFaceIndexedInterpolation(*faceOffset, *faceOffset, faceValues);
    return hashOf(hashOfObject(*carried), hashOfObject(*triMesh), edges, faceValues,
                  cutInto(c, *triMesh, corners, edges), sampled(c, *triMesh));
}

std::uint64_t runLoose(Fuzz::Values values)
{
    Tessary::Multicollider solver;
    for (uint g = values.below(6); g > 0; --g) {
        solver.addCollider(values.real(), values.vector());
        for (uint k = values.below(4); k > 0; --k)
            solver.addContact(values.vector());
    }
    solver.maxIterations = values.byte();
    solver.preparePairs();
    solver.solve();
    Tessary::PointBins bins;
    for (uint i = values.below(50); i > 0; --i)
        bins.points.push_back(
            {i, values.byte(), values.vector(), {values.wild(3), values.wild(3), values.wild(3)}});
    bins.sortDedup();
    const auto points = values.array<float3>(values.below(60), [&] { return values.vector(); });
    Tessary::computeBoundingSphere(points);
    const bool meets = Tessary::intersect_triangle_with_axis_aligned_box(
        values.vector(), values.vector(), values.vector(), values.vector(), values.vector());
    return hashOf(bins.binCells, bins.binOffsets, meets);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::useOneThread();
    runLoose({data, size});
    Fuzz::Values values(data, size);
    const Case c = caseOf(values);
    if (TessaryMesh::validateMesh(*c.mesh).hasErrors())
        return 0;
    const std::uint64_t hash = runAll(c);
    static tbb::task_arena eight(8);
    eight.execute(
        [&] { Fuzz::require(runAll(c) == hash, "the same bits, cut for eight threads"); });
    return 0;
}
