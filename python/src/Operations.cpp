#include "Geometry.h"
#include "Module.h"
#include "Work.h"

#include <Korvane/Geometry.h>
#include <TessaryMesh/Check.h>
#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

#include <pybind11/stl.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

namespace TessaryPython {
namespace {

using TessaryMesh::Carry;
using TessaryMesh::Concave;
using TessaryMesh::IndexArray;
using ObjectPtr = Geometry::ObjectPtr;

Carry toCarry(const py::object& names)
{
    if (names.is_none())
        return Carry::all();
    return Carry(*toHost(py::cast<py::list>(names)));
}

// Of an unchecked mesh one that is checked, so that a second operation need not check again.
template <class Work>
auto operate(const Geometry& geometry, const Call& call, std::size_t effort, Work work)
{
    auto checked = std::make_shared<Geometry>(geometry);
    auto result = compute(call, effort, [checked, work = std::move(work)](Stage& stage) mutable {
        checked->requireValid();
        return work(*checked, stage);
    });
    geometry.learnFrom(*checked);
    return result;
}

std::size_t effortOf(const Geometry& geometry)
{
    return geometry.pointCount() + geometry.cornerCount();
}

py::object orNone(const IndexArray& indices, std::size_t width = 1)
{
    return indices ? py::object(toNumpy<uint>(indices, width)) : py::none();
}

py::list toPython(const std::vector<std::string>& lines)
{
    py::list list;
    for (const std::string& line : lines)
        list.append(TessaryPython::toPython(Pelon::String(line)));
    return list;
}

// geometry, parents: face, corner, triangle; warnings
py::tuple toPython(const Geometry& source, const TessaryMesh::Result& result)
{
    const TessaryMesh::ParentMaps& parents = result.parents;
    return py::make_tuple(
        Geometry(result.mesh, source.resultTrust()),
        py::make_tuple(orNone(parents.face), orNone(parents.corner), orNone(parents.triangle)),
        toPython(result.warnings));
}

Concave toConcave(bool splits)
{
    return splits ? Concave::Split : Concave::Fan;
}

// Which faces the triangles leave, in front of the other warnings.
template <class AnyResult>
AnyResult withConcave(const Geometry& mesh, Concave concave, AnyResult result)
{
    TessaryMesh::ConcaveFaces found = *mesh.concaveFaces();
    found.concave.advice = "split them with concave=\"split\"";
    std::vector<std::string>& warnings = result.warnings;
    if (found.selfCrossing.count > 0)
        warnings.insert(warnings.begin(), found.selfCrossing.line());
    if (found.concave.count > 0 && concave == Concave::Fan)
        warnings.insert(warnings.begin(), found.concave.line());
    return result;
}

py::tuple triangulate(const Geometry& mesh, bool splitsConcave, const py::object& properties,
                      unsigned threads, const py::object& progress)
{
    const auto result =
        operate(mesh, {threads, progress}, effortOf(mesh),
                [carry = toCarry(properties), concave = toConcave(splitsConcave)](
                    const Geometry& checked, Stage&) {
                    return withConcave(checked, concave,
                                       TessaryMesh::triangulate(*checked.object(), carry, concave));
                });
    return toPython(mesh, result);
}

TessaryMesh::QuadOptions quadOptions(const std::optional<double>& creaseAngle,
                                     const py::str& creaseProperty, float edgeWeight,
                                     const std::array<float, 3>& innerWeights, float gap,
                                     bool splitEdges, bool splitsConcave)
{
    TessaryMesh::QuadOptions options;
    options.creaseAngle = creaseAngle;
    options.creaseProperty = toHost(creaseProperty).view();
    options.edgeWeight = edgeWeight;
    std::copy(innerWeights.begin(), innerWeights.end(), options.innerWeights);
    options.gap = gap;
    options.splitEdges = splitEdges;
    options.concave = toConcave(splitsConcave);
    return options;
}

// as of triangulate; edges, creased edges, split edges
py::tuple quads(const Geometry& mesh, const std::optional<double>& creaseAngle,
                const py::str& creaseProperty, float edgeWeight,
                const std::array<float, 3>& innerWeights, float gap, bool splitEdges,
                bool splitsConcave, const py::object& properties, unsigned threads,
                const py::object& progress)
{
    const auto result =
        operate(mesh, {threads, progress}, 4 * effortOf(mesh),
                [options = quadOptions(creaseAngle, creaseProperty, edgeWeight, innerWeights, gap,
                                       splitEdges, splitsConcave),
                 carry = toCarry(properties)](const Geometry& checked, Stage&) {
                    return withConcave(checked, options.concave,
                                       TessaryMesh::makeQuads(*checked.object(), options, carry));
                });
    return toPython(mesh, result) +
           py::make_tuple(result.edges, result.creasedEdges, result.splitEdges);
}

// Infinite where it is too large, which the library refuses.
float toFloat(double length)
{
    constexpr double kMost = std::numeric_limits<float>::max();
    return length > kMost ? std::numeric_limits<float>::infinity() : static_cast<float>(length);
}

using TessaryMesh::SampledSurface;

struct Sampled {
    TessaryMesh::Result result;
    float distance;
};

// Two elements of work for each candidate, of which there are about 11 to a sample of pi d^2 / 5.
std::size_t candidateEffort(double area, double distance, std::uint64_t count)
{
    constexpr double kMost = 1e15;
    const double samples = count > 0 ? 4.0 * static_cast<double>(count)  // a search tries several
                                     : 1.6 * area / (distance * distance);
    return static_cast<std::size_t>(samples < kMost ? 22 * samples : kMost);
}

// What is sampled: the mesh, or one in its place whose concave faces are split, and its surface.
struct Ground {
    TessaryMesh::Result fans;
    SampledSurface surface;
    double unit;  // of the distance
};

Ground groundOf(const Geometry& mesh, Concave concave, const Carry& carry, bool isShare)
{
    const Korvane::Object& object = *mesh.object();
    TessaryMesh::Result fans =
        concave == Concave::Split
            ? TessaryMesh::splitConcaveFaces(object, carry)
            : TessaryMesh::Result{Pelon::makeMutable<Korvane::Object>(object), {}, {}};
    SampledSurface surface(*fans.mesh);
    const double unit = isShare ? double{surface.boundingRadius()} : 1.0;
    return {withConcave(mesh, concave, std::move(fans)), std::move(surface), unit};
}

Sampled sampleSurface(const Geometry& mesh, const Call& call, const Ground& ground, double distance,
                      std::uint64_t count, uint seed, const Carry& carry)
{
    const SampledSurface& surface = ground.surface;
    const std::size_t effort = effortOf(mesh) + candidateEffort(surface.area(), distance, count);
    return compute(call, effort, [=](Stage& stage) {
        stage.next(80);
        const auto samples =
            count > 0 ? surface.sampleCount(count, seed) : surface.sample(toFloat(distance), seed);
        stage.next(100);
        auto cloud = TessaryMesh::makeSampleCloud(*ground.fans.mesh, samples, carry, true,
                                                  ground.fans.parents);
        cloud.warnings.insert(cloud.warnings.begin(), ground.fans.warnings.begin(),
                              ground.fans.warnings.end());
        return Sampled{std::move(cloud), samples.distance};
    });
}

// As of triangulate; distance, area, share of the distance that rounding may amount to. The distance is
// a share of the radius where isShare, and of no meaning with a count.
py::tuple sample(const Geometry& mesh, double distance, bool isShare, std::uint64_t count,
                 uint seed, bool splitsConcave, const py::object& properties, unsigned threads,
                 const py::object& progress)
{
    const Carry carry = toCarry(properties);
    const Ground ground = operate(
        mesh, {threads, py::none()}, effortOf(mesh),
        [carry, isShare, concave = toConcave(splitsConcave)](const Geometry& checked, Stage&) {
            return groundOf(checked, concave, carry, isShare);
        });
    const SampledSurface& surface = ground.surface;
    const Sampled sampled = sampleSurface(mesh, {threads, progress}, ground, distance * ground.unit,
                                          count, seed, carry);
    return toPython(mesh, sampled.result) +
           py::make_tuple(sampled.distance, surface.area(),
                          static_cast<float>(surface.roundingShare(sampled.distance)));
}

// rows of 3 points, 2 corners and 3 triangles; offsets and corners of the dual; faces
py::tuple adjacency(const Geometry& mesh, bool splitEdges, bool withEdges, unsigned threads,
                    const py::object& progress)
{
    const auto tables = operate(
        mesh, {threads, progress}, 4 * effortOf(mesh), [=](const Geometry& checked, Stage&) {
            return TessaryMesh::makeTriangleTables(*checked.object(), {splitEdges, withEdges});
        });
    return py::make_tuple(orNone(tables.faceVertex, 3), orNone(tables.triEdges, 2),
                          orNone(tables.adjacentTri, 3), orNone(tables.dualFaceOffset),
                          orNone(tables.dualFaceVertex), orNone(tables.face));
}

// The cells of a box around the points: no fewer than the mesh touches.
std::size_t cellsAround(const Geometry& mesh, double cellSize)
{
    using Korvane::Math::float3;
    const auto points =
        Korvane::Geometry::dataArray<float3>(*mesh.object(), Korvane::Geometry::sPointPosition);
    if (effortOf(mesh) >= kFewElements || !points || points->empty())
        return kFewElements;
    float3 low = (*points)[0], high = low;
    for (const float3& p : *points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    const auto along = [cellSize](double from, double to) { return (to - from) / cellSize + 2; };
    const double cells = along(low.x, high.x) * along(low.y, high.y) * along(low.z, high.z);
    return cells < 1e15 ? static_cast<std::size_t>(cells) : kUnknownEffort / 2;
}

py::array_t<std::int32_t> voxels(const Geometry& mesh, double cellSize, unsigned threads,
                                 const py::object& progress)
{
    using TessaryMesh::Cell;
    auto cells = operate(mesh, {threads, progress}, effortOf(mesh) + cellsAround(mesh, cellSize),
                         [cellSize](const Geometry& checked, Stage&) {
                             return TessaryMesh::touchedCells(*checked.object(), cellSize);
                         });
    auto* const kept = new Pelon::Array<Cell>(std::move(cells));
    const py::capsule base(kept, [](void* held) { delete static_cast<Pelon::Array<Cell>*>(held); });
    static_assert(sizeof(Cell) == 3 * sizeof(std::int32_t));
    return py::array_t<std::int32_t>({static_cast<py::ssize_t>(kept->size()), py::ssize_t{3}},
                                     reinterpret_cast<const std::int32_t*>(kept->data()), base);
}

Geometry cubes(const py::array_t<std::int32_t, py::array::c_style>& cells, double cellSize,
               unsigned threads)
{
    using Korvane::Math::int3;
    const auto rows = borrow<int3>(cells, "cells");
    auto mesh = compute({threads, py::none()}, 100 * rows->size(), [rows, cellSize](Stage&) {
        Pelon::Array<TessaryMesh::Cell> copy(rows->size());
        if (!rows->empty())
            std::memcpy(copy.data(), rows->data(), rows->size() * sizeof(int3));
        return TessaryMesh::makeCubes(copy, cellSize);
    });
    return {std::move(mesh), Geometry::Trust::Checked};
}

Geometry demoMesh(uint resolution)
{
    auto mesh = compute({0, py::none()}, 16 * std::size_t{resolution} * resolution,
                        [resolution](Stage&) { return TessaryMesh::makeDemoMesh(resolution); });
    return {std::move(mesh), Geometry::Trust::Checked};
}

py::object smallestDistance(const py::array& points, double guess, unsigned threads)
{
    const auto positions = borrow<Korvane::Math::float3>(points, "points");
    const auto found = compute({threads, py::none()}, 10 * positions->size(), [=](Stage&) {
        return TessaryMesh::smallestDistance(*positions, guess);
    });
    return found ? py::object(py::float_(*found)) : py::none();
}

py::str cornerDeclaration(const Geometry& mesh, const py::str& name)
{
    return TessaryPython::toPython(Pelon::String(
        TessaryMesh::plyCornerDeclaration(*mesh.object(), std::string(toHost(name).view()))));
}

py::list carriedNames(const Geometry& mesh)
{
    return TessaryPython::toPython(TessaryMesh::carriedPropertyNames(*mesh.object()));
}

}  // namespace

void defineOperations(py::module_& module)
{
    using py::arg;
    const auto threads = arg("threads");
    const auto progress = arg("progress");
    module.def("triangulate", &triangulate, arg("mesh"), arg("splits_concave"), arg("properties"),
               threads, progress);
    module.def("quads", &quads, arg("mesh"), arg("crease_angle"), arg("crease_property"),
               arg("edge_weight"), arg("inner_weights"), arg("gap"), arg("split_edges"),
               arg("splits_concave"), arg("properties"), threads, progress);
    module.def("sample", &sample, arg("mesh"), arg("distance"), arg("is_share"), arg("count"),
               arg("seed"), arg("splits_concave"), arg("properties"), threads, progress);
    module.def("adjacency", &adjacency, arg("mesh"), arg("split_edges"), arg("with_edges"), threads,
               progress);
    module.def("voxels", &voxels, arg("mesh"), arg("cell_size"), threads, progress);
    module.def("cubes", &cubes, arg("cells"), arg("cell_size"), threads);
    module.def("demo_mesh", &demoMesh, arg("resolution"));
    module.def("smallest_distance", &smallestDistance, arg("points"), arg("guess"), threads);
    module.def("corner_declaration", &cornerDeclaration, arg("mesh"), arg("name"));
    module.def("carried_names", &carriedNames, arg("mesh"));
}

}  // namespace TessaryPython
