#include <TessaryMesh/Check.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "check/EdgePlaces.h"
#include "check/PolygonEdges.h"

#include <utility>

namespace TessaryMesh {
namespace {

// Sets of numbers that are merged, halving the paths to their names on the way.
class Sets {
public:
    explicit Sets(std::size_t count) : m_parent(count)
    {
        for (std::size_t i = 0; i < count; ++i)
            m_parent[i] = static_cast<uint>(i);
    }

    bool isName(uint i) const { return m_parent[i] == i; }

    // The smaller name stays.
    void merge(uint a, uint b)
    {
        a = find(a);
        b = find(b);
        m_parent[std::max(a, b)] = std::min(a, b);
    }

private:
    uint find(uint i)
    {
        while (m_parent[i] != i)
            i = m_parent[i] = m_parent[m_parent[i]];
        return i;
    }

    Array<uint> m_parent;
};

class Measurement {
public:
    explicit Measurement(const PolygonEdges& edges)
        : m_edges(edges),
          m_places(edges),
          m_valence(edges.pointCount()),
          m_pieces(edges.pointCount()),
          m_fans(edges.faceVertex().size())
    {}

    MeshShape measure()
    {
        m_edges.forEach([this](const PolygonEdge& edge) { add(edge); });
        countPoints();
        m_shape.sameDirection = m_places.sameDirection();
        m_shape.nonManifold = m_places.nonManifold();
        m_shape.isClosed = m_shape.edges > 0 && m_shape.boundaryEdges == 0;
        m_shape.genus = genus();
        return std::move(m_shape);
    }

private:
    void add(const PolygonEdge& edge)
    {
        m_places.add(edge);
        for (const EdgeSide* side = edge.first; side != edge.last; ++side)
            joinFans(edge, *side);
        if (edge.isLoop())
            return;
        ++m_shape.edges;
        m_shape.boundaryEdges += edge.faceCount() == 1 ? 1 : 0;
        ++m_valence[edge.smaller];
        ++m_valence[edge.larger];
        m_pieces.merge(edge.smaller, edge.larger);
    }

    // Corners of one point belong together where their faces share an edge.
    void joinFans(const PolygonEdge& edge, const EdgeSide& side)
    {
        const EdgeSide& first = *edge.first;
        const uint start = side.corner, end = m_edges.next(start);
        const uint firstStart = first.corner, firstEnd = m_edges.next(firstStart);
        if (edge.isLoop())
            m_fans.merge(start, end);
        const bool opposite = side.isDescending != first.isDescending;
        m_fans.merge(start, opposite ? firstEnd : firstStart);
        m_fans.merge(end, opposite ? firstStart : firstEnd);
    }

    void countPoints()
    {
        const Array<uint>& corners = m_edges.faceVertex();
        Array<uint> fans(m_edges.pointCount());
        for (uint corner = 0; corner < corners.size(); ++corner)
            if (m_fans.isName(corner))
                ++fans[corners[corner]];
        m_shape.least = ~std::uint64_t{0};
        for (uint point = 0; point < fans.size(); ++point) {
            if (fans[point] == 0) {
                ++m_shape.unusedPoints;
                continue;
            }
            m_shape.nonManifoldPoints += fans[point] > 1 ? 1 : 0;
            m_shape.components += m_pieces.isName(point) ? 1 : 0;
            m_shape.least = std::min<std::uint64_t>(m_shape.least, m_valence[point]);
            m_shape.most = std::max<std::uint64_t>(m_shape.most, m_valence[point]);
        }
        const std::uint64_t used = fans.size() - m_shape.unusedPoints;
        m_shape.least = used == 0 ? 0 : m_shape.least;
        m_shape.eulerCharacteristic =
            static_cast<std::int64_t>(used + m_edges.faceCount() - m_shape.edges);
    }

    // Each component has the characteristic 2 - 2 * genus.
    std::optional<std::uint64_t> genus() const
    {
        const bool isManifold = m_shape.nonManifold.count == 0 && m_shape.nonManifoldPoints == 0;
        const std::int64_t twice =
            2 * static_cast<std::int64_t>(m_shape.components) - m_shape.eulerCharacteristic;
        if (!m_shape.isClosed || !isManifold || m_shape.sameDirection.count > 0 || twice < 0 ||
            twice % 2 != 0)
            return std::nullopt;
        return static_cast<std::uint64_t>(twice / 2);
    }

    const PolygonEdges& m_edges;
    EdgePlaces m_places;
    Array<uint> m_valence;
    Sets m_pieces;  // of points
    Sets m_fans;    // of corners
    MeshShape m_shape;
};

}  // namespace

MeshShape shapeOf(const Object& mesh)
{
    return guarded([&] {
        const PolygonEdges edges(mesh);
        return Measurement(edges).measure();
    });
}

}  // namespace TessaryMesh
