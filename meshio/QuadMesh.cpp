#include <meshio/QuadMesh.h>

#include <Korvane/Geometry.h>
#include <Tessary/HalfEdge.h>
#include <Tessary/Topology.h>
#include <Tessary/Triangulation.h>

#include <meshio/Creases.h>
#include <meshio/CutPoints.h>
#include <meshio/EdgeReport.h>
#include <meshio/ReadFile.h>
#include <meshio/Validate.h>

#include <algorithm>
#include <stdexcept>

namespace MeshIo {
namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using Korvane::Math::float3;
using Pelon::Array;
using Pelon::Ptr;
using Pelon::String;
using Pelon::uint;

constexpr uint kNone = 0xFFFFFFFF;

// A polygon mesh and its way to quads.
struct Topology {
    Array<float3> points;
    Array<uint> faceOffset, faceVertex;
    Array<uint> triFaceVertex, triEdges;
    Array<uint> quadFaceVertex;
    uint pointCount = 0;  // of the quad mesh

    TriangulatedView view() const { return {faceOffset, faceVertex, triFaceVertex, triEdges}; }
};

[[noreturn]] void reject(const std::string& name, Problem problem)
{
    ValidationReport report;
    report.problems.push_back(std::move(problem));
    throw InvalidMesh(name, std::move(report));
}

void checkOptions(const QuadOptions& options)
{
    const auto expect = [](bool holds, const char* what) {
        if (!holds)
            throw std::invalid_argument(what);
    };
    const auto isShare = [](float share) { return share >= 0 && share <= 1; };
    const double angle = options.creaseAngle.value_or(0);
    const float* const inner = options.innerWeights;
    expect(angle >= 0 && angle <= 180, "the crease angle is outside 0 to 180 degrees");
    expect(isShare(options.edgeWeight), "the edge weight is outside 0 to 1");
    expect(isShare(inner[0]) && isShare(inner[1]) && isShare(inner[2]),
           "an inner weight is outside 0 to 1");
    expect(isShare(options.gap), "the gap is outside 0 to 1");
}

template <class T>
Array<T> arrayOr(const Object& mesh, const String& name, Array<T> otherwise)
{
    const Ptr<Array<T>> array = dataArray<T>(mesh, name);
    return array ? *array : std::move(otherwise);
}

Topology triangulated(const Object& mesh)
{
    Topology topology;
    topology.points = arrayOr<float3>(mesh, sPointPosition, {});
    topology.faceOffset = arrayOr<uint>(mesh, sFaceOffset, {0});
    topology.faceVertex = arrayOr<uint>(mesh, sFaceVertex, {});
    Array<uint> triFaceOffset;
    if (!Tessary::computeTriangulation(topology.faceOffset, topology.faceVertex, triFaceOffset,
                                       topology.triFaceVertex))
        throw std::invalid_argument("the mesh has faces that cannot be triangulated; validate it");
    return topology;
}

// Two bits of the codes that place the new points are taken.
void rejectTooLarge(const Topology& mesh, const std::string& name)
{
    constexpr std::uint64_t kMost = (std::uint64_t{1} << 30) - 1;
    const std::uint64_t corners = mesh.triFaceVertex.size();
    if (corners + mesh.points.size() <= kMost)
        return;
    reject(name, {Problem::Severity::Error,
                  "too-large",
                  "more corners than indices of a quad mesh can name",
                  1,
                  {"a mesh of " + std::to_string(mesh.points.size()) + " points and " +
                   std::to_string(corners / 3) + " triangles"},
                  "split the mesh into parts"});
}

std::string placeOf(const Topology& mesh, const SameDirection& edge)
{
    const auto faceOf = [&mesh](uint corner) {
        const auto polyEdge = Tessary::triEdgeToPolyEdge(mesh.faceOffset, {corner, corner / 3});
        return std::to_string(polyEdge.face);
    };
    return "points " + std::to_string(edge.start) + " to " + std::to_string(edge.end) +
           " of faces " + faceOf(edge.corner) + " and " + faceOf(edge.another);
}

void rejectSameDirection(const Topology& mesh, const std::string& name)
{
    const EdgeReport report = findSameDirectionEdges(mesh.triFaceVertex, mesh.points.size(), 3);
    if (report.count == 0)
        return;
    std::string places;
    for (const SameDirection& edge : report.first)
        places += (places.empty() ? "" : ", ") + placeOf(mesh, edge);
    reject(name, {Problem::Severity::Error,
                  "same-direction",
                  "edges along which two faces run in one direction",
                  report.count,
                  {places},
                  "turn one of the faces round or give it points of its own"});
}

Array<bool> creasesOf(const Topology& topology, const Object& mesh, const QuadOptions& options)
{
    if (!options.creaseProperty.empty())
        return creasesByProperty(topology.view(), mesh, options.creaseProperty);
    if (options.creaseAngle)
        return creasesByAngle(topology.view(), topology.points, *options.creaseAngle);
    return Array<bool>(topology.triFaceVertex.size());
}

uint after(uint corner)
{
    return corner % 3 == 2 ? corner - 2 : corner + 1;
}

float3 blend(const float3& a, float s, const float3& b, float t)
{
    return {s * a.x + t * b.x, s * a.y + t * b.y, s * a.z + t * b.z};
}

float3 positionOf(const Array<float3>& points, const CutPoints& cut, uint origin)
{
    const uint corner = origin >> 2;
    const uint first = corner - corner % 3;
    const auto at = [&](uint c) { return points[cut.cornerPoint[c]]; };
    const auto onEdge = [&](uint c) {
        const float t = cut.edgeWeights[c];
        return blend(at(c), t, at(after(c)), 1.0f - t);
    };
    switch (origin & 3) {
        case 0:
            return at(corner);
        case 1:
            return onEdge(corner);
        case 3:
            return onEdge(first + (corner + 2) % 3);
        default:
            break;
    }
    const float* const w = &cut.triangleWeights[first];
    return blend(blend(at(first), w[0], at(first + 1), w[1]), 1, at(first + 2), w[2]);
}

// Calls `visit(corner, first, second)` for each creased edge: a half-edge and its two new points.
template <class Visit>
void forEachCrease(const Topology& mesh, const Visit& visit)
{
    for (std::size_t e = 0; e + 1 < mesh.triEdges.size(); e += 2) {
        const uint corner = mesh.triEdges[e];
        const uint first = mesh.quadFaceVertex[std::size_t{4} * corner + 1];
        const uint second = mesh.quadFaceVertex[std::size_t{4} * after(corner) + 3];
        if (first != second)
            visit(corner, first, second);
    }
}

void openGaps(const Topology& mesh, const CutPoints& cut, float gap, Array<float3>& positions)
{
    if (gap == 0)
        return;
    forEachCrease(mesh, [&](uint corner, uint first, uint second) {
        const float3& start = mesh.points[mesh.triFaceVertex[corner]];
        const float3& end = mesh.points[mesh.triFaceVertex[after(corner)]];
        const float t = cut.edgeWeights[corner];
        const float nearStart = std::min(1.0f, t + gap / 2);
        const float nearEnd = std::max(0.0f, t - gap / 2);
        positions[first] = blend(start, nearStart, end, 1.0f - nearStart);
        positions[second] = blend(start, nearEnd, end, 1.0f - nearEnd);
    });
}

Array<float3> positionsOf(const Topology& mesh, const CutPoints& cut, float gap)
{
    Array<float3> positions(mesh.pointCount);
    for (std::size_t point = 0; point < positions.size(); ++point)
        positions[point] = positionOf(mesh.points, cut, cut.origins[point]);
    openGaps(mesh, cut, gap, positions);
    return positions;
}

Array<uint> quadOffsets(std::size_t cornerCount)
{
    Array<uint> offsets(cornerCount / 4 + 1);
    for (std::size_t quad = 0; quad < offsets.size(); ++quad)
        offsets[quad] = static_cast<uint>(4 * quad);
    return offsets;
}

}  // namespace

QuadMesh makeQuadMesh(const Object& mesh, const std::string& name, const QuadOptions& options)
{
    checkOptions(options);
    Topology topology = triangulated(mesh);
    rejectTooLarge(topology, name);
    rejectSameDirection(topology, name);
    Tessary::computeTriEdges(topology.triFaceVertex, topology.triEdges);
    throwIfCancelled();
    topology.pointCount = Tessary::computeQuadMesh(
        topology.triFaceVertex, topology.triEdges, creasesOf(topology, mesh, options),
        static_cast<uint>(topology.points.size()), topology.quadFaceVertex);
    throwIfCancelled();
    const CutPoints cut = cutPointsOf(topology.triFaceVertex, topology.quadFaceVertex,
                                      topology.points.size(), topology.pointCount, options);

    QuadMesh result;
    result.edges = static_cast<uint>(topology.triEdges.size() / 2);
    forEachCrease(topology, [&result](uint, uint, uint) { ++result.creasedEdges; });
    Array<float3> positions = positionsOf(topology, cut, options.gap);
    Array<uint> offsets = quadOffsets(topology.quadFaceVertex.size());
    result.mesh =
        makeMesh(std::move(positions), std::move(offsets), std::move(topology.quadFaceVertex));
    return result;
}

}  // namespace MeshIo
