// Arrays that do not belong together, in any state on entry, of which the headers still say what becomes: dual
// tables that are foreign, shorter or not prepared, offsets that reach past the corners, built twice.

#include "fuzz/Limits.h"
#include "fuzz/Values.h"

#include <Korvane/Geometry.h>
#include <Tessary/Tessary.h>

namespace {

using namespace Korvane::Geometry;
using Korvane::Math::float3;
using Pelon::Array;
using Pelon::uint;

constexpr uint kNone = 0xFFFFFFFF;

struct Table {
    Array<uint> offset, corners;
    bool operator==(const Table& o) const { return offset == o.offset && corners == o.corners; }
};

// As the header says it, one corner after the other.
Table literalDual(const Array<uint>& faceVertex, Table table)
{
    for (const uint point : faceVertex)
        ++table.offset[point + 1];
    for (std::size_t p = 1; p < table.offset.size(); ++p)
        table.offset[p] += table.offset[p - 1];
    for (uint corner = 0; corner < faceVertex.size(); ++corner) {
        const uint point = faceVertex[corner];
        for (uint slot = table.offset[point];
             slot < table.offset[point + 1] && slot < table.corners.size(); ++slot)
            if (table.corners[slot] == kNone) {
                table.corners[slot] = corner;
                break;
            }
    }
    return table;
}

Table tableOf(Fuzz::Values& values, uint points, uint corners, bool isSane)
{
    return {values.array<uint>(std::size_t{points} + 1,
                               [&] { return isSane ? values.below(4) : values.wild(8); }),
            values.array<uint>(corners,
                               [&] { return values.flag() ? kNone : values.wild(corners + 2); })};
}

void tryDual(Fuzz::Values& values, uint points, const Array<uint>& faceVertex)
{
    const Table start =
        tableOf(values, points, static_cast<uint>(faceVertex.size()), values.byte() < 200);
    Table table = start;
    Tessary::constructDualMesh(faceVertex, table.offset, table.corners);
    const Table once = literalDual(faceVertex, start);
    Fuzz::require(table == once, "a dual over any arrays is the literal one");
    Tessary::constructDualMesh(faceVertex, table.offset, table.corners);
    Fuzz::require(table == literalDual(faceVertex, once), "and built twice, too");
}

// Counts as the sums that construct has made of them, entries that name any corner or none.
void trySearches(Fuzz::Values& values, uint points, const Array<uint>& faceVertex)
{
    const auto corners = static_cast<uint>(faceVertex.size());
    Table table{Array<uint>(std::size_t{points} + 1), Array<uint>(corners)};
    for (std::size_t p = 1; p < table.offset.size(); ++p)
        table.offset[p] = std::min(corners, table.offset[p - 1] + values.below(6));
    for (uint& corner : table.corners)
        corner = corners >= 3 ? values.below(corners / 3 * 3) : 0;
    if (corners < 3)
        return;
    Array<uint> adjacent;
    Tessary::populateAdjacentTri(faceVertex, table.offset, table.corners, adjacent);
    for (uint corner = 0; corner < corners / 3 * 3; ++corner) {
        const auto other = Tessary::findAdjacentHalfEdge(faceVertex, table.offset, table.corners,
                                                         {corner, corner / 3});
        Fuzz::require(adjacent[corner] == other.face, "one search finds what all of them find");
    }
}

void tryMeshes(Fuzz::Values& values, uint points, const Array<uint>& faceVertex)
{
    Array<uint> offset;
    for (uint t = 0; t <= faceVertex.size() / 3; ++t)
        offset.push_back(3 * t);
    const auto mesh = makeMesh(Array<float3>(points), offset, Array<uint>(faceVertex));
    for (int times = 1 + static_cast<int>(values.below(3)); times > 0; --times)
        Tessary::addDual(*mesh, sPointComp, sFaceVertex, "dual", "corners", "offset");
    const Pelon::String names[] = {"dual", "", "missing", sFaceVertex};
    Tessary::addAdjacentTri(*mesh, sFaceVertexComp, sFaceVertex, names[values.below(4)],
                            values.flag() ? "corners" : "missing",
                            values.flag() ? "offset" : "absent");
}

void tryQuads(Fuzz::Values& values, const Array<uint>& faceVertex)
{
    Array<uint> edges, quads, values3;
    Tessary::computeTriEdges(faceVertex, edges);
    const auto flags = values.array<bool>(faceVertex.size(), [&] { return values.flag(); });
    Tessary::computeQuadMesh(faceVertex, edges, flags, values.raw<uint>(), quads);
    Array<uint> offset, corners;
    const auto wild = values.array<uint>(values.below(20), [&] { return values.below(60); });
    const auto points = values.array<uint>(60, [&] { return values.raw<uint>(); });
    Tessary::computeTriangulation(wild, points, offset, corners);
    if (!wild.empty())
        Tessary::triEdgeToPolyEdge(wild, {values.below(60), values.below(20)});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::useOneThread();
    Fuzz::Values values(data, size);
    const uint points = 1 + values.below(20);
    const auto faceVertex =
        values.array<uint>(values.below(90), [&] { return values.below(points); });
    tryDual(values, points, faceVertex);
    trySearches(values, points, faceVertex);
    tryMeshes(values, points, faceVertex);
    tryQuads(values, faceVertex);
    return 0;
}
