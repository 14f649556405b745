#pragma once

#include "base/Host.h"
#include "check/PolygonEdges.h"
#include "check/ValidateParts.h"

#include <vector>

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

    const Problem& sameDirection() const { return m_sameDirection.problem(); }
    const Problem& nonManifold() const { return m_nonManifold.problem(); }

private:
    const PolygonEdges& m_edges;
    Finding m_sameDirection{
        Problem::Severity::Warning, "same-direction",
        "edges along which two faces run in one direction",
        "turn one of the faces round or give it points of its own; there is no edge table of such "
        "a "
        "mesh: tessary adjacency refuses it, tessary quads takes it with --split-edges"};
    Finding m_nonManifold{Problem::Severity::Warning, "non-manifold-edge",
                          "edges of more than two faces",
                          "give further faces points of their own; the edge table pairs two and "
                          "takes what is left over for boundaries"};
};

/// What is unusual about the edges of a mesh without errors: the kinds of EdgePlaces, and
///   diagonal-direction  inner edges of faces, where these are split into triangles, for which
///                       computeTriEdges makes no table
/// Near linear time. Throws std::runtime_error when the caller's job is cancelled.
std::vector<Problem> edgeWarnings(const Object& mesh);

}  // namespace TessaryMesh
