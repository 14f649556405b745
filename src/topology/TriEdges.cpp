#include <Tessary/Topology.h>

#include "host/Arrays.h"
#include "host/MeshLayout.h"
#include "host/ParallelLoop.h"

#include <algorithm>
#include <atomic>
#include <iostream>
#include <utility>
#include <vector>

// Half-edges are filed in one bucket per larger point, by a counting sort in which each piece of the
// mesh has counters of its own, and each bucket is sorted by smaller point and corner. Buckets are
// then paired up on their own: equal edges always share one.

namespace Tessary {
namespace {

using Key = std::uint64_t;

// A half-edge within its bucket: smaller point, corner, direction, ordered as one number. The corner
// makes every key different, so that no order is left open.
class HalfEdgeKeys {
public:
    explicit HalfEdgeKeys(const uint* faceVertex, std::size_t cornerCount)
        : m_faceVertex(faceVertex), m_directionBits(cornerCount <= (std::size_t{1} << 31) ? 1 : 0)
    {}

    Key make(uint smaller, uint corner, bool isDescending) const
    {
        const Key direction = m_directionBits & (isDescending ? 1u : 0u);
        return Key{smaller} << 32 | Key{corner} << m_directionBits | direction;
    }
    uint corner(Key key) const { return static_cast<uint>(key) >> m_directionBits; }
    static uint smaller(Key key) { return static_cast<uint>(key >> 32); }

    // Whether the half-edge starts at its larger point.
    bool isDescending(Key key) const
    {
        return m_directionBits ? (key & 1) != 0 : m_faceVertex[corner(key)] != smaller(key);
    }

private:
    const uint* m_faceVertex;
    uint m_directionBits;  // a mesh of more than 2^31 corners has no bit to spare
};

struct Range {
    std::size_t begin;
    std::size_t end;
};

// Piece `i` of `pieces` nearly equal parts of [0, size).
Range pieceOf(std::size_t size, uint i, uint pieces)
{
    return {size * i / pieces, size * (i + 1) / pieces};
}

// Calls `file(larger, smaller, corner, isDescending)` for each half-edge of the triangles in `range`.
template <class File>
void forEachHalfEdge(const uint* faceVertex, Range range, const File& file)
{
    for (std::size_t t = range.begin; t < range.end; ++t) {
        const uint* const point = faceVertex + 3 * t;
        const uint corner = static_cast<uint>(3 * t);
        for (uint k = 0; k < 3; ++k) {
            const uint start = point[k];
            const uint end = point[k == 2 ? 0 : k + 1];
            file(std::max(start, end), std::min(start, end), corner + k, start > end);
        }
    }
}

class EdgeTable {
public:
    EdgeTable(const Array<uint>& triFaceVertex, std::size_t pointCount)
        : m_faceVertex(triFaceVertex.data()),
          m_triangleCount(triFaceVertex.size() / 3),
          m_pointCount(pointCount),
          m_pieces(static_cast<uint>(std::min<std::size_t>(
              std::min(loopConcurrency(), kMostPieces), 1 + m_triangleCount / kTrianglesPerPiece))),
          m_blocks(m_pieces == 1 ? 1 : kBlocksPerPiece * m_pieces),
          m_keyOf(m_faceVertex, 3 * m_triangleCount),
          m_cursors(m_pieces * pointCount),
          m_keys(3 * m_triangleCount),
          m_firstOfBlock(std::size_t{m_blocks} + 1)
    {}

    // Files, sorts and counts; false where neighbours run the same way.
    bool build()
    {
        count();
        turnCountsIntoStarts();
        file();
        return sortAndCount();
    }

    void emit(Array<uint>& triEdges)
    {
        resizeForOverwriting(triEdges, 2 * m_firstOfBlock[m_blocks]);
        parallelForEach(m_blocks, LoopContext::Isolated, [&](uint block) {
            uint* out = triEdges.data() + 2 * m_firstOfBlock[block];
            forEachBucket(block, [&](Key* begin, Key* end) {
                forEachEdge(begin, end, [&](Key first, const Key* second) {
                    *out++ = m_keyOf.corner(first);
                    *out++ = second ? m_keyOf.corner(*second) : kNone;
                });
            });
        });
    }

private:
    // Counters cost 4 bytes per point and piece, so their number is bounded.
    static constexpr uint kMostPieces = 8;
    static constexpr std::size_t kTrianglesPerPiece = 8192;
    static constexpr uint kBlocksPerPiece = 16;

    uint* cursorsOf(uint piece) { return m_cursors.data() + piece * m_pointCount; }

    void count()
    {
        parallelForEach(m_pieces, LoopContext::Isolated, [this](uint piece) {
            uint* const counts = cursorsOf(piece);
            forEachHalfEdge(m_faceVertex, pieceOf(m_triangleCount, piece, m_pieces),
                            [counts](uint larger, uint, uint, bool) { ++counts[larger]; });
        });
    }

    // Point by point, and for each point piece by piece.
    void turnCountsIntoStarts()
    {
        std::vector<uint> start(std::size_t{m_blocks} + 1);
        parallelForEach(m_blocks, LoopContext::Isolated,
                        [&](uint block) { start[block + 1] = sumOfBlock(block); });
        for (uint block = 0; block < m_blocks; ++block)
            start[block + 1] += start[block];
        parallelForEach(m_blocks, LoopContext::Isolated, [&](uint block) {
            uint sum = start[block];
            const Range points = pieceOf(m_pointCount, block, m_blocks);
            for (std::size_t point = points.begin; point < points.end; ++point)
                for (uint piece = 0; piece < m_pieces; ++piece)
                    sum += std::exchange(cursorsOf(piece)[point], sum);
        });
    }

    uint sumOfBlock(uint block)
    {
        const Range points = pieceOf(m_pointCount, block, m_blocks);
        uint sum = 0;
        for (uint piece = 0; piece < m_pieces; ++piece)
            for (std::size_t point = points.begin; point < points.end; ++point)
                sum += cursorsOf(piece)[point];
        return sum;
    }

    void file()
    {
        parallelForEach(m_pieces, LoopContext::Isolated, [this](uint piece) {
            uint* const cursors = cursorsOf(piece);
            forEachHalfEdge(m_faceVertex, pieceOf(m_triangleCount, piece, m_pieces),
                            [=](uint larger, uint smaller, uint corner, bool isDescending) {
                                m_keys[cursors[larger]++] =
                                    m_keyOf.make(smaller, corner, isDescending);
                            });
        });
    }

    bool sortAndCount()
    {
        std::atomic<bool> succeeded{true};
        parallelForEach(m_blocks, LoopContext::Isolated, [&](uint block) {
            std::size_t count = 0;
            forEachBucket(block, [&](Key* begin, Key* end) {
                sort(begin, end);
                if (!forEachEdge(begin, end, [&count](Key, const Key*) { ++count; }))
                    succeeded.store(false, std::memory_order_relaxed);
            });
            m_firstOfBlock[block + 1] = count;
        });
        for (uint block = 0; block < m_blocks; ++block)
            m_firstOfBlock[block + 1] += m_firstOfBlock[block];
        return succeeded;
    }

    // Buckets hold a handful of keys, almost in order; one point may still have thousands.
    static void sort(Key* begin, Key* end)
    {
        if (end - begin > 24) {
            std::sort(begin, end);
            return;
        }
        for (Key* next = begin + (begin != end); next < end; ++next) {
            const Key key = *next;
            Key* hole = next;
            for (; hole > begin && hole[-1] > key; --hole)
                *hole = hole[-1];
            *hole = key;
        }
    }

    // The last piece's cursors have reached the ends of the buckets.
    template <class Visit>
    void forEachBucket(uint block, const Visit& visit)
    {
        const uint* const bucketEnd = m_cursors.data() + (m_pieces - 1) * m_pointCount;
        const Range points = pieceOf(m_pointCount, block, m_blocks);
        Key* const keys = m_keys.data();
        std::size_t begin = points.begin > 0 ? bucketEnd[points.begin - 1] : 0;
        for (std::size_t point = points.begin; point < points.end; ++point) {
            const std::size_t end = bucketEnd[point];
            visit(keys + begin, keys + end);
            begin = end;
        }
    }

    // Pairs neighbours of one edge that run opposite ways; false at the first two that run one way.
    // Required: only neighbours are compared, so a half-edge after a pair starts anew.
    template <class Visit>
    bool forEachEdge(const Key* key, const Key* end, const Visit& visit) const
    {
        while (key < end) {
            const bool hasPartner =
                key + 1 < end && HalfEdgeKeys::smaller(key[0]) == HalfEdgeKeys::smaller(key[1]);
            if (hasPartner && m_keyOf.isDescending(key[0]) == m_keyOf.isDescending(key[1]))
                return false;
            visit(key[0], hasPartner ? key + 1 : nullptr);
            key += hasPartner ? 2 : 1;
        }
        return true;
    }

    const uint* m_faceVertex;
    std::size_t m_triangleCount;
    std::size_t m_pointCount;
    uint m_pieces;  // of the triangles, each with counters of its own
    uint m_blocks;  // of the points
    HalfEdgeKeys m_keyOf;
    Array<uint> m_cursors;
    Array<Key> m_keys;
    std::vector<std::size_t> m_firstOfBlock;
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

// One more than the largest point that is named.
std::size_t pointCountOf(const Array<uint>& faceVertex)
{
    const uint pieces = 1 + static_cast<uint>(faceVertex.size() / 65536);
    std::vector<std::size_t> count(pieces);
    parallelForEach(pieces, LoopContext::Isolated, [&](uint i) {
        const Range range = pieceOf(faceVertex.size(), i, pieces);
        uint largest = 0;
        for (std::size_t corner = range.begin; corner < range.end; ++corner)
            largest = std::max(largest, faceVertex[corner]);
        count[i] = range.begin < range.end ? std::size_t{largest} + 1 : 0;
    });
    return *std::max_element(count.begin(), count.end());
}

bool buildEdges(const Array<uint>& triFaceVertex, std::size_t pointCount, Array<uint>& triEdges)
{
    EdgeTable table(triFaceVertex, pointCount);
    if (!table.build())
        return false;
    table.emit(triEdges);
    return true;
}

}  // namespace

void computeTriEdges(const Array<uint>& triFaceVertex, Array<uint>& triEdges)
{
    const std::size_t pointCount = pointCountOf(triFaceVertex);
    // Counters for points that no triangle names may cost at most as much as the mesh.
    const bool succeeded = pointCount <= 4 * triFaceVertex.size() + 1024
                               ? buildEdges(triFaceVertex, pointCount, triEdges)
                               : buildEdges(ranksOf(triFaceVertex), triFaceVertex.size(), triEdges);
    if (!succeeded) {
        std::cerr << "Non manifold or inconsistently oriented mesh detected\n"
                  << "Edge computation canceled\n";
        triEdges.resize(0);
    }
}

}  // namespace Tessary
