#include "check/PolygonEdges.h"

#include "base/Host.h"
#include "base/MeshArrays.h"

namespace TessaryMesh {
namespace {

Array<uint> nextCorners(const Array<uint>& faceOffset)
{
    constexpr std::size_t kFaces = 1 << 16;
    Array<uint> next(faceOffset[faceOffset.size() - 1]);
    forEachRange(faceOffset.size() - 1, kFaces, [&](std::size_t begin, std::size_t end) {
        for (std::size_t face = begin; face < end; ++face) {
            const uint first = faceOffset[face], last = faceOffset[face + 1];
            for (uint corner = first; corner < last; ++corner)
                next[corner] = corner + 1 < last ? corner + 1 : first;
        }
    });
    return next;
}

}  // namespace

PolygonEdges::PolygonEdges(const Object& mesh)
    : PolygonEdges(MeshArrays(mesh).faceOffset, MeshArrays(mesh).faceVertex,
                   Geometry::getElementCount(mesh, Geometry::sPointComp))
{}

PolygonEdges::PolygonEdges(Ptr<Array<uint>> faceOffset, Ptr<Array<uint>> faceVertex,
                           std::size_t pointCount)
    : m_faceOffset(std::move(faceOffset)),
      m_faceVertex(std::move(faceVertex)),
      m_next(nextCorners(*m_faceOffset)),
      m_sideOffset(pointCount + 1),
      m_side(m_next.size())
{
    const Array<uint>& points = *m_faceVertex;
    const auto larger = [&](std::size_t corner) {
        return std::max(points[corner], points[m_next[corner]]);
    };
    for (std::size_t corner = 0; corner < m_next.size(); ++corner)
        ++m_sideOffset[larger(corner)];
    for (std::size_t point = 1; point < m_sideOffset.size(); ++point)
        m_sideOffset[point] += m_sideOffset[point - 1];
    // From the back, every end becomes its list's beginning.
    for (std::size_t corner = m_next.size(); corner-- > 0;)
        m_side[--m_sideOffset[larger(corner)]] = static_cast<uint>(corner);
}

std::string PolygonEdges::cornerName(uint corner) const
{
    const auto next = std::upper_bound(m_faceOffset->begin(), m_faceOffset->end(), corner);
    return "corner " + std::to_string(corner) + " of face " +
           std::to_string(next - m_faceOffset->begin() - 1);
}

void PolygonEdges::sidesOf(uint larger, std::vector<EdgeSide>& sides) const
{
    sides.clear();
    for (uint slot = m_sideOffset[larger]; slot < m_sideOffset[std::size_t{larger} + 1]; ++slot) {
        const uint corner = m_side[slot];
        const uint start = (*m_faceVertex)[corner], end = (*m_faceVertex)[m_next[corner]];
        sides.push_back({std::min(start, end), corner, start == larger});
    }
    std::sort(sides.begin(), sides.end());
}

}  // namespace TessaryMesh
