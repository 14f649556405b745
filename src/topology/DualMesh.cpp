#include <Tessary/Topology.h>

#include "base/Assert.h"
#include "base/CountingSort.h"
#include "base/MeshLayout.h"
#include "base/ParallelReduce.h"
#include "base/PropertyAccess.h"

#include <algorithm>
#include <numeric>
#include <vector>

// A counting sort of the corners by point, with the offsets themselves as its counters:
//
//   faceVertex        2 0 2 1
//   offset        0 | 1 1 2 |       counts, one entry on
//                 0 | 0 1 2 |       exclusiveScan: cursors
//                 0 | 1 2 4 |       scattered: each cursor ends where the next list begins
//   corners       | 1 | 3 | 0 2 |
//
// In pieces on several threads, each piece has counters of its own. Both take arrays as addDual
// prepares them; in any others, corners go to the first slot of their point's range that is free.

namespace Tessary {
namespace {

// Fewer are listed as soon by one thread: waking another and clearing its cursors takes what it saves.
// Two threads list 3 M corners in 0.65 of the time of one in random order, in 0.9 in natural order.
constexpr uint kCornersPerPiece = 1 << 20;

// Whether the entries [0, size) all have one value.
bool areAll(const Array<uint>& entries, std::size_t size, uint value)
{
    const uint* const entry = entries.data();
    return !parallelAny(size, [=](std::size_t i) { return entry[i] != value; });
}

// Whether the arrays arrive as addDual makes them: offsets zero, a free slot for every corner.
bool arePrepared(const Array<uint>& faceVertex, const Array<uint>& dualFaceOffset,
                 const Array<uint>& dualFaceVertex)
{
    const std::size_t cornerCount = faceVertex.size();
    return cornerCount < kNone && dualFaceVertex.size() >= cornerCount &&
           areAll(dualFaceOffset, dualFaceOffset.size(), 0) &&
           areAll(dualFaceVertex, cornerCount, kNone);
}

void countCorners(const Array<uint>& faceVertex, Range corners,
                  [[maybe_unused]] std::size_t pointCount, uint* counts)
{
    for (std::size_t corner = corners.begin; corner < corners.end; ++corner) {
        const std::size_t point = faceVertex[corner];
        TESSARY_ASSERT(point < pointCount,
                       "corner " << corner << " names point " << point << " of " << pointCount);
        ++counts[point];
    }
}

void listCorners(const Array<uint>& faceVertex, Range corners, uint* cursors, uint* slots)
{
    for (std::size_t corner = corners.begin; corner < corners.end; ++corner)
        slots[cursors[faceVertex[corner]]++] = static_cast<uint>(corner);
}

// With the offsets themselves as cursors.
void listSerially(const Array<uint>& faceVertex, Array<uint>& dualFaceOffset,
                  Array<uint>& dualFaceVertex)
{
    const Range corners{0, faceVertex.size()};
    const std::size_t pointCount = dualFaceOffset.size() - 1;
    uint* const cursors = dualFaceOffset.data() + 1;
    countCorners(faceVertex, corners, pointCount, cursors);
    exclusiveScan(cursors, pointCount);
    listCorners(faceVertex, corners, cursors, dualFaceVertex.data());
}

void listInPieces(const Array<uint>& faceVertex, uint pieceCount, Array<uint>& dualFaceOffset,
                  Array<uint>& dualFaceVertex)
{
    const std::size_t pointCount = dualFaceOffset.size() - 1;
    CountingSort sort(pieceCount, pointCount);
    const auto cornersOf = [&](uint piece) { return partOf(faceVertex.size(), piece, pieceCount); };
    parallelForEach(pieceCount, LoopContext::Isolated, [&](uint piece) {
        countCorners(faceVertex, cornersOf(piece), pointCount, sort.counters(piece));
    });
    sort.exclusiveScan();
    parallelForEach(pieceCount, LoopContext::Isolated, [&](uint piece) {
        listCorners(faceVertex, cornersOf(piece), sort.counters(piece), dualFaceVertex.data());
    });
    std::copy_n(sort.binEnds(), pointCount, dualFaceOffset.data() + 1);
}

// As many as there are threads, where the cursors of all of them take no more than the corners.
uint pieceCountFor(std::size_t cornerCount, std::size_t pointCount)
{
    const std::size_t mostByMemory = cornerCount / std::max<std::size_t>(pointCount, 1);
    const std::size_t mostBySize = cornerCount / kCornersPerPiece;
    return static_cast<uint>(
        std::min<std::size_t>({loopConcurrency(), 8, mostByMemory, mostBySize}));
}

// Finds free slots as a search from any start would: a disjoint-set forest in which every slot points
// to itself where it is free, else to one behind it. Each search halves its path.
class FreeSlots {
public:
    explicit FreeSlots(const Array<uint>& dualFaceVertex)
        : m_next(std::min<std::size_t>(dualFaceVertex.size(), kNone - 1) + 1)
    {
        uint slot = static_cast<uint>(m_next.size()) - 1;
        m_next[slot] = slot;  // past the end: found where nothing is free
        while (slot-- > 0)
            m_next[slot] = dualFaceVertex[slot] == kNone ? slot : m_next[slot + 1];
    }

    // The first free slot from `slot` on; past the end of the array where there is none.
    uint find(uint slot)
    {
        slot = std::min(slot, static_cast<uint>(m_next.size()) - 1);
        while (m_next[slot] != slot)
            slot = m_next[slot] = m_next[m_next[slot]];
        return slot;
    }

    void take(uint slot) { m_next[slot] = slot + 1; }

    uint size() const { return static_cast<uint>(m_next.size()) - 1; }

private:
    std::vector<uint> m_next;
};

// Offsets that arrived filled may make ranges overlap, wrap, or reach past the array.
void fillBySearch(const Array<uint>& faceVertex, const Array<uint>& dualFaceOffset,
                  Array<uint>& dualFaceVertex)
{
    FreeSlots freeSlots(dualFaceVertex);
    const uint cornerCount = static_cast<uint>(faceVertex.size());
    for (uint corner = 0; corner < cornerCount; ++corner) {
        const std::size_t point = faceVertex[corner];
        const uint slot = freeSlots.find(dualFaceOffset[point]);
        if (slot < dualFaceOffset[point + 1] && slot < freeSlots.size()) {
            dualFaceVertex[slot] = corner;
            freeSlots.take(slot);
        }
    }
}

}  // namespace

void constructDualMesh(const Array<uint>& faceVertex, Array<uint>& dualFaceOffset,
                       Array<uint>& dualFaceVertex)
{
    if (dualFaceOffset.empty())
        return;
    const bool isPrepared = arePrepared(faceVertex, dualFaceOffset, dualFaceVertex);
    const std::size_t pointCount = dualFaceOffset.size() - 1;
    const uint pieceCount = pieceCountFor(faceVertex.size(), pointCount);
    if (isPrepared && pieceCount > 1) {
        listInPieces(faceVertex, pieceCount, dualFaceOffset, dualFaceVertex);
        return;
    }
    if (isPrepared) {
        listSerially(faceVertex, dualFaceOffset, dualFaceVertex);
        return;
    }
    countCorners(faceVertex, {0, faceVertex.size()}, pointCount, dualFaceOffset.data() + 1);
    std::partial_sum(dualFaceOffset.begin(), dualFaceOffset.end(), dualFaceOffset.begin());
    fillBySearch(faceVertex, dualFaceOffset, dualFaceVertex);
}

void addDual(Object& geometry, const String& pointComponent, const String& faceVertexName,
             const String& dualComponentName, const String& dualFaceVertexName,
             const String& dualFaceOffsetName)
{
    const Ptr<Array<uint>> faceVertex = getDataArray<uint>(geometry, faceVertexName);
    if (!faceVertex)
        return;
    const uint pointCount = Geometry::getElementCount(geometry, pointComponent);
    const MutablePtr<Array<uint>> dualFaceOffset = addDataArray<uint>(
        faceVertexName, dualFaceOffsetName, std::uint64_t{pointCount} + 1, 0, geometry);

    const std::size_t cornerCount = faceVertex->size();
    const MutablePtr<Object> component = Korvane::createObject();
    Geometry::populateComponentGeoProperty(static_cast<uint>(cornerCount), *component);
    if (!dualComponentName.empty())
        geometry.setProperty(dualComponentName, component);

    const MutablePtr<Array<uint>> dualFaceVertex =
        addDataArray<uint>(dualComponentName, dualFaceVertexName, cornerCount, kNone, geometry);
    constructDualMesh(*faceVertex, *dualFaceOffset, *dualFaceVertex);
}

}  // namespace Tessary
