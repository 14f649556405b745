#include <Tessary/Topology.h>

#include "base/CountingSort.h"
#include "base/MeshLayout.h"
#include "base/ParallelReduce.h"
#include "topology/BlockSorter.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <vector>

// Half-edges are filed by larger point in two steps: first by block of points, then, block by block,
// by point, so that neither step writes to more places than a core's cache holds. Each point's are
// sorted, and neighbours are paired up. Where triangles follow each other in the order of their
// points, the first step files by point at once.
//
// All this happens in the edge table, and where there are two steps in one more array of half its
// largest size. Where each half-edge has a partner, the table is done with that; otherwise it is moved
// apart to let in what marks the others.

namespace Tessary {
namespace {

// Fewer are looked through as soon by one thread.
constexpr uint kCornersPerPiece = 65536;

class EdgeTable {
public:
    EdgeTable(const Array<uint>& triFaceVertex, std::size_t pointCount, Array<uint>& triEdges)
        : m_faceVertex(triFaceVertex.data()),
          m_triangleCount(triFaceVertex.size() / 3),
          m_pointCount(pointCount),
          m_keyOf(m_faceVertex, 3 * m_triangleCount, pointCount),
          m_binBits(isFiledByPoint() ? 0 : kBlockBits),
          m_blockCount(static_cast<uint>((pointCount - 1) >> kBlockBits) + 1),
          m_cursors(pieceCount(), ((pointCount - 1) >> m_binBits) + 1),
          m_upper(m_binBits > 0 ? 3 * m_triangleCount : 0),
          m_singles(m_blockCount),
          m_triEdges(triEdges)
    {}

    // False where neighbours run the same way.
    bool build()
    {
        makeRoom();
        count();
        m_cursors.exclusiveScan();
        file();
        if (!sortBlocks())
            return false;
        moveApart();
        return true;
    }

private:
    static constexpr uint kBlockBits = 12;  // a block's half-edges take some 200 kB

    // Whether half-edges that are filed one after another go to places that the cache still holds, or
    // keys lack the bits for a second step.
    bool isFiledByPoint() const
    {
        constexpr std::size_t kSmallMesh = 16384;
        constexpr std::size_t kSamples = 512;
        if (m_triangleCount < kSmallMesh || m_keyOf.placeBits() < kBlockBits)
            return true;
        std::size_t farCount = 0;
        for (std::size_t i = 0; i < kSamples; ++i) {
            const uint* const point = m_faceVertex + 3 * (m_triangleCount * i / kSamples);
            const Ends neighbours(point[0], point[3]);
            farCount += neighbours.larger - neighbours.smaller > 16384;
        }
        return farCount < kSamples / 8;
    }

    uint pieceCount() const
    {
        constexpr uint kMostPieces = 16;
        constexpr std::size_t kTrianglesPerPiece = 8192;
        const uint most = m_binBits > 0 ? kMostPieces : std::min(loopConcurrency(), 8u);
        return static_cast<uint>(
            std::min<std::size_t>(most, 1 + m_triangleCount / kTrianglesPerPiece));
    }

    Range trianglesOf(uint piece) const
    {
        return partOf(m_triangleCount, piece, m_cursors.pieceCount());
    }

    Range pointsOf(uint block) const
    {
        const std::size_t begin = std::size_t{block} << kBlockBits;
        return {begin, std::min(begin + (std::size_t{1} << kBlockBits), m_pointCount)};
    }

    // Of a block in the table, once all half-edges are filed.
    std::size_t beginOf(uint block) const
    {
        const std::size_t firstBin = pointsOf(block).begin >> m_binBits;
        return firstBin > 0 ? m_cursors.binEnds()[firstBin - 1] : 0;
    }

    std::size_t endOf(uint block) const
    {
        return block + 1 < m_blockCount ? beginOf(block + 1) : 3 * m_triangleCount;
    }

    // For the corners, and for what marks those of a short boundary.
    void makeRoom()
    {
        const std::size_t cornerCount = 3 * m_triangleCount;
        if (m_triEdges.size() < cornerCount)
            m_triEdges.resize(0);
        m_triEdges.resize(std::max(m_triEdges.size(), cornerCount + cornerCount / 32));
    }

    // Calls `visit(triangle)` for those of a piece.
    template <class Visit>
    void forEachTriangle(uint piece, const Visit& visit) const
    {
        const Range triangles = trianglesOf(piece);
        const uint* const faceVertex = m_faceVertex;
        for (std::size_t t = triangles.begin; t < triangles.end; ++t)
            visit(SortedTriangle(faceVertex + 3 * t, static_cast<uint>(3 * t)));
    }

    // Calls `visit(ends, corner)` for each half-edge of a piece of the triangles.
    template <class Visit>
    void forEachHalfEdge(uint piece, const Visit& visit) const
    {
        const Range triangles = trianglesOf(piece);
        for (std::size_t t = triangles.begin; t < triangles.end; ++t) {
            const uint* const point = m_faceVertex + 3 * t;
            for (uint k = 0; k < 3; ++k)
                visit(Ends(point[k], point[nextCorner(k, 0)]), static_cast<uint>(3 * t) + k);
        }
    }

    void count()
    {
        parallelForEach(m_cursors.pieceCount(), LoopContext::Isolated, [this](uint piece) {
            uint* const counts = m_cursors.counters(piece);
            if (m_binBits == 0)
                forEachTriangle(piece, [counts](const SortedTriangle& triangle) {
                    counts[triangle.largest] += 2;
                    counts[triangle.middle] += 1;
                });
            else
                forEachHalfEdge(
                    piece, [counts](Ends ends, uint) { counts[ends.larger >> kBlockBits] += 1; });
        });
    }

    void file()
    {
        parallelForEach(m_cursors.pieceCount(), LoopContext::Isolated, [this](uint piece) {
            if (m_binBits == 0)
                fileByPoint(piece);
            else
                fileByBlock(piece);
        });
    }

    void fileByPoint(uint piece)
    {
        uint* const cursors = m_cursors.counters(piece);
        uint* const corners = m_triEdges.data();
        forEachTriangle(piece, [=](const SortedTriangle& triangle) {
            const uint slot = cursors[triangle.largest];
            cursors[triangle.largest] = slot + 2;
            corners[slot] = triangle.corner;
            corners[slot + 1] = triangle.previous;
            corners[cursors[triangle.middle]++] = triangle.next;
        });
    }

    void fileByBlock(uint piece)
    {
        uint* const cursors = m_cursors.counters(piece);
        const Filed filed{m_triEdges.data(), m_upper.data()};
        const HalfEdgeKeys keyOf = m_keyOf;
        forEachHalfEdge(piece, [=](Ends ends, uint corner) {
            filed.set(cursors[ends.larger >> kBlockBits]++, keyOf.make(ends, corner));
        });
    }

    bool sortBlocks()
    {
        const auto sortSome = [this](uint begin, uint end) {
            BlockSorter sorter(m_faceVertex, m_keyOf);
            bool succeeded = true;
            for (uint block = begin; block < end; ++block)
                succeeded &= sortBlock(block, sorter);
            return succeeded;
        };
        return parallelReduce(m_blockCount, 1, LoopContext::Isolated, true, sortSome,
                              std::logical_and<>());
    }

    bool sortBlock(uint block, BlockSorter& sorter)
    {
        const Range points = pointsOf(block);
        const std::size_t begin = beginOf(block);
        uint* const corners = m_triEdges.data() + begin;
        if (m_binBits > 0)
            sorter.fillBuckets({corners, m_upper.data() + begin},
                               m_cursors.binEnds()[block] - begin, std::size_t{1} << kBlockBits);
        else
            sorter.takeBuckets(corners, begin, m_cursors.binEnds() + points.begin,
                               points.end - points.begin);
        return sorter.sortInto(corners, m_singles[block]);
    }

    // Lets in kNone after every half-edge that has no partner, in rounds of the last blocks that go
    // beyond all that is still to be moved.
    void moveApart()
    {
        std::vector<std::size_t> room{0};  // before each block
        for (const std::vector<uint>& singles : m_singles)
            room.push_back(room.back() + singles.size());
        m_triEdges.resize(3 * m_triangleCount + room.back());
        for (uint end = m_blockCount; room[end] > 0;) {
            uint begin = end - 1;
            while (begin > 0 && beginOf(begin - 1) + room[begin - 1] >= endOf(end - 1))
                --begin;
            parallelForEach(end - begin, LoopContext::Isolated,
                            [&, begin](uint i) { moveBlockApart(begin + i, room[begin + i]); });
            end = begin;
        }
    }

    void moveBlockApart(uint block, std::size_t room)
    {
        uint* const begin = m_triEdges.data() + beginOf(block);
        uint* end = m_triEdges.data() + endOf(block);
        const std::vector<uint>& singles = m_singles[block];
        for (std::size_t i = singles.size(); i > 0; --i) {
            uint* const afterSingle = begin + singles[i - 1] + 1;
            std::move_backward(afterSingle, end, end + room + i);
            afterSingle[room + i - 1] = kNone;
            end = afterSingle;
        }
        if (room > 0)
            std::move_backward(begin, end, end + room);
    }

    const uint* m_faceVertex;
    std::size_t m_triangleCount;
    std::size_t m_pointCount;
    HalfEdgeKeys m_keyOf;
    uint m_binBits;  // a bin has 2^m_binBits points
    uint m_blockCount;
    CountingSort m_cursors;  // for pieces of the triangles
    Array<uint> m_upper;
    std::vector<std::vector<uint>> m_singles;  // of each block, from its begin on
    Array<uint>& m_triEdges;
};

// The points by rank, for a mesh that names few points of a wide range.
Array<uint> ranksOf(const Array<uint>& points)
{
    std::vector<uint> sorted(points.begin(), points.end());
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    Array<uint> ranks(points.size());
    std::transform(points.begin(), points.end(), ranks.begin(), [&sorted](uint point) {
        return static_cast<uint>(std::lower_bound(sorted.begin(), sorted.end(), point) -
                                 sorted.begin());
    });
    return ranks;
}

// One more than the largest point that is named; there is one.
std::size_t pointCountOf(const Array<uint>& faceVertex)
{
    const uint* const points = faceVertex.data();
    return std::size_t{1} + parallelMax(faceVertex.size(), kCornersPerPiece,
                                        [points](std::size_t corner) { return points[corner]; });
}

}  // namespace

void computeTriEdges(const Array<uint>& triFaceVertex, Array<uint>& triEdges)
{
    if (triFaceVertex.size() < 3) {
        triEdges.resize(0);
        return;
    }
    const std::size_t pointCount = pointCountOf(triFaceVertex);
    // Counters for points that no triangle names may cost at most as much as the mesh.
    const bool succeeded =
        pointCount <= 4 * triFaceVertex.size() + 1024
            ? EdgeTable(triFaceVertex, pointCount, triEdges).build()
            : EdgeTable(ranksOf(triFaceVertex), triFaceVertex.size(), triEdges).build();
    if (!succeeded) {
        std::cerr << "Non manifold or inconsistently oriented mesh detected\n"
                  << "Edge computation canceled\n";
        triEdges.resize(0);
    }
}

}  // namespace Tessary
