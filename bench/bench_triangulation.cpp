// Triangulation against plain loops that know their sizes: of the bare arrays on one thread, of a
// whole mesh with properties on two.

#include "support/FileMeshes.h"
#include "support/Inputs.h"
#include "support/Measure.h"

#include <Korvane/Geometry.h>
#include <Tessary/Triangulation.h>

#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <utility>

using namespace Bench;
using Korvane::Object;
using Korvane::Math::float2;
using Korvane::Math::float3;
using Pelon::makeMutable;
using Pelon::MutablePtr;
using Pelon::Ptr;
using Pelon::String;
namespace Geometry = Korvane::Geometry;

namespace {

enum class Memory { Fresh, Touched };

struct Topology {
    Array<uint> offset;
    Array<uint> corners;
};

std::size_t triangleCountOf(const Polygons& mesh)
{
    return mesh.faceVertex.size() - std::size_t{2} * mesh.faceCount();
}

Topology sizedTopology(const Polygons& mesh)
{
    const std::size_t triangles = triangleCountOf(mesh);
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

// Into memory that was touched before, or into arrays made in the run.
Contender topologyContender(std::optional<Topology>& output, Memory memory,
                            const std::function<void()>& run, const std::function<void()>& renew)
{
    Contender contender;
    contender.hash = [&output] { return hashOfTopology(*output); };
    contender.release = [&output, renew] {
        output.reset();
        renew();
    };
    contender.run = run;
    if (memory == Memory::Touched)
        return contender;
    contender.run = [run, renew] {
        renew();
        run();
    };
    contender.clear = [&output] { output.reset(); };
    return contender;
}

void bareArrays(Row& row, const Polygons& mesh, Memory memory)
{
    std::optional<Topology> ours{Topology()};
    std::optional<Topology> plain;  // made when first run: without the loop, it takes no memory
    const Contender kernel = topologyContender(
        ours, memory,
        [&] {
            Tessary::computeTriangulation(mesh.faceOffset, mesh.faceVertex, ours->offset,
                                          ours->corners);
        },
        [&] { ours.emplace(); });
    const Contender loop = topologyContender(
        plain, memory,
        [&] {
            if (!plain)
                plain = sizedTopology(mesh);
            splitFaces(mesh, 0, mesh.faceCount(), *plain);
        },
        [&] { plain = sizedTopology(mesh); });
    const std::uint64_t bytes =
        4 * (mesh.faceOffset.size() + mesh.faceVertex.size() + 4 * triangleCountOf(mesh) + 1);
    row.compare({mesh.faceCount(), "polygon", bytes}, kernel,
                {"plain loop", loop, "serial, into arrays of the right size"});
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
    if (mesh.faceCount() < kWorthAThread)
        return splitMesh(mesh, in, 0, mesh.faceCount(), out);
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

// Handed to the host as the library does it: what a small mesh costs most.
MutablePtr<Object> objectOf(TriangleMesh mesh, Ptr<Array<float3>> normals)
{
    MutablePtr<Object> object =
        Geometry::makeMesh(std::move(mesh.attributes.points), std::move(mesh.topology.offset),
                           std::move(mesh.topology.corners));
    Geometry::addDataGeoProperty<float3>(*object, "normal", Geometry::sPointComp,
                                         std::move(normals));
    Geometry::addDataGeoProperty<float2>(*object, "uv", Geometry::sFaceVertexComp,
                                         makeMutable<Array<float2>>(std::move(mesh.attributes.uv)));
    Geometry::addDataGeoProperty<int>(*object, "id", Geometry::sFaceComp,
                                      makeMutable<Array<int>>(std::move(mesh.attributes.id)));
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

// A mesh with properties, all made when first asked for.
class Case {
public:
    explicit Case(Polygons mesh) : m_mesh(std::move(mesh)) {}

    const Polygons& mesh() const { return m_mesh; }

    const Attributes& attributes()
    {
        if (!m_attributes)
            m_attributes = attributesOf(m_mesh);
        return *m_attributes;
    }

    const Object& object()
    {
        if (!m_object)
            m_object = objectOf(m_mesh, attributes());
        return *m_object;
    }

    std::size_t triangleCount() const { return triangleCountOf(m_mesh); }

    // Bytes of UVs and ids, read and written, and of the offsets that lead to them.
    std::uint64_t propertyBytes() const
    {
        return 8 * m_mesh.faceVertex.size() + 8 * m_mesh.faceOffset.size() + 28 * triangleCount();
    }

private:
    Polygons m_mesh;
    std::optional<Attributes> m_attributes;
    MutablePtr<Object> m_object;
};

const Array<String>& propertyNames()
{
    static const Array<String> names{"normal", "uv", "id"};
    return names;
}

void compareWhole(Row& row, Case& input, MutablePtr<Object>& target, const Contender& loop,
                  const char* remark)
{
    const Polygons& mesh = input.mesh();
    Contender kernel;
    kernel.run = [&] {
        target = Korvane::createObject();
        Tessary::triangulatePolyMesh(input.object(), propertyNames(), *target);
    };
    kernel.clear = [&] { target = nullptr; };
    kernel.hash = [&] { return hashOfObject(*target); };
    input.object();
    const std::uint64_t bytes = 4 * mesh.faceVertex.size() + std::size_t{24} * mesh.pointCount +
                                16 * input.triangleCount() + input.propertyBytes();
    row.compare({mesh.faceCount(), "polygon", bytes}, kernel, {"plain loop", loop, remark});
}

void wholeMesh(Row& row, Case& input)
{
    MutablePtr<Object> target, plain;
    Contender loop;
    loop.run = [&] {
        TriangleMesh made = sizedMesh(input.mesh());
        splitMeshOnTwoThreads(input.mesh(), input.attributes(), made);
        plain = objectOf(std::move(made), Geometry::dataArray<float3>(input.object(), "normal"));
    };
    loop.clear = [&] { plain = nullptr; };
    loop.hash = [&] { return hashOfObject(*plain); };
    compareWhole(
        row, input, target, loop,
        "on two threads from 50 000 on, into arrays of the right size, made a mesh object");
}

// The library's own memory is fresh here, too.
void wholeMeshBesideTouchedArrays(Row& row, Case& input)
{
    MutablePtr<Object> target;
    std::optional<TriangleMesh> plain;
    Contender loop;
    loop.run = [&] {
        if (!plain)
            plain = sizedMesh(input.mesh());
        splitMeshOnTwoThreads(input.mesh(), input.attributes(), *plain);
    };
    loop.hash = [&] { return hashOfMesh(*plain); };
    compareWhole(row, input, target, loop,
                 "on two threads from 50 000 on, into arrays of the right size");
}

void propertiesAlone(Row& row, Case& input)
{
    const Object& source = input.object();
    MutablePtr<Object> target;
    Contender kernel;
    kernel.run = [&] {
        Tessary::copyPropertiesToTriangulatedMesh(source, propertyNames(), *target);
    };
    kernel.prepare = [&] {
        target = Korvane::createObject();
        Tessary::triangulatePolyMesh(source, {}, *target);
    };
    kernel.clear = [&] { target = nullptr; };
    kernel.hash = [&] { return hashOfObject(*target); };
    row.measure({input.mesh().faceCount(), "polygon", input.propertyBytes(),
                 "peak memory includes the triangles that were there"},
                kernel);
}

void add(const std::string& name, std::uint64_t size, const std::function<Polygons()>& make)
{
    static Latest<Case> latest;
    const auto input = [=]() -> Case& {
        return latest.get(name + std::to_string(size), [&] { return Case(make()); });
    };
    for (const Memory memory : {Memory::Fresh, Memory::Touched}) {
        const std::string full = name + (memory == Memory::Fresh ? ", fresh" : ", touched");
        addParallelRow({"computeTriangulation", full, size},
                       [=](Row& row) { bareArrays(row, input().mesh(), memory); });
    }
    addParallelRow({"triangulatePolyMesh", name + ", fresh", size},
                   [=](Row& row) { wholeMesh(row, input()); });
    addRow({"triangulatePolyMesh", name + ", touched", size},
           [=](Row& row) { wholeMeshBesideTouchedArrays(row, input()); });
    addParallelRow({"copyPropertiesToTriangulatedMesh", name, size},
                   [=](Row& row) { propertiesAlone(row, input()); });
}

}  // namespace

int main(int argc, char** argv)
{
    for (const uint size : kSizes) {
        const uint side = static_cast<uint>(std::lround(std::sqrt(size)));
        add("torus of quads", size, [side] { return quadTorus(side); });
        if (size >= 100000)
            add("mixed polygons", size, [size] { return mixedPolygons(size); });
    }
    add("demo mesh", 1000000, [] { return demoPolygons(512); });
    if (hasBunny())
        add("bunny", 70000, bunny);
    return run(argc, argv);
}
