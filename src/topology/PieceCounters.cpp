#include "topology/PieceCounters.h"

#include "base/ParallelLoop.h"

#include <numeric>
#include <utility>
#include <vector>

namespace Tessary {

void PieceCounters::turnIntoStarts()
{
    constexpr std::size_t kBinsPerBlock = 4096;
    const auto blockCount = static_cast<uint>((m_binCount + kBinsPerBlock - 1) / kBinsPerBlock);
    std::vector<uint> blockBegin(std::size_t{blockCount} + 1);
    parallelForEach(blockCount, LoopContext::Isolated, [&](uint block) {
        const Range bins = partOf(m_binCount, block, blockCount);
        uint sum = 0;
        for (uint piece = 0; piece < m_pieceCount; ++piece)
            sum = std::accumulate(of(piece) + bins.begin, of(piece) + bins.end, sum);
        blockBegin[block + 1] = sum;
    });
    std::partial_sum(blockBegin.begin(), blockBegin.end(), blockBegin.begin());
    parallelForEach(blockCount, LoopContext::Isolated, [&](uint block) {
        const Range bins = partOf(m_binCount, block, blockCount);
        uint sum = blockBegin[block];
        for (std::size_t bin = bins.begin; bin < bins.end; ++bin)
            for (uint piece = 0; piece < m_pieceCount; ++piece)
                sum += std::exchange(of(piece)[bin], sum);
    });
}

}  // namespace Tessary
