#include "DemoKernels.h"

#include <Korvane/Geometry.h>
#include <Tessary/Tessary.h>
#include <TessaryMesh/Errors.h>

#include <stdexcept>

namespace Cli {
namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using Pelon::Array;
using Pelon::uint;
using Tessary::HalfEdge;

constexpr uint kNone = 0xFFFFFFFF;

// A closed mesh as the half-edge functions see it: its polygons, its triangles and their dual.
struct Views {
    Pelon::Ptr<Array<uint>> faceOffset, faceVertex;
    Array<uint> triFaceOffset, triFaceVertex;
    Array<uint> dualFaceOffset, dualFaceVertex;
    Array<uint> triEdges, adjacentTri;
};

std::string triangulateViews(const Object& mesh, Views& views)
{
    views.faceOffset = dataArray<uint>(mesh, sFaceOffset);
    views.faceVertex = dataArray<uint>(mesh, sFaceVertex);
    const bool done = Tessary::computeTriangulation(*views.faceOffset, *views.faceVertex,
                                                    views.triFaceOffset, views.triFaceVertex);
    if (!done)
        throw std::runtime_error("computeTriangulation failed on the demo mesh");
    return std::to_string(views.triFaceVertex.size() / 3) + " triangles";
}

std::string dualOfTriangles(const Object& mesh, Views& views)
{
    views.dualFaceOffset = Array<uint>(std::size_t{getElementCount(mesh, sPointComp)} + 1, 0u);
    views.dualFaceVertex = Array<uint>(views.triFaceVertex.size(), kNone);
    Tessary::constructDualMesh(views.triFaceVertex, views.dualFaceOffset, views.dualFaceVertex);
    return std::to_string(views.dualFaceVertex.size()) + " triangle corners listed by point";
}

std::string dualOfPolygons(const Object& mesh)
{
    Object copy = mesh;
    Tessary::addDual(copy, sPointComp, sFaceVertex, "dual_component", "dual_face_vertex",
                     "dual_face_offset");
    return std::to_string(getElementCount(copy, "dual_component")) +
           " polygon corners listed by point";
}

// Every edge of a polygon has to survive the way into the triangle view and back, and on a closed
// mesh it has a neighbour whose neighbour it is itself.
bool isConsistent(const Views& views, HalfEdge polyEdge)
{
    const HalfEdge edge = Tessary::polyEdgeToTriEdge(*views.faceOffset, polyEdge);
    const HalfEdge back = Tessary::triEdgeToPolyEdge(*views.faceOffset, edge);
    const auto neighbour = [&views](HalfEdge of) {
        return Tessary::findAdjacentHalfEdge(views.triFaceVertex, views.dualFaceOffset,
                                             views.dualFaceVertex, of);
    };
    const HalfEdge twin = neighbour(edge);
    return back.faceVertex == polyEdge.faceVertex && back.face == polyEdge.face &&
           views.triFaceVertex[edge.faceVertex] == (*views.faceVertex)[polyEdge.faceVertex] &&
           twin.faceVertex != kNone && neighbour(twin).faceVertex == edge.faceVertex;
}

std::string checkHalfEdges(const Views& views, std::size_t& wrong)
{
    const Array<uint>& offset = *views.faceOffset;
    for (uint face = 0; face + 1 < offset.size(); ++face) {
        TessaryMesh::throwIfCancelled();
        for (uint corner = offset[face]; corner < offset[face + 1]; ++corner)
            wrong += isConsistent(views, {corner, face}) ? 0 : 1;
    }
    return std::to_string(views.faceVertex->size()) + " half-edges there and back, " +
           std::to_string(wrong) + " wrong";
}

// On a closed mesh every edge has two half-edges, each of which names the other's triangle.
std::string checkAdjacency(Views& views, std::size_t& wrong)
{
    Tessary::populateAdjacentTri(views.triFaceVertex, views.dualFaceOffset, views.dualFaceVertex,
                                 views.adjacentTri);
    std::size_t different = views.triEdges.size() == views.triFaceVertex.size() ? 0 : 1;
    for (std::size_t e = 0; e + 1 < views.triEdges.size(); e += 2) {
        const uint one = views.triEdges[e], other = views.triEdges[e + 1];
        const bool agree = other != kNone && views.adjacentTri[one] == other / 3 &&
                           views.adjacentTri[other] == one / 3;
        different += agree ? 0 : 1;
    }
    wrong += different;
    return std::to_string(views.adjacentTri.size()) + " neighbours, " + std::to_string(different) +
           " other than in the edge table";
}

std::string quadsOfTriangles(const Object& mesh, const Views& views)
{
    const uint pointCount = getElementCount(mesh, sPointComp);
    Array<uint> quadFaceVertex;
    const uint end = Tessary::computeQuadMesh(views.triFaceVertex, views.triEdges,
                                              Array<bool>(views.triFaceVertex.size()), pointCount,
                                              quadFaceVertex);
    return std::to_string(quadFaceVertex.size() / 4) + " quads, " +
           std::to_string(end - pointCount) + " new points";
}

}  // namespace

std::size_t runKernels(const Object& mesh, Steps& steps)
{
    Views views;
    std::size_t wrong = 0;
    steps.run("computeTriangulation", [&] { return triangulateViews(mesh, views); });
    steps.run("constructDualMesh", [&] { return dualOfTriangles(mesh, views); });
    steps.run("addDual", [&] { return dualOfPolygons(mesh); });
    steps.run("half-edges", [&] { return checkHalfEdges(views, wrong); });
    steps.run("computeTriEdges", [&] {
        Tessary::computeTriEdges(views.triFaceVertex, views.triEdges);
        return std::to_string(views.triEdges.size() / 2) + " edges";
    });
    steps.run("populateAdjacentTri", [&] { return checkAdjacency(views, wrong); });
    steps.run("computeQuadMesh", [&] { return quadsOfTriangles(mesh, views); });
    return wrong;
}

}  // namespace Cli
