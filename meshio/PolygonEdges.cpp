#include <meshio/PolygonEdges.h>

#include <Korvane/Geometry.h>

namespace MeshIo {
namespace {

using Korvane::Object;
using Pelon::Array;
using Pelon::Ptr;
using Pelon::String;
using Pelon::uint;
namespace Geometry = Korvane::Geometry;

Array<uint> arrayOrEmpty(const Object& mesh, const String& name)
{
    const Ptr<Array<uint>> array = Geometry::dataArray<uint>(mesh, name);
    return array ? *array : Array<uint>();
}

Array<uint> nextCorners(const Array<uint>& faceOffset, std::size_t cornerCount)
{
    Array<uint> next(cornerCount);
    for (std::size_t face = 1; face < faceOffset.size(); ++face) {
        const uint first = faceOffset[face - 1], end = faceOffset[face];
        for (uint corner = first; corner < end; ++corner)
            next[corner] = corner + 1 < end ? corner + 1 : first;
    }
    return next;
}

}  // namespace

PolygonEdges::PolygonEdges(const Object& mesh)
    : m_faceOffset(arrayOrEmpty(mesh, Geometry::sFaceOffset)),
      m_faceVertex(arrayOrEmpty(mesh, Geometry::sFaceVertex)),
      m_next(nextCorners(m_faceOffset, m_faceVertex.size())),
      m_sideOffset(std::size_t{Geometry::getElementCount(mesh, Geometry::sPointComp)} + 1),
      m_side(m_faceVertex.size())
{
    const std::size_t corners = m_faceVertex.size();
    const auto larger = [this](std::size_t corner) {
        return std::max(m_faceVertex[corner], m_faceVertex[m_next[corner]]);
    };
    for (std::size_t corner = 0; corner < corners; ++corner)
        ++m_sideOffset[larger(corner)];
    for (std::size_t point = 1; point < m_sideOffset.size(); ++point)
        m_sideOffset[point] += m_sideOffset[point - 1];
    // From the back, every end becomes its list's beginning.
    for (std::size_t corner = corners; corner-- > 0;)
        m_side[--m_sideOffset[larger(corner)]] = static_cast<uint>(corner);
}

std::string PolygonEdges::cornerName(uint corner) const
{
    const auto next = std::upper_bound(m_faceOffset.begin(), m_faceOffset.end(), corner);
    return "corner " + std::to_string(corner) + " of face " +
           std::to_string(next - m_faceOffset.begin() - 1);
}

void PolygonEdges::sidesOf(uint larger, std::vector<EdgeSide>& sides) const
{
    sides.clear();
    for (uint slot = m_sideOffset[larger]; slot < m_sideOffset[std::size_t{larger} + 1]; ++slot) {
        const uint corner = m_side[slot];
        const uint start = m_faceVertex[corner], end = m_faceVertex[m_next[corner]];
        sides.push_back({std::min(start, end), corner, start == larger});
    }
    std::sort(sides.begin(), sides.end());
}

}  // namespace MeshIo
