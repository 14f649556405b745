#include <Tessary/Topology.h>

#include "base/Assert.h"
#include "base/CountingSort.h"
#include "base/MeshLayout.h"
#include "base/ParallelReduce.h"
#include "base/PropertyAccess.h"
#include "base/ReadAhead.h"
#include "topology/DualLists.h"

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
// That takes arrays as addDual prepares them; in any others, corners go to the first slot of their
// point's range that is free.

namespace Tessary {
namespace {

// Whether the arrays can be such as addDual makes them: offsets zero, a slot for every corner.
bool canBePrepared(const Array<uint>& faceVertex, const Array<uint>& dualFaceOffset,
                   const Array<uint>& dualFaceVertex)
{
    const uint* const offset = dualFaceOffset.data();
    return faceVertex.size() < kNone && dualFaceVertex.size() >= faceVertex.size() &&
           !parallelAny(dualFaceOffset.size(), [offset](std::size_t i) { return offset[i] != 0; });
}

// What the caller owes. Nothing in a release.
void assertPointsExist([[maybe_unused]] const DualLists& lists)
{
    for ([[maybe_unused]] std::size_t corner = 0; corner < lists.cornerCount; ++corner)
        TESSARY_ASSERT(lists.faceVertex[corner] < lists.pointCount,
                       "corner " << corner << " names point " << lists.faceVertex[corner] << " of "
                                 << lists.pointCount);
}

bool listSerially(const DualLists& lists)
{
    const Range corners{0, lists.cornerCount};
    const bool areFree = countAndProve(lists, corners);
    if (areFree) {
        exclusiveScan(lists.cursors, lists.pointCount);
        listCorners(lists, corners);
    } else {
        std::fill_n(lists.cursors, lists.pointCount, 0u);
    }
    return areFree;
}

bool makeLists(const DualLists& lists)
{
    // Beside a plain serial counting sort, a natural torus of 100,000 triangles takes 0.7 of its time in
    // windows; a shuffled one 1.0 serially and 0.8 to 1.5 in blocks, which pay where caches end: of 1 M
    // triangles, 0.4.
    constexpr std::size_t kFewCorners = 1 << 17;
    constexpr std::size_t kManyCorners = 1 << 20;
    if (lists.cornerCount < kFewCorners)
        return listSerially(lists);
    if (isInPointOrder(lists))
        return loopConcurrency() > 1 ? listInWindows(lists) : listSerially(lists);
    return lists.cornerCount < kManyCorners ? listSerially(lists) : listInBlocks(lists);
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

bool countAndProve(const DualLists& lists, Range corners)
{
    return visitAndProve(lists, corners,
                         [counts = lists.cursors](std::size_t, uint point) { ++counts[point]; });
}

void listCorners(const DualLists& lists, Range corners)
{
    forEachReadAhead(
        lists.faceVertex, corners,
        [cursors = lists.cursors, slots = lists.slots](uint point, std::size_t corner) {
            slots[cursors[point]++] = static_cast<uint>(corner);
        });
}

void constructDualMesh(const Array<uint>& faceVertex, Array<uint>& dualFaceOffset,
                       Array<uint>& dualFaceVertex)
{
    if (dualFaceOffset.empty())
        return;
    const DualLists lists{faceVertex.data(), faceVertex.size(), dualFaceOffset.data() + 1,
                          dualFaceOffset.size() - 1, dualFaceVertex.data()};
    assertPointsExist(lists);
    if (canBePrepared(faceVertex, dualFaceOffset, dualFaceVertex) && makeLists(lists))
        return;
    for (const uint point : faceVertex)
        ++lists.cursors[point];
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
