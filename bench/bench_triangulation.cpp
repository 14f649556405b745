// Triangulation against plain loops that know their sizes: of the bare arrays on one thread, of a
// whole mesh with properties on two.

#include "support/Inputs.h"
#include "support/Measure.h"

#include <Korvane/Geometry.h>
#include <Tessary/Triangulation.h>

#include <optional>
#include <string>
#include <thread>

using namespace Bench;
using Korvane::Object;
using Korvane::Math::float2;
using Korvane::Math::float3;
using Pelon::makeMutable;
using Pelon::MutablePtr;
using Pelon::String;
namespace Geometry = Korvane::Geometry;

namespace {

enum class Memory { Fresh, Touched };

struct Topology {
    Array<uint> offset;
    Array<uint> corners;
};

Topology sizedTopology(const Polygons& mesh)
{
    const std::size_t triangles = mesh.faceVertex.size() - std::size_t{2} * mesh.faceCount();
    return {Array<uint>(triangles + 1), Array<uint>(3 * triangles)};
}

// The plain loop over faces [begin, end), whose first triangle is `t`.
void splitFaces(const Polygons& mesh, uint begin, uint end, Topology& out)
{
    std::size_t t = mesh.faceOffset[begin] - std::size_t{2} * begin;
    for (uint f = begin; f < end; ++f)
        for (std::size_t c = std::size_t{mesh.faceOffset[f]} + 2; c < mesh.faceOffset[f + 1]; ++c) {
            out.offset[t] = static_cast<uint>(3 * t);
            out.corners[3 * t] = mesh.faceVertex[mesh.faceOffset[f]];
            out.corners[3 * t + 1] = mesh.faceVertex[c - 1];
            out.corners[3 * t + 2] = mesh.faceVertex[c];
            ++t;
        }
    out.offset[t] = static_cast<uint>(3 * t);
}

std::uint64_t hashOfTopology(const Topology& topology)
{
    return hashOf(topology.corners, hashOf(topology.offset));
}

void bareArrays(benchmark::State& state, const Polygons& mesh, Memory memory)
{
    const bool fresh = memory == Memory::Fresh;
    std::optional<Topology> ours{Topology()};
    std::optional<Topology> plain{sizedTopology(mesh)};
    const Contender kernel{[&] {
                               if (fresh)
                                   ours.emplace();
                               Tessary::computeTriangulation(mesh.faceOffset, mesh.faceVertex,
                                                             ours->offset, ours->corners);
                           },
                           [] {},
                           [&] {
                               if (fresh)
                                   ours.reset();
                           }};
    const Contender reference{[&] {
                                  if (fresh)
                                      plain = sizedTopology(mesh);
                                  splitFaces(mesh, 0, mesh.faceCount(), *plain);
                              },
                              [] {},
                              [&] {
                                  if (fresh)
                                      plain.reset();
                              }};
    kernel.run();
    reference.run();
    const std::uint64_t bytes = 4 * (mesh.faceOffset.size() + mesh.faceVertex.size() +
                                     plain->offset.size() + plain->corners.size());
    const std::uint64_t hashes[] = {hashOfTopology(*ours), hashOfTopology(*plain)};
    ours.emplace(fresh ? Topology() : std::move(*ours));
    compare(state, kernel, reference, bytes, hashes[0], hashes[1]);
}

struct Attributes {
    Array<float3> points;
    Array<float2> uv;
    Array<int> id;
};

struct TriangleMesh {
    Topology topology;
    Attributes attributes;
};

Attributes attributesOf(const Polygons& mesh)
{
    Attributes out{Array<float3>(mesh.pointCount), Array<float2>(mesh.faceVertex.size()),
                   Array<int>(mesh.faceCount())};
    const Array<float> values = randomFloats(std::size_t{3} * mesh.pointCount, 3);
    for (uint p = 0; p < mesh.pointCount; ++p)
        out.points[p] = {values[3 * p], values[3 * p + 1], values[3 * p + 2]};
    for (std::size_t c = 0; c < out.uv.size(); ++c)
        out.uv[c] = {values[c % values.size()], values[(7 * c) % values.size()]};
    for (uint f = 0; f < mesh.faceCount(); ++f)
        out.id[f] = static_cast<int>(f);
    return out;
}

// The same bytes as the library's: topology, a copy of the points, UVs and ids. Point normals are
// shared by the library and cost neither of the two anything.
void splitMesh(const Polygons& mesh, const Attributes& in, uint begin, uint end, TriangleMesh& out)
{
    splitFaces(mesh, begin, end, out.topology);
    std::size_t t = mesh.faceOffset[begin] - std::size_t{2} * begin;
    for (uint f = begin; f < end; ++f)
        for (std::size_t c = std::size_t{mesh.faceOffset[f]} + 2; c < mesh.faceOffset[f + 1]; ++c) {
            out.attributes.uv[3 * t] = in.uv[mesh.faceOffset[f]];
            out.attributes.uv[3 * t + 1] = in.uv[c - 1];
            out.attributes.uv[3 * t + 2] = in.uv[c];
            out.attributes.id[t] = in.id[f];
            ++t;
        }
    const std::size_t pointBegin = std::size_t{mesh.pointCount} * begin / mesh.faceCount();
    const std::size_t pointEnd = std::size_t{mesh.pointCount} * end / mesh.faceCount();
    std::copy(in.points.begin() + pointBegin, in.points.begin() + pointEnd,
              out.attributes.points.begin() + pointBegin);
}

void splitMeshOnTwoThreads(const Polygons& mesh, const Attributes& in, TriangleMesh& out)
{
    const uint half = mesh.faceCount() / 2;
    std::thread other([&] { splitMesh(mesh, in, half, mesh.faceCount(), out); });
    splitMesh(mesh, in, 0, half, out);
    other.join();
}

TriangleMesh sizedMesh(const Polygons& mesh)
{
    Topology topology = sizedTopology(mesh);
    const std::size_t corners = topology.corners.size();
    return {std::move(topology),
            {Array<float3>(mesh.pointCount), Array<float2>(corners), Array<int>(corners / 3)}};
}

MutablePtr<Object> objectOf(const Polygons& mesh, const Attributes& in)
{
    MutablePtr<Object> object = Geometry::makeMesh(in.points, mesh.faceOffset, mesh.faceVertex);
    Geometry::addDataGeoProperty<float3>(*object, "normal", Geometry::sPointComp,
                                         makeMutable<Array<float3>>(in.points));
    Geometry::addDataGeoProperty<float2>(*object, "uv", Geometry::sFaceVertexComp,
                                         makeMutable<Array<float2>>(in.uv));
    Geometry::addDataGeoProperty<int>(*object, "id", Geometry::sFaceComp,
                                      makeMutable<Array<int>>(in.id));
    return object;
}

std::uint64_t hashOfMesh(const TriangleMesh& mesh)
{
    return hashOf(
        mesh.attributes.id,
        hashOf(mesh.attributes.uv, hashOf(mesh.attributes.points, hashOfTopology(mesh.topology))));
}

std::uint64_t hashOfObject(const Object& mesh)
{
    std::uint64_t hash = hashOf(*Geometry::dataArray<uint>(mesh, Geometry::sFaceOffset));
    hash = hashOf(*Geometry::dataArray<uint>(mesh, Geometry::sFaceVertex), hash);
    hash = hashOf(*Geometry::dataArray<float3>(mesh, Geometry::sPointPosition), hash);
    hash = hashOf(*Geometry::dataArray<float2>(mesh, "uv"), hash);
    return hashOf(*Geometry::dataArray<int>(mesh, "id"), hash);
}

// The library's arrays are always new; `memory` says what the plain loop writes into.
void wholeMesh(benchmark::State& state, const Polygons& mesh, Memory memory)
{
    const Attributes attributes = attributesOf(mesh);
    const MutablePtr<Object> source = objectOf(mesh, attributes);
    const Array<String> names{"normal", "uv", "id"};
    MutablePtr<Object> target;
    std::optional<TriangleMesh> plain{sizedMesh(mesh)};
    const Contender kernel{[&] {
                               target = Korvane::createObject();
                               Tessary::triangulatePolyMesh(*source, names, *target);
                           },
                           [] {}, [&] { target = nullptr; }};
    const Contender reference{[&] {
                                  if (memory == Memory::Fresh)
                                      plain = sizedMesh(mesh);
                                  splitMeshOnTwoThreads(mesh, attributes, *plain);
                              },
                              [] {},
                              [&] {
                                  if (memory == Memory::Fresh)
                                      plain.reset();
                              }};
    kernel.run();
    reference.run();
    const std::size_t triangles = plain->attributes.id.size();
    const std::uint64_t bytes = 4 * (mesh.faceOffset.size() + mesh.faceVertex.size() * 3) +
                                4 * mesh.faceCount() + 24 * mesh.pointCount + 44 * triangles;
    const std::uint64_t hashes[] = {hashOfObject(*target), hashOfMesh(*plain)};
    compare(state, kernel, reference, bytes, hashes[0], hashes[1]);
}

void add(const std::string& name, const Polygons& mesh)
{
    for (const Memory memory : {Memory::Fresh, Memory::Touched}) {
        const std::string suffix =
            name + (memory == Memory::Fresh ? " fresh memory" : " touched memory");
        benchmark::RegisterBenchmark(
            ("computeTriangulation/" + suffix).c_str(),
            [mesh, memory](benchmark::State& state) { bareArrays(state, mesh, memory); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->MinTime(0.5);
        benchmark::RegisterBenchmark(
            ("triangulatePolyMesh/" + suffix).c_str(),
            [mesh, memory](benchmark::State& state) { wholeMesh(state, mesh, memory); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->MinTime(0.5);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    for (const uint side : {1u, 3u, 32u, 1000u})
        add(std::to_string(side * side) + " quads", quadTorus(side));
    add("1000000 mixed polygons", mixedPolygons(1000000));
    return run(argc, argv);
}
