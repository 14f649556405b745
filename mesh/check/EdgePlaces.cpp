#include "check/EdgePlaces.h"

#include <Tessary/HalfEdge.h>
#include <TessaryMesh/Check.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MeshArrays.h"
#include "check/EdgeReport.h"

#include <limits>

namespace TessaryMesh {
namespace {

using Element = Problem::Element;

constexpr std::size_t kMostSides = 4;  // of one edge

std::string edgeName(uint a, uint b)
{
    return "edge " + str(std::min(a, b)) + "-" + str(std::max(a, b));
}

std::string sidesText(const PolygonEdges& edges, const PolygonEdge& edge)
{
    std::string text = edgeName(edge.smaller, edge.larger) + ": ";
    const std::size_t shown = std::min(edge.faceCount(), kMostSides);
    for (std::size_t k = 0; k < shown; ++k)
        text += (k > 0 ? ", " : "") + edges.cornerName(edge.first[k].corner);
    const std::size_t more = edge.faceCount() - shown;
    return text + (more > 0 ? " and " + str(more) + " more" : "");
}

// Where faces are triangles already there is no diagonal.
std::vector<SameDirection> sameDirectionOfTriangles(const MeshArrays& mesh)
{
    if (mesh.faceVertex->size() == 3 * mesh.faceCount())
        return {};
    return findSameDirectionEdges(fanTriangles(*mesh.faceOffset, *mesh.faceVertex),
                                  mesh.points->size(), std::numeric_limits<std::size_t>::max())
        .first;
}

Finding findDiagonals(const Object& mesh)
{
    Finding finding{Problem::Severity::Warning, "diagonal-direction",
                    "inner edges of faces split into triangles that run as another edge does",
                    "split these faces another way"};
    const MeshArrays arrays(mesh);
    for (const SameDirection& edge : sameDirectionOfTriangles(arrays)) {
        const auto side = [&arrays](uint corner) {
            return Tessary::triEdgeToPolyEdge(*arrays.faceOffset, {corner, corner / 3});
        };
        const auto one = side(edge.corner), other = side(edge.another);
        if (one.faceVertex == kNone || other.faceVertex == kNone)
            finding.add(Element::Face, one.face, [&] {
                return edgeName(edge.start, edge.end) + ": face " + str(one.face) + " and face " +
                       str(other.face) + " run the same way";
            });
    }
    return finding;
}

}  // namespace

void EdgePlaces::add(const PolygonEdge& edge)
{
    if (const EdgeSide* const side = edge.firstSameDirection())
        m_sameDirection.add(Element::Corner, side[0].corner, [&] {
            return edgeName(edge.smaller, edge.larger) + ": " + m_edges.cornerName(side[0].corner) +
                   " and " + m_edges.cornerName(side[1].corner) + " run the same way";
        });
    if (edge.faceCount() > 2 && !edge.isLoop())
        m_nonManifold.add(Element::Corner, edge.first->corner,
                          [&] { return sidesText(m_edges, edge); });
}

void EdgePlaces::append(const EdgePlaces& later)
{
    m_sameDirection.append(later.m_sameDirection);
    m_nonManifold.append(later.m_nonManifold);
}

std::vector<Problem> edgeWarnings(const Object& mesh)
{
    return guarded([&] {
        const PolygonEdges edges(mesh);
        EdgePlaces places(edges);
        edges.gather(EdgePlaces(edges), places);
        std::vector<Problem> warnings;
        for (const Problem& problem :
             {places.sameDirection(), places.nonManifold(), findDiagonals(mesh).problem()})
            if (problem.count > 0)
                warnings.push_back(problem);
        return warnings;
    });
}

}  // namespace TessaryMesh
