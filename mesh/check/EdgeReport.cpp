#include "check/EdgeReport.h"

#include <Tessary/HalfEdge.h>

#include "base/Host.h"
#include "check/PolygonEdges.h"
#include <TessaryMesh/Check.h>

namespace TessaryMesh {
namespace {

PolygonEdges edgesOf(const Array<uint>& triFaceVertex, std::size_t pointCount)
{
    Array<uint> offsets(triFaceVertex.size() / 3 + 1);
    for (std::size_t t = 0; t < offsets.size(); ++t)
        offsets[t] = static_cast<uint>(3 * t);
    return {makeMutable<Array<uint>>(std::move(offsets)), makeMutable<Array<uint>>(triFaceVertex),
            pointCount};
}

class SameDirections {
public:
    explicit SameDirections(std::size_t most) : m_most(most) {}

    void add(const PolygonEdge& edge)
    {
        const EdgeSide* const side = edge.firstSameDirection();
        if (!side || m_report.count++ >= m_most)
            return;
        const uint start = side->isDescending ? edge.larger : edge.smaller;
        const uint end = side->isDescending ? edge.smaller : edge.larger;
        m_report.first.push_back({start, end, side[0].corner, side[1].corner});
    }

    void append(const SameDirections& later)
    {
        m_report.count += later.m_report.count;
        for (const SameDirection& edge : later.m_report.first)
            if (m_report.first.size() < m_most)
                m_report.first.push_back(edge);
    }

    const EdgeReport& report() const { return m_report; }

private:
    std::size_t m_most;
    EdgeReport m_report;
};

std::string placeOf(const Array<uint>& faceOffset, const SameDirection& edge)
{
    const auto faceOf = [&faceOffset](uint corner) {
        return std::to_string(Tessary::triEdgeToPolyEdge(faceOffset, {corner, corner / 3}).face);
    };
    return "points " + std::to_string(edge.start) + " to " + std::to_string(edge.end) +
           " of faces " + faceOf(edge.corner) + " and " + faceOf(edge.another);
}

}  // namespace

EdgeReport findSameDirectionEdges(const Array<uint>& triFaceVertex, std::size_t pointCount,
                                  std::size_t most)
{
    SameDirections found(most);
    edgesOf(triFaceVertex, pointCount).gather(found, found);
    return found.report();
}

void rejectSameDirection(const Array<uint>& faceOffset, const EdgeReport& report)
{
    if (report.count == 0)
        return;
    std::string places;
    for (const SameDirection& edge : report.first)
        places += (places.empty() ? "" : ", ") + placeOf(faceOffset, edge);
    throw InvalidMesh(Problem{Problem::Severity::Error,
                              "same-direction",
                              "edges along which two faces run in one direction",
                              report.count,
                              {{places, Problem::Element::Corner, report.first.front().corner}},
                              "turn one of the faces round or give it points of its own"});
}

Array<uint> separatedTriEdges(const Array<uint>& triFaceVertex, std::size_t pointCount)
{
    Array<uint> edges;
    edgesOf(triFaceVertex, pointCount).forEach([&edges](const PolygonEdge& edge) {
        for (const EdgeSide* side = edge.first; side != edge.last; ++side) {
            const bool isPair =
                edge.last - side >= 2 && side[0].isDescending != side[1].isDescending;
            edges.push_back(side->corner);
            if (isPair)
                ++side;
            edges.push_back(isPair ? side->corner : kNone);
        }
    });
    return edges;
}

}  // namespace TessaryMesh
