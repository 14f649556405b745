#include <TessaryMesh/Operations.h>

#include <Tessary/Topology.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MeshArrays.h"
#include "check/EdgeReport.h"
#include "ops/Creases.h"
#include "ops/CutPoints.h"
#include "ops/FanParents.h"
#include "ops/ParentMaps.h"
#include "ops/QuadProperties.h"
#include "ops/SplitConcave.h"

#include <algorithm>
#include <cmath>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;

// A polygon mesh and its way to quads. The triangles are the fans of `fans`, which is the mesh itself or
// one in its place whose concave faces are split.
struct Topology : MeshArrays {
    Topology(const Object& mesh, const Object& fans, const IndexArray& parentCorner)
        : Topology(mesh, MeshArrays(fans), parentCorner)
    {}

    TriangulatedView view() const
    {
        return {*faceOffset, *faceVertex, triFaceVertex, triEdges, *triCorner};
    }

    Array<uint> triFaceVertex, triEdges;
    IndexArray triCorner;
    Array<uint> quadFaceVertex;
    uint pointCount = 0;  // of the quad mesh

private:
    Topology(const Object& mesh, const MeshArrays& fans, const IndexArray& parentCorner)
        : MeshArrays(mesh),
          triFaceVertex(fanTriangles(*fans.faceOffset, *fans.faceVertex)),
          triCorner(through(cornersOfTriangles(*fans.faceOffset), parentCorner))
    {}
};

void checkOptions(const QuadOptions& options)
{
    const auto expect = [](bool holds, const char* option, const char* what) {
        if (!holds)
            throw ArgumentError(option, what);
    };
    const auto isShare = [](float share) { return share >= 0 && share <= 1; };
    const double angle = options.creaseAngle.value_or(0);
    const float* const inner = options.innerWeights;
    expect(angle >= 0 && angle <= 180, "creaseAngle",
           "the crease angle is outside 0 to 180 degrees");
    expect(isShare(options.edgeWeight), "edgeWeight", "the edge weight is outside 0 to 1");
    expect(isShare(inner[0]) && isShare(inner[1]) && isShare(inner[2]), "innerWeights",
           "an inner weight is outside 0 to 1");
    expect(std::abs(inner[0] + inner[1] + inner[2] - 1) < 1e-3f, "innerWeights",
           "the inner weights do not add up to 1");
    expect(isShare(options.gap), "gap", "the gap is outside 0 to 1");
    expect(
        options.gap == 0 || options.creaseAngle || !options.creaseProperty.empty(), "gap",
        "a gap opens creased edges, and nothing creases any; ask for creases by angle or property");
}

// Two bits of the codes that place the new points are taken.
void rejectTooLarge(const Topology& mesh)
{
    constexpr std::uint64_t kMost = (std::uint64_t{1} << 30) - 1;
    const std::uint64_t corners = mesh.triFaceVertex.size();
    const std::uint64_t points = mesh.points->size();
    if (corners + points <= kMost)
        return;
    throw InvalidMesh(Problem{Problem::Severity::Error,
                              "too-large",
                              "more corners than indices of a quad mesh can name",
                              1,
                              {{"a mesh of " + std::to_string(points) + " points and " +
                                std::to_string(corners / 3) + " triangles"}},
                              "split the mesh into parts"});
}

// Returns how many edges had to be split.
std::uint64_t findEdges(Topology& mesh, bool splitEdges)
{
    const std::size_t points = mesh.points->size();
    const EdgeReport report = findSameDirectionEdges(mesh.triFaceVertex, points, 3);
    if (!splitEdges)
        rejectSameDirection(*mesh.faceOffset, report);
    if (report.count == 0)
        Tessary::computeTriEdges(mesh.triFaceVertex, mesh.triEdges);
    else
        mesh.triEdges = separatedTriEdges(mesh.triFaceVertex, points);
    throwIfCancelled();
    return report.count;
}

Array<bool> creasesOf(const Topology& topology, const Object& mesh, const QuadOptions& options)
{
    if (!options.creaseProperty.empty())
        return creasesByProperty(topology.view(), mesh, options.creaseProperty);
    if (options.creaseAngle)
        return creasesByAngle(topology.view(), *topology.points, *options.creaseAngle);
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
        const float3& start = (*mesh.points)[mesh.triFaceVertex[corner]];
        const float3& end = (*mesh.points)[mesh.triFaceVertex[after(corner)]];
        const float t = cut.edgeWeights[corner];
        const float nearStart = std::min(1.0f, t + gap / 2);
        const float nearEnd = std::max(0.0f, t - gap / 2);
        positions[first] = blend(start, nearStart, end, 1.0f - nearStart);
        positions[second] = blend(start, nearEnd, end, 1.0f - nearEnd);
    });
}

Array<uint> quadOffsets(std::size_t cornerCount)
{
    Array<uint> offsets(cornerCount / 4 + 1);
    for (std::size_t quad = 0; quad < offsets.size(); ++quad)
        offsets[quad] = static_cast<uint>(4 * quad);
    return offsets;
}

// Quad 3t + k lies around corner k of triangle t.
ParentMaps parentsOf(const Topology& mesh)
{
    const Ptr<Array<uint>> faces = facesOfTriangles(*mesh.faceOffset);
    ParentMaps parents;
    parents.corner = mesh.triCorner;
    const auto face = makeMutable<Array<uint>>(parents.corner->size());
    const auto triangle = makeMutable<Array<uint>>(parents.corner->size());
    for (std::size_t quad = 0; quad < face->size(); ++quad) {
        (*triangle)[quad] = static_cast<uint>(quad / 3);
        (*face)[quad] = (*faces)[quad / 3];
    }
    parents.face = face;
    parents.triangle = triangle;
    return parents;
}

QuadResult quadsOf(const Object& mesh, const QuadOptions& options, const Carry& carry)
{
    checkOptions(options);
    QuadResult result;
    std::optional<Result> split;
    if (options.concave == Concave::Split)
        split = splitConcave(mesh, carry, Onto::Quads);
    const Object& fans = split ? *split->mesh : mesh;
    Topology topology(mesh, fans, split ? split->parents.corner : nullptr);
    const std::size_t pointCount = topology.points->size();
    rejectTooLarge(topology);
    result.splitEdges = findEdges(topology, options.splitEdges);
    topology.pointCount = Tessary::computeQuadMesh(
        topology.triFaceVertex, topology.triEdges, creasesOf(topology, mesh, options),
        static_cast<uint>(pointCount), topology.quadFaceVertex);
    throwIfCancelled();
    const CutPoints cut = cutPointsOf(topology.triFaceVertex, topology.quadFaceVertex, pointCount,
                                      topology.pointCount, options);
    QuadProperties properties(fans, split ? Carry::all() : carry);
    properties.interpolate(cut);
    Array<float3> positions = properties.takePositions();
    openGaps(topology, cut, options.gap, positions);

    result.edges = topology.triEdges.size() / 2;
    forEachCrease(topology, [&result](uint, uint, uint) { ++result.creasedEdges; });
    result.parents = parentsOf(topology);
    Array<uint> offsets = quadOffsets(topology.quadFaceVertex.size());
    result.mesh =
        makeMesh(std::move(positions), std::move(offsets), std::move(topology.quadFaceVertex));
    properties.addTo(*result.mesh);
    result.warnings = split ? split->warnings : properties.warnings();
    return result;
}

}  // namespace

QuadResult makeQuads(const Object& mesh, const QuadOptions& options, const Carry& carry)
{
    return guarded([&] { return quadsOf(mesh, options, carry); });
}

}  // namespace TessaryMesh
