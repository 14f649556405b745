#include "sampling/TriangleGroups.h"

#include "base/CountingSort.h"
#include "base/ParallelLoop.h"

#include <algorithm>
#include <vector>

// Two counting sorts, so that no array is visited all over the place: by block of triangles, and then,
// each block on its own, by triangle.

namespace Tessary {
namespace {

constexpr uint kBlockBits = 12;  // the cursors of a block stay in the nearest cache
constexpr uint kTrianglesPerBlock = 1u << kBlockBits;
constexpr std::size_t kCandidatesPerPiece = 65536;

class Grouping {
public:
    Grouping(const Array<uint>& triangleOf, const Array<unsigned char>& isRejected,
             uint triangleCount)
        : m_triangleOf(triangleOf), m_isRejected(isRejected), m_triangleCount(triangleCount)
    {}

    TriangleGroups run()
    {
        sortIntoBlocks();
        m_groups.offsets = makeMutable<Array<uint>>(std::size_t{m_triangleCount} + 1);
        m_groups.order.resize(m_byBlock.size());
        parallelLoop(0, blockCount(), 1, LoopContext::Bound, [this](uint begin, uint end) {
            std::vector<uint> cursors;
            for (uint block = begin; block < end; ++block)
                sortBlock(block, cursors);
        });
        m_groups.offsets->data()[m_triangleCount] = static_cast<uint>(m_byBlock.size());
        return std::move(m_groups);
    }

private:
    struct Survivor {
        uint triangle;
        uint candidate;
    };

    uint blockCount() const
    {
        return static_cast<uint>((std::uint64_t{m_triangleCount} + kTrianglesPerBlock - 1) >>
                                 kBlockBits);
    }

    template <class Visit>
    void forEachSurvivor(Range candidates, const Visit& visit) const
    {
        for (std::size_t k = std::max<std::size_t>(candidates.begin, 1); k < candidates.end; ++k)
            if (m_isRejected.empty() || !m_isRejected[k])
                visit(Survivor{m_triangleOf[k], static_cast<uint>(k)});
    }

    void sortIntoBlocks();
    void sortBlock(uint block, std::vector<uint>& cursors);

    const Array<uint>& m_triangleOf;
    const Array<unsigned char>& m_isRejected;
    const uint m_triangleCount;
    Array<Survivor> m_byBlock;
    std::vector<uint> m_blockEnds;
    TriangleGroups m_groups;
};

void Grouping::sortIntoBlocks()
{
    const std::size_t size = m_triangleOf.size();
    const auto pieces = static_cast<uint>(
        std::min<std::size_t>(4 * std::size_t{loopConcurrency()}, 1 + size / kCandidatesPerPiece));
    CountingSort sort(pieces, blockCount());
    parallelForEachPiece(pieces, LoopContext::Bound, [&](uint piece) {
        uint* const counts = sort.counters(piece);
        forEachSurvivor(partOf(size, piece, pieces), [counts](const Survivor& survivor) {
            ++counts[survivor.triangle >> kBlockBits];
        });
    });
    m_byBlock.resize(sort.exclusiveScan());
    parallelForEachPiece(pieces, LoopContext::Bound, [&](uint piece) {
        uint* const cursors = sort.counters(piece);
        Survivor* const out = m_byBlock.data();
        forEachSurvivor(partOf(size, piece, pieces), [cursors, out](const Survivor& survivor) {
            out[cursors[survivor.triangle >> kBlockBits]++] = survivor;
        });
    });
    m_blockEnds.assign(sort.binEnds(), sort.binEnds() + sort.binCount());
}

void Grouping::sortBlock(uint block, std::vector<uint>& cursors)
{
    const uint firstTriangle = block << kBlockBits;
    const uint triangles = std::min(kTrianglesPerBlock, m_triangleCount - firstTriangle);
    const uint begin = block == 0 ? 0 : m_blockEnds[block - 1];
    const Survivor* const first = m_byBlock.data() + begin;
    const Survivor* const last = m_byBlock.data() + m_blockEnds[block];

    cursors.assign(triangles, 0);
    for (const Survivor* s = first; s < last; ++s)
        ++cursors[s->triangle - firstTriangle];
    exclusiveScan(cursors.data(), cursors.size());
    for (uint t = 0; t < triangles; ++t)
        (*m_groups.offsets)[firstTriangle + t] = begin + cursors[t];
    for (const Survivor* s = first; s < last; ++s)
        m_groups.order[begin + cursors[s->triangle - firstTriangle]++] = s->candidate;
}

}  // namespace

TriangleGroups groupByTriangle(const Array<uint>& triangleOf,
                               const Array<unsigned char>& isRejected, uint triangleCount)
{
    return Grouping(triangleOf, isRejected, triangleCount).run();
}

}  // namespace Tessary
