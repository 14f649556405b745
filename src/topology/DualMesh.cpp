#include <Tessary/Topology.h>

#include "host/Assert.h"
#include "host/MeshLayout.h"
#include "host/PropertyAccess.h"

#include <algorithm>
#include <vector>

namespace Tessary {
namespace {

// Whether the arrays arrive as addDual makes them: offsets zero, a free slot for every corner.
bool arePrepared(const Array<uint>& faceVertex, const Array<uint>& dualFaceOffset,
                 const Array<uint>& dualFaceVertex)
{
    const std::size_t cornerCount = faceVertex.size();
    if (dualFaceOffset.empty() || cornerCount >= kNone || dualFaceVertex.size() < cornerCount)
        return false;
    uint nonZero = 0;
    for (const uint offset : dualFaceOffset)
        nonZero |= offset;
    uint taken = 0;
    for (std::size_t slot = 0; slot < cornerCount; ++slot)
        taken |= ~dualFaceVertex[slot];
    return (nonZero | taken) == 0;
}

void countCorners(const Array<uint>& faceVertex, Array<uint>& dualFaceOffset)
{
    [[maybe_unused]] const std::size_t pointCount = dualFaceOffset.size() - 1;
    for (const uint& corner : faceVertex) {
        const std::size_t point = corner;
        TESSARY_ASSERT(point < pointCount, "corner " << &corner - faceVertex.data()
                                                     << " names point " << point << " of "
                                                     << pointCount);
        ++dualFaceOffset[point + 1];
    }
}

void sumUp(Array<uint>& offsets)
{
    uint sum = 0;
    for (uint& offset : offsets)
        offset = sum += offset;
}

// Lists the corners with the offsets themselves as cursors, and shifts the offsets back.
void fillByOffsets(const Array<uint>& faceVertex, Array<uint>& dualFaceOffset,
                   Array<uint>& dualFaceVertex)
{
    const uint cornerCount = static_cast<uint>(faceVertex.size());
    const uint* const points = faceVertex.data();
    uint* const cursors = dualFaceOffset.data();
    uint* const slots = dualFaceVertex.data();
    for (uint corner = 0; corner < cornerCount; ++corner)
        slots[cursors[points[corner]]++] = corner;

    // Every cursor has reached the start of the next point's list.
    std::copy_backward(dualFaceOffset.begin(), dualFaceOffset.end() - 1, dualFaceOffset.end());
    dualFaceOffset[0] = 0;
}

// Finds free slots as a search from any start would, in near constant time: every slot knows one at
// or after it, up to the first free one, and each look shortens the way of the next.
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

    /// The first free slot from `slot` on; past the end of the array where there is none.
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

// Lists the corners, each in the first free slot of its point's range. Offsets
// that arrived filled may make ranges overlap, wrap, or reach past the array.
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
    const bool isPrepared = arePrepared(faceVertex, dualFaceOffset, dualFaceVertex);
    countCorners(faceVertex, dualFaceOffset);
    sumUp(dualFaceOffset);
    if (isPrepared)
        fillByOffsets(faceVertex, dualFaceOffset, dualFaceVertex);
    else
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
