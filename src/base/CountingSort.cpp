#include "base/CountingSort.h"

#include "base/ParallelLoop.h"

#include <numeric>
#include <utility>
#include <vector>

namespace Tessary {

uint exclusiveScan(uint* counts, std::size_t size)
{
    uint sum = 0;
    for (std::size_t i = 0; i < size; ++i)
        sum += std::exchange(counts[i], sum);
    return sum;
}

uint CountingSort::exclusiveScan()
{
    // In parallel for machines with many threads, whose pieces have up to 4 counters a triangle; on two
    // threads, edges of 1 M triangles take as long with a serial scan, and with blocks of 512.
    constexpr std::size_t kBinsPerBlock = 4096;
    constexpr std::size_t kFewBins = 16384;  // scanned before another thread is awake
    const auto blockCount = static_cast<uint>(
        m_binCount > kFewBins ? (m_binCount + kBinsPerBlock - 1) / kBinsPerBlock : 1);
    std::vector<uint> blockBegin(std::size_t{blockCount} + 1);
    parallelForEachPiece(blockCount, LoopContext::Isolated, [&](uint block) {
        const Range bins = partOf(m_binCount, block, blockCount);
        uint sum = 0;
        for (uint piece = 0; piece < m_pieceCount; ++piece)
            sum = std::accumulate(counters(piece) + bins.begin, counters(piece) + bins.end, sum);
        blockBegin[block] = sum;
    });
    const uint itemCount = Tessary::exclusiveScan(blockBegin.data(), blockBegin.size());
    parallelForEachPiece(blockCount, LoopContext::Isolated, [&](uint block) {
        const Range bins = partOf(m_binCount, block, blockCount);
        uint sum = blockBegin[block];
        for (std::size_t bin = bins.begin; bin < bins.end; ++bin)
            for (uint piece = 0; piece < m_pieceCount; ++piece)
                sum += std::exchange(counters(piece)[bin], sum);
    });
    return itemCount;
}

}  // namespace Tessary
