#pragma once

#include "base/Host.h"
#include "check/PolygonEdges.h"
#include "check/ValidateParts.h"

namespace TessaryMesh {

/// Collects the edges that stand out of a surface, with their first places.
///
/// Kinds, all of them warnings:
///   same-direction      edges along which two faces run in one direction, those for which
///                       computeTriEdges makes no table
///   non-manifold-edge   edges of more than two faces
class EdgePlaces {
public:
    explicit EdgePlaces(const PolygonEdges& edges) : m_edges(edges) {}

    void add(const PolygonEdge& edge);

    /// What was found among later edges.
    void append(const EdgePlaces& later);

    const Problem& sameDirection() const { return m_sameDirection.problem(); }
    const Problem& nonManifold() const { return m_nonManifold.problem(); }

private:
    const PolygonEdges& m_edges;
    Finding m_sameDirection{
        Problem::Severity::Warning, "same-direction",
        "edges along which two faces run in one direction",
        "turn one of the faces round or give it points of its own; there is no edge table of such "
        "a mesh"};
    Finding m_nonManifold{Problem::Severity::Warning, "non-manifold-edge",
                          "edges of more than two faces",
                          "give further faces points of their own; the edge table pairs two and "
                          "takes what is left over for boundaries"};
};

}  // namespace TessaryMesh
