#include "cutmesh/NewIndices.h"

#include <Tessary/Topology.h>

#include "base/Assert.h"
#include "base/MeshLayout.h"
#include "cutmesh/PolygonNeighbours.h"
#include "properties/OutputProperty.h"

namespace Tessary {
namespace {

MutablePtr<Array<uint>> unsetIndices(const CutMesh& cut, const String& component)
{
    return filledArray<uint>(Geometry::getElementCount(cut.target, component), kNone);
}

// Numbers the values at the corners of the quads, triangle by triangle: at the fan's corners as in the
// source, everywhere else with new numbers in the order of the slots in which they are first needed.
//
//            x2               e01    the fan's last diagonal, or an edge of the polygon
//           .  .              centre always new
//       e20      e12          e20    the fan's next diagonal, or an edge of the polygon
//        .  centre  .         e12    an edge of the polygon: the neighbour's number where it has one
//     x0 --- e01 --- x1
class CornerNumbering {
public:
    CornerNumbering(const Array<uint>& sourceIndices, const Array<uint>& neighbours,
                    uint valueCount, NewIndices& out)
        : m_source(sourceIndices.data()),
          m_neighbours(neighbours.data()),
          m_valueCount(valueCount),
          m_slots(out.indices->data()),
          m_slotCount(out.indices->size()),
          m_appended(out.appended)
    {}

    void addFan(Fan fan)
    {
        TESSARY_ASSERT(std::size_t{12} * fan.end <= m_slotCount,
                       "target corner " << 12 * fan.end << " of " << m_slotCount);
        for (uint triangle = fan.begin; triangle < fan.end; ++triangle) {
            const uint middle = fan.firstCorner + (triangle - fan.begin) + 1;
            const uint corner = 3 * triangle;
            const uint points[3] = {m_source[fan.firstCorner], m_source[middle],
                                    m_source[middle + 1]};
            const uint e01 = triangle > fan.begin ? m_diagonal : edgeIndex(corner);
            const uint centre = append(corner, CutKind::InTriangle);
            const uint e20 = triangle + 1 < fan.end ? append(corner + 2, CutKind::OnLeavingEdge)
                                                    : edgeIndex(corner + 2);
            const uint e12 = edgeIndex(corner + 1);
            m_diagonal = e20;
            setQuad(corner, {points[0], e01, centre, e20});
            setQuad(corner + 1, {points[1], e12, centre, e01});
            setQuad(corner + 2, {points[2], e20, centre, e12});
        }
    }

private:
    struct Quad {
        uint corner, leaving, inner, arriving;
    };

    void setQuad(uint corner, Quad quad)
    {
        uint* const slots = m_slots + std::size_t{4} * corner;
        slots[0] = quad.corner;
        slots[1] = quad.leaving;
        slots[2] = quad.inner;
        slots[3] = quad.arriving;
    }

    // The index at the edge of a polygon that leaves `corner`: the neighbour's if it has one yet.
    uint edgeIndex(uint corner)
    {
        const uint opposite = m_neighbours[corner];
        const uint shared = opposite == kNone ? kNone : m_slots[std::size_t{4} * opposite + 1];
        return shared != kNone ? shared : append(corner, CutKind::OnLeavingEdge);
    }

    uint append(uint corner, CutKind kind)
    {
        m_appended.push_back(originCode(corner, kind));
        return m_valueCount + static_cast<uint>(m_appended.size() - 1);
    }

    const uint* m_source;
    const uint* m_neighbours;
    const uint m_valueCount;
    uint* m_slots;
    [[maybe_unused]] const std::size_t m_slotCount;
    Array<uint>& m_appended;
    uint m_diagonal = kNone;  // the index at the edge that the fan's next triangle begins with
};

}  // namespace

NewIndices pointIndices(const CutMesh& cut, const Array<uint>& sourceIndices, uint valueCount)
{
    NewIndices out{unsetIndices(cut, Geometry::sPointComp), {}};
    for (uint point = 0; point < out.indices->size(); ++point) {
        const uint code = cut.originOf(point);
        if (kindOf(code) == CutKind::AtCorner) {
            (*out.indices)[point] = sourceIndices[(*cut.cornerPoint)[cornerOf(code)]];
        } else {
            (*out.indices)[point] = valueCount + static_cast<uint>(out.appended.size());
            out.appended.push_back(code);
        }
    }
    return out;
}

NewIndices cornerIndices(CutMesh& cut, const Array<uint>& sourceIndices, uint valueCount)
{
    NewIndices out{unsetIndices(cut, Geometry::sFaceVertexComp), {}};
    if (!cut.neighbours)
        cut.neighbours =
            polygonNeighbours(*cut.faceOffset, *cut.cornerPoint, *cut.dualOffset, *cut.dualCorner);
    CornerNumbering numbering(sourceIndices, *cut.neighbours, valueCount, out);
    for (uint face = 0; face + 1 < cut.faceOffset->size(); ++face)
        numbering.addFan(fanOf(cut.faceOffset->data(), face));
    return out;
}

NewIndices faceIndices(const CutMesh& cut, const Array<uint>& sourceIndices)
{
    NewIndices out{unsetIndices(cut, Geometry::sFaceComp), {}};
    quadFaceIndexedInterpolation(*cut.faceOffset, sourceIndices, *out.indices);
    return out;
}

}  // namespace Tessary
