#include "topology/EdgeBlocks.h"

#include "base/MeshLayout.h"
#include "base/ParallelLoop.h"

#include <algorithm>

//   table       | a a b | c c | d e e |            b and d have no partner
//   shift         0       1     1        2         the number of singles before each block
//   expanded    | a a b - | c c | d - e e |
//
// The last blocks move first. A round takes as many as land beyond everything that is still to be
// moved, and moves them in parallel.

namespace Tessary {
namespace {

void expandBlock(const std::vector<uint>& singles, std::size_t shift, uint* begin, uint* end)
{
    for (std::size_t i = singles.size(); i > 0; --i) {
        uint* const afterSingle = begin + singles[i - 1] + 1;
        std::move_backward(afterSingle, end, end + shift + i);
        afterSingle[shift + i - 1] = kNone;
        end = afterSingle;
    }
    if (shift > 0)
        std::move_backward(begin, end, end + shift);
}

}  // namespace

void expandInPlace(const EdgeBlocks& blocks, Array<uint>& table)
{
    std::vector<std::size_t> shift{0};
    for (const std::vector<uint>& singles : blocks.singles)
        shift.push_back(shift.back() + singles.size());
    table.resize(blocks.begin.back() + shift.back());
    uint* const corners = table.data();
    for (uint end = blocks.count(); shift[end] > 0;) {
        uint begin = end - 1;
        while (begin > 0 && blocks.begin[begin - 1] + shift[begin - 1] >= blocks.begin[end])
            --begin;
        parallelForEachPiece(end - begin, LoopContext::Isolated, [&, begin](uint i) {
            const uint block = begin + i;
            expandBlock(blocks.singles[block], shift[block], corners + blocks.begin[block],
                        corners + blocks.begin[block + 1]);
        });
        end = begin;
    }
}

}  // namespace Tessary
