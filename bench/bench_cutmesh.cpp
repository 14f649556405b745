// Properties onto a cut mesh: direct ones against plain loops on two threads, an indexed one against
// the plain sequential walk that looks for each neighbour in its point's list.

#include "support/FileMeshes.h"
#include "support/Inputs.h"
#include "support/Measure.h"

#include <Korvane/Geometry.h>
#include <Tessary/Tessary.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>

using namespace Bench;
using namespace Korvane::Geometry;
using Korvane::Object;
using Korvane::Math::float2;
using Korvane::Math::float3;
using Pelon::makeMutable;
using Pelon::MutablePtr;

namespace {

constexpr uint kNone = 0xFFFFFFFF;

struct Input {
    Triangles mesh;
    Array<uint> faceOffset, dualOffset, dualCorner, ids, origins;
    Array<float> edgeWeights, triangleWeights;
    Array<float3> normals;
    Array<float2> uv;
    Array<int> id;
    MutablePtr<Object> triMesh;

    std::size_t triangles() const { return mesh.triangleCount(); }
};

Input inputOf(Triangles triangles)
{
    Input in;
    in.mesh = std::move(triangles);
    const Triangles& mesh = in.mesh;
    for (uint t = 0; t <= in.triangles(); ++t)
        in.faceOffset.push_back(3 * t);
    Array<uint> edges, quads;
    Tessary::computeTriEdges(mesh.faceVertex, edges);
    const Array<bool> creases(mesh.faceVertex.size());
    in.origins = Array<uint>(
        Tessary::computeQuadMesh(mesh.faceVertex, edges, creases, mesh.pointCount, quads));
    for (std::size_t entry = quads.size(); entry-- > 0;)
        in.origins[quads[entry]] = static_cast<uint>(entry);
    for (uint i = 0; i < in.origins.size(); ++i)
        in.ids.push_back(i);
    in.edgeWeights = randomFloats(mesh.faceVertex.size(), 1);
    in.triangleWeights = randomFloats(mesh.faceVertex.size(), 2);
    const Array<float> values = randomFloats(std::size_t{6} * in.triangles(), 3);
    for (uint p = 0; p < mesh.pointCount; ++p)
        in.normals.push_back({values[p], values[p + 1], values[p + 2]});
    for (std::size_t c = 0; c < mesh.faceVertex.size(); ++c)
        in.uv.push_back({values[2 * c], values[2 * c + 1]});
    for (uint t = 0; t < in.triangles(); ++t)
        in.id.push_back(static_cast<int>(t));
    in.triMesh = makeMesh(Array<float3>(mesh.pointCount), in.faceOffset, mesh.faceVertex);
    Tessary::addDual(*in.triMesh, sPointComp, sFaceVertex, "dual_component", "dual_face_vertex",
                     "dual_face_offset");
    in.dualOffset = *dataArray<uint>(*in.triMesh, "dual_face_offset");
    in.dualCorner = *dataArray<uint>(*in.triMesh, "dual_face_vertex");
    return in;
}

MutablePtr<Object> emptyTarget(const Input& in)
{
    MutablePtr<Object> target = Korvane::createObject();
    populateMesh(*target);
    const uint corners = static_cast<uint>(in.mesh.faceVertex.size());
    setElementCount(sPointComp, static_cast<uint>(in.ids.size()), *target);
    setElementCount(sFaceComp, corners, *target);
    setElementCount(sFaceVertexComp, 4 * corners, *target);
    return target;
}

// Makes and drops the target outside the time that is taken.
Contender kernelOn(const Input& in, const Object& source, MutablePtr<Object>& target)
{
    Contender kernel;
    kernel.run = [&in, &source, &target] {
        Tessary::interpolatePropertiesToCutMesh(source, in.triangleWeights, in.edgeWeights,
                                                *in.triMesh, in.ids, in.origins, *target);
    };
    kernel.prepare = [&in, &target] { target = emptyTarget(in); };
    kernel.clear = [&target] { target = nullptr; };
    return kernel;
}

float2 between(float t, float2 a, float2 b)
{
    return {t * a.x + (1 - t) * b.x, t * a.y + (1 - t) * b.y};
}

float2 among(const float* w, float2 a, float2 b, float2 c)
{
    return {w[0] * a.x + w[1] * b.x + w[2] * c.x, w[0] * a.y + w[1] * b.y + w[2] * c.y};
}

float3 normalAt(const Input& in, uint code)
{
    const uint c = code >> 2, first = c - c % 3;
    const auto at = [&](uint corner) { return in.normals[in.mesh.faceVertex[corner]]; };
    const auto onEdge = [&](uint start, uint end) {
        const float t = in.edgeWeights[start];
        const float3 a = at(start), b = at(end);
        return float3{t * a.x + (1 - t) * b.x, t * a.y + (1 - t) * b.y, t * a.z + (1 - t) * b.z};
    };
    switch (code & 3) {
        case 0:
            return at(c);
        case 1:
            return onEdge(c, first + (c + 1) % 3);
        case 3:
            return onEdge(first + (c + 2) % 3, c);
        default:
            break;
    }
    const float* const w = &in.triangleWeights[first];
    const float3 p = at(first), q = at(first + 1), r = at(first + 2);
    return {w[0] * p.x + w[1] * q.x + w[2] * r.x, w[0] * p.y + w[1] * q.y + w[2] * r.y,
            w[0] * p.z + w[1] * q.z + w[2] * r.z};
}

struct Direct {
    Array<float3> normals;
    Array<int> id;
    Array<float2> uv;
};

void directHalf(const Input& in, Direct& out, std::size_t half)
{
    const auto share = [half](std::size_t n) {
        return std::pair(n * half / 2, n * (half + 1) / 2);
    };
    const auto [pointBegin, pointEnd] = share(in.ids.size());
    for (std::size_t i = pointBegin; i < pointEnd; ++i)
        out.normals[i] = normalAt(in, in.origins[in.ids[i]]);
    const auto [begin, end] = share(in.triangles());
    for (std::size_t t = begin; t < end; ++t) {
        out.id[3 * t] = out.id[3 * t + 1] = out.id[3 * t + 2] = in.id[t];
        const float2* const f = &in.uv[3 * t];
        const float* const w = &in.edgeWeights[3 * t];
        const float2 e01 = between(w[0], f[0], f[1]), e12 = between(w[1], f[1], f[2]),
                     e20 = between(w[2], f[2], f[0]);
        const float2 centre = among(&in.triangleWeights[3 * t], f[0], f[1], f[2]);
        float2* const o = &out.uv[12 * t];
        o[0] = f[0], o[1] = e01, o[2] = centre, o[3] = e20;
        o[4] = f[1], o[5] = e12, o[6] = centre, o[7] = e01;
        o[8] = f[2], o[9] = e20, o[10] = centre, o[11] = e12;
    }
}

void directOnTwoThreads(const Input& in, Direct& out)
{
    if (in.triangles() < kWorthAThread) {
        directHalf(in, out, 0);
        directHalf(in, out, 1);
        return;
    }
    std::thread other([&] { directHalf(in, out, 1); });
    directHalf(in, out, 0);
    other.join();
}

std::uint64_t hashOfDirect(const Object& mesh)
{
    return hashOf(*dataArray<float3>(mesh, "normal"),
                  hashOf(*dataArray<int>(mesh, "id"), hashOf(*dataArray<float2>(mesh, "uv"))));
}

void direct(Row& row, const Input& in)
{
    const MutablePtr<Object> source =
        makeMesh(in.normals, in.faceOffset, in.mesh.faceVertex);  // positions are not looked at
    addDataGeoProperty<float3>(*source, "normal", sPointComp,
                               makeMutable<Array<float3>>(in.normals));
    addDataGeoProperty<int>(*source, "id", sFaceComp, makeMutable<Array<int>>(in.id));
    addDataGeoProperty<float2>(*source, "uv", sFaceVertexComp, makeMutable<Array<float2>>(in.uv));
    MutablePtr<Object> target;
    Contender kernel = kernelOn(in, *source, target);
    kernel.hash = [&] { return hashOfDirect(*target); };
    const std::size_t n = in.ids.size(), t = in.triangles();
    MutablePtr<Object> plain;
    Contender loop;
    loop.prepare = [&] { plain = emptyTarget(in); };
    loop.run = [&] {
        Direct out{Array<float3>(n), Array<int>(3 * t), Array<float2>(12 * t)};
        directOnTwoThreads(in, out);
        addDataGeoProperty<float3>(*plain, "normal", sPointComp,
                                   makeMutable<Array<float3>>(std::move(out.normals)));
        addDataGeoProperty<int>(*plain, "id", sFaceComp,
                                makeMutable<Array<int>>(std::move(out.id)));
        addDataGeoProperty<float2>(*plain, "uv", sFaceVertexComp,
                                   makeMutable<Array<float2>>(std::move(out.uv)));
    };
    loop.clear = [&] { plain = nullptr; };
    loop.hash = [&] { return hashOfDirect(*plain); };
    const std::uint64_t bytes = (8 * n + 12 * t + 24 * t + 12 * in.mesh.pointCount + 12 * n) +
                                (4 * t + 4 * t + 12 * t) + (24 * t + 24 * t + 96 * t);
    row.compare(
        {t, "triangle", bytes, "a property each on points, faces and corners"}, kernel,
        {"plain loop", loop,
         "on two threads from 50 000 on, into arrays of the right size, added to the mesh object"});
}

struct Indexed {
    Array<uint> indices;
    Array<float2> values;
};

// The values of the points, so that there are no seams and as many values as a plain UV map has.
Indexed indexedWalk(const Input& in)
{
    Indexed out{Array<uint>(12 * in.triangles(), kNone), in.uv};
    out.values.resize(in.mesh.pointCount);
    const auto append = [&out](float2 value) {
        out.values.push_back(value);
        return static_cast<uint>(out.values.size() - 1);
    };
    for (uint t = 0; t < in.triangles(); ++t) {
        const uint* const p = &in.mesh.faceVertex[3 * t];
        const float* const w = &in.edgeWeights[3 * t];
        const auto edge = [&](uint k) {
            const auto other = Tessary::findAdjacentHalfEdge(in.mesh.faceVertex, in.dualOffset,
                                                             in.dualCorner, {3 * t + k, t});
            const uint found =
                other.face == kNone ? kNone : out.indices[4 * std::size_t{other.faceVertex} + 1];
            return found != kNone ? found
                                  : append(between(w[k], in.uv[p[k]], in.uv[p[(k + 1) % 3]]));
        };
        const uint e01 = edge(0);
        const uint centre =
            append(among(&in.triangleWeights[3 * t], in.uv[p[0]], in.uv[p[1]], in.uv[p[2]]));
        const uint e20 = edge(2), e12 = edge(1);
        uint* slot = &out.indices[std::size_t{12} * t];
        for (const uint index :
             {p[0], e01, centre, e20, p[1], e12, centre, e01, p[2], e20, centre, e12})
            *slot++ = index;
    }
    return out;
}

MutablePtr<Object> indexedSource(const Input& in)
{
    const MutablePtr<Object> source = makeMesh(in.normals, in.faceOffset, in.mesh.faceVertex);
    Array<float2> values = in.uv;
    values.resize(in.mesh.pointCount);
    addRangeGeoProperty(*source, "uv_index", sFaceVertexComp,
                        makeMutable<Array<uint>>(in.mesh.faceVertex));
    addDataGeoProperty<float2>(*source, "uv", "uv_index",
                               makeMutable<Array<float2>>(std::move(values)));
    return source;
}

std::uint64_t hashOfIndexed(const Object& mesh)
{
    return hashOf(*getRangeGeoPropIndices(*getRangeGeoProperty(mesh, "uv_index")),
                  hashOf(*dataArray<float2>(mesh, "uv")));
}

// The plain walk would take minutes where a point has many corners.
enum class Walk { Beside, TooSlow };

void indexed(Row& row, const Input& in, Walk walk)
{
    const MutablePtr<Object> source = indexedSource(in);
    MutablePtr<Object> target;
    Contender kernel = kernelOn(in, *source, target);
    kernel.hash = [&] { return hashOfIndexed(*target); };
    MutablePtr<Object> plain;
    Contender loop;
    loop.prepare = [&] { plain = emptyTarget(in); };
    loop.run = [&] {
        Indexed out = indexedWalk(in);
        addRangeGeoProperty(*plain, "uv_index", sFaceVertexComp,
                            makeMutable<Array<uint>>(std::move(out.indices)));
        addDataGeoProperty<float2>(*plain, "uv", "uv_index",
                                   makeMutable<Array<float2>>(std::move(out.values)));
    };
    loop.clear = [&] { plain = nullptr; };
    loop.hash = [&] { return hashOfIndexed(*plain); };
    // On a closed mesh there are 1.5 edges and one inner point to a triangle.
    const std::size_t t = in.triangles();
    const std::size_t valueCount = in.mesh.pointCount + 5 * t / 2;
    const Work work{t, "triangle",
                    12 * t * 3 + 4 * in.dualOffset.size() + 24 * t + 48 * t +
                        8 * (valueCount + in.mesh.pointCount),
                    "an indexed property on corners"};
    if (walk == Walk::Beside)
        row.compare(work, kernel, {"plain walk", loop, "serial"});
    else
        row.measure(work, kernel);
}

void add(const std::string& name, std::uint64_t size, const std::function<Triangles()>& make,
         Walk walk = Walk::Beside)
{
    static Latest<Input> latest;
    const auto input = [=]() -> const Input& {
        return latest.get(name + std::to_string(size), [&] { return inputOf(make()); });
    };
    addParallelRow({"interpolatePropertiesToCutMesh direct", name, size},
                   [=](Row& row) { direct(row, input()); });
    addParallelRow({"interpolatePropertiesToCutMesh indexed", name, size},
                   [=](Row& row) { indexed(row, input(), walk); });
}

}  // namespace

int main(int argc, char** argv)
{
    for (const uint size : kSizes) {
        add("torus natural", size, [size] { return triangleTorus(size, PointOrder::Natural); });
        if (size >= 100000)
            add("torus random", size, [size] { return triangleTorus(size, PointOrder::Random); });
    }
    add(
        "fan", 200000, [] { return triangleFan(200000); }, Walk::TooSlow);
    add("demo mesh", 1000000, [] { return trianglesOf(demoPolygons(512)); });
    if (hasBunny())
        add("bunny", 70000, [] { return trianglesOf(bunny()); });
    return run(argc, argv);
}
