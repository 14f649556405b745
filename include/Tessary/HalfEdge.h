#pragma once

#include <Pelon/Array.h>
#include <Tessary/Api.h>

/// @file
/// Half-edges of polygons and of their fan triangles.

namespace Tessary {

/// A half-edge, named by the corner at which it starts and the face that owns it.
///
/// It runs from that corner's point to the point of the face's next corner, the last corner
/// wrapping to the first. A mesh is seen in two views: in the polygon view a corner is an index
/// into the mesh's face-vertex array; in the triangle view, the fan triangulation of the same mesh
/// (see computeTriangulation()), corner k of triangle t is 3t + k. 0xFFFFFFFF in a field means none.
struct HalfEdge {
    uint faceVertex;  ///< the corner at which it starts
    uint face;        ///< the face that owns it
};

/// The triangle-view half-edge that lies on a half-edge of a polygon.
///
/// @param[in] faceOffset  face count + 1 prefix offsets of the polygon mesh
/// @param[in] polyEdge    a corner of face polyEdge.face, which has at least three corners
/// @returns    the corner of the triangle and the triangle
/// @pre        the indices are right; not checked
/// @complexity constant
TESSARY_API HalfEdge polyEdgeToTriEdge(const Pelon::Array<uint>& faceOffset, HalfEdge polyEdge);

/// The polygon-view half-edge on which a triangle-view half-edge lies.
///
/// @param[in] faceOffset  face count + 1 prefix offsets of the polygon mesh, the first one 0
/// @param[in] triEdge     a corner of triangle triEdge.face
/// @returns    faceVertex is 0xFFFFFFFF for an inner diagonal of a fan, face is then still the polygon;
///             face is 0xFFFFFFFF where the mesh has no faces. Faces of fewer than three corners own
///             no triangle and are passed over; a triangle past the end maps to the last face
/// @complexity O(log faces)
TESSARY_API HalfEdge triEdgeToPolyEdge(const Pelon::Array<uint>& faceOffset, HalfEdge triEdge);

/// The half-edge of another triangle that runs along the same edge the other way.
///
/// @param[in] triFaceVertex   3 point indices per triangle
/// @param[in] dualFaceOffset  the dual table of triFaceVertex, as made by constructDualMesh()
/// @param[in] dualFaceVertex  the same
/// @param[in] triEdge         a corner of triangle triEdge.face
/// @returns    both fields 0xFFFFFFFF on a boundary. Of several candidates (a non-manifold edge) the
///             one whose corner comes first in the end point's dual list; never a half-edge of
///             triEdge.face, and never one that runs the same way
/// @complexity O(valence of the end point)
TESSARY_API HalfEdge findAdjacentHalfEdge(const Pelon::Array<uint>& triFaceVertex,
                                          const Pelon::Array<uint>& dualFaceOffset,
                                          const Pelon::Array<uint>& dualFaceVertex,
                                          HalfEdge triEdge);

}  // namespace Tessary
