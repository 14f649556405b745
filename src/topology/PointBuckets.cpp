#include "topology/PointBuckets.h"

#include "base/ParallelLoop.h"

#include <algorithm>

// With the points a < b < c of a triangle, in either order round:
//
//   buckets     | ..a.. | ..b.. | ..c.. |
//                          ab     bc ca        one half-edge ends high in b, two in c

namespace Tessary {
namespace {

// A triangle by its largest and middle points and the corners in the order of its circuit.
struct SortedTriangle {
    uint largest;
    uint middle;
    uint corner;  ///< of the largest point
    uint next;
    uint previous;

    // Branches: where triangles follow each other in the order of their points, they are predictable.
    SortedTriangle(const uint* point, uint firstCorner)
    {
        const uint ofTwo = point[1] > point[0] ? 1 : 0;
        const uint k = point[2] > point[ofTwo] ? 2 : ofTwo;
        const uint after = k == 2 ? 0 : k + 1;
        const uint before = k == 0 ? 2 : k - 1;
        largest = point[k];
        middle = std::max(point[after], point[before]);
        corner = firstCorner + k;
        next = firstCorner + after;
        previous = firstCorner + before;
    }
};

uint pieceCountFor(const Triangles& mesh)
{
    // Each piece has a counter per point: more threads than 8 would clear more than they sort. Pieces
    // of 1,024 and 65,536 triangles are as fast at 20,000 and 100,000.
    constexpr std::size_t kTrianglesPerPiece = 8192;
    return static_cast<uint>(
        std::min<std::size_t>({loopConcurrency(), 8, 1 + mesh.count / kTrianglesPerPiece}));
}

}  // namespace

PointBuckets::PointBuckets(const Triangles& mesh, const HalfEdgeKeys& keyOf, uint* table)
    : m_mesh(mesh), m_keyOf(keyOf), m_table(table), m_sort(pieceCountFor(mesh), mesh.pointCount)
{
    const uint pieces = m_sort.pieceCount();
    parallelForEachPiece(pieces, LoopContext::Isolated, [this](uint piece) { count(piece); });
    m_sort.exclusiveScan();
    parallelForEachPiece(pieces, LoopContext::Isolated, [this](uint piece) { scatter(piece); });
}

template <class Visit>
void PointBuckets::forEachTriangle(uint piece, const Visit& visit) const
{
    const Range triangles = partOf(m_mesh.count, piece, m_sort.pieceCount());
    const uint* const faceVertex = m_mesh.faceVertex;
    for (std::size_t t = triangles.begin; t < triangles.end; ++t)
        visit(SortedTriangle(faceVertex + 3 * t, static_cast<uint>(3 * t)));
}

void PointBuckets::count(uint piece)
{
    uint* const counts = m_sort.counters(piece);
    forEachTriangle(piece, [counts](const SortedTriangle& triangle) {
        counts[triangle.largest] += 2;
        counts[triangle.middle] += 1;
    });
}

void PointBuckets::scatter(uint piece)
{
    uint* const cursors = m_sort.counters(piece);
    uint* const table = m_table;
    forEachTriangle(piece, [=](const SortedTriangle& triangle) {
        const uint slot = cursors[triangle.largest];
        cursors[triangle.largest] = slot + 2;
        table[slot] = triangle.corner;
        table[slot + 1] = triangle.previous;
        table[cursors[triangle.middle]++] = triangle.next;
    });
}

std::vector<std::size_t> PointBuckets::blockBegins() const
{
    std::vector<std::size_t> begins{0};
    for (std::size_t end = std::size_t{1} << kBlockBits; end < m_mesh.pointCount;
         end += std::size_t{1} << kBlockBits)
        begins.push_back(m_sort.binEnds()[end - 1]);
    begins.push_back(m_mesh.cornerCount());
    return begins;
}

void PointBuckets::load(uint block, KeyBuckets& buckets) const
{
    const std::size_t firstPoint = std::size_t{block} << kBlockBits;
    const std::size_t points =
        std::min(m_mesh.pointCount - firstPoint, std::size_t{1} << kBlockBits);
    const uint* const bucketEnds = m_sort.binEnds() + firstPoint;
    const uint begin = firstPoint > 0 ? bucketEnds[-1] : 0;
    const std::size_t count = bucketEnds[points - 1] - begin;

    buckets.end.resize(points);
    for (std::size_t point = 0; point < points; ++point)
        buckets.end[point] = bucketEnds[point] - begin;
    buckets.makeRoom(count);
    const Triangles mesh = m_mesh;  // copies that registers can hold
    const HalfEdgeKeys keyOf = m_keyOf;
    const uint* const corners = m_table + begin;
    Key* const keys = buckets.keys.data();
    for (std::size_t i = 0; i < count; ++i)
        keys[i] = keyOf.make(mesh.ends(corners[i]), corners[i]);
}

}  // namespace Tessary
