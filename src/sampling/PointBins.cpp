#include <Tessary/Sampling.h>

#include "base/Assert.h"
#include "base/ParallelLoop.h"

#include <tbb/parallel_scan.h>
#include <tbb/parallel_sort.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <cstdint>

// Points are sorted, and a scan lists the cells and where each begins:
//
//   points       (0 0 0) (0 0 0) (0 0 1) (5 0 0)      cells, signed; equal cells by id
//   binCells     (0 0 0)         (0 0 1) (5 0 0)
//   binOffsets    0               2       3       4

namespace Tessary {
namespace {

using Cell = Korvane::Math::uint3;

bool lessSigned(uint a, uint b)
{
    return static_cast<std::int32_t>(a) < static_cast<std::int32_t>(b);
}

bool precedes(const LocalPosition& a, const LocalPosition& b)
{
    if (a.cell.x != b.cell.x)
        return lessSigned(a.cell.x, b.cell.x);
    if (a.cell.y != b.cell.y)
        return lessSigned(a.cell.y, b.cell.y);
    if (a.cell.z != b.cell.z)
        return lessSigned(a.cell.z, b.cell.z);
    return a.id() < b.id();
}

// Neither the sort nor the scan takes a context: they inherit this one, so that a caller whose own
// work is being cancelled still gets all of theirs.
template <class Work>
void runIsolated(const Work& work)
{
    tbb::task_group_context context(tbb::task_group_context::isolated);
    tbb::task_group group(context);
    group.run_and_wait(work);
}

}  // namespace

template class DedupBody<Cell, unsigned int, CellOfPoint, EmitCell>;
template class DedupBody<Cell, unsigned int, CellOfPoint, EmitCellAndOffset>;

void PointBins::sortDedup()
{
    const std::size_t n = std::min<std::size_t>(points.capacity(), points.size());
    TESSARY_ASSERT(n <= 0xFFFFFFFF, n << " points");
    const auto end = points.begin() + static_cast<std::ptrdiff_t>(n);
    const bool areFew = n <= kFewIndices;
    if (areFew)
        std::sort(points.begin(), end, precedes);
    else
        runIsolated([&] { tbb::parallel_sort(points.begin(), end, precedes); });

    binCells.resize(n);
    binOffsets.resize(n + 1);
    DedupBody<Cell, unsigned int, CellOfPoint, EmitCellAndOffset> body(
        {&points}, {binCells.data(), binOffsets.data()});
    const tbb::blocked_range<uint> all(0, static_cast<uint>(n));
    if (!areFew)
        runIsolated([&] { tbb::parallel_scan(all, body, tbb::auto_partitioner()); });
    else if (n > 0)
        body(all, tbb::final_scan_tag());

    const std::size_t binCount = body.count();
    binCells.resize(binCount);
    if (binCount > 0)
        binOffsets[binCount] = static_cast<uint>(n);
    binOffsets.resize(binCount > 0 ? binCount + 1 : 0);
}

}  // namespace Tessary
