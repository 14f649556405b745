#pragma once

#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Tessary/Api.h>

/// @file
/// Properties of polygon meshes on the quads that their triangles are cut into.

namespace Tessary {

/// Carries the properties of a polygon mesh over to the quads that its fan triangles are cut into.
///
/// Triangle j of the fan triangulation (see computeTriangulation()) becomes the target's faces 3j,
/// 3j + 1 and 3j + 2, one around each of its corners, as computeQuadMesh() makes them: the corner, the
/// cut point on the edge that leaves it, the cut point inside the triangle, the cut point on the edge
/// that arrives at it. The target has its topology and element counts already; this function adds
/// properties, in the source's order.
///
/// An origin code says where a cut point lies. Its two lowest bits are the kind, the other thirty a
/// corner c of the triangles:
///
/// - 0: at the point of c
/// - 1: on the edge from c to the next corner of its triangle; the weight of c is edgeWeights[c]
/// - 2: inside the triangle of c; its corners' weights are their triangleWeights
/// - 3: on the edge from the corner before c to c; the weight of that corner is its edgeWeights
///
/// So entry i of the array that computeQuadMesh() makes describes a point of code i.
///
/// float, double and their vectors are blended: `t*a + (1 - t)*b` on an edge, `w0*a + w1*b + w2*c` in
/// a triangle, as written, without a fused multiply-add; doubles with weights widened to double.
/// Weights are used as given, results are not normalised. All other types pick: on an edge the start
/// where t >= 0.5, else the end; in a triangle the corner of the largest weight, of equal ones the
/// first. By component:
///
/// - point: each point has the value of its origin
/// - face: the value of a face is repeated on the quads of its triangles
/// - face-vertex: interpolated within each triangle, so values may differ where triangles meet
///
/// Indexed properties stay so, their interpolation mode becomes 1, and they keep the source's values.
/// One value is appended for each point that is cut and, for corners, for each triangle its edge
/// points and its inner point in the order of its quads' entries. Triangles of one polygon share the
/// value on their diagonal, which takes the weight of the first of them. An edge point of a polygon
/// reuses the value of the first half-edge that findAdjacentHalfEdge() finds, if that is an edge of a
/// polygon and has been visited already: at an index seam, too, it is the value of the triangle that
/// came first. Where a value is computed, an index outside the source's values, such
/// as 0xFFFFFFFF, counts as the default value; the index itself is carried as it is.
///
/// @param[in]     source           a polygon mesh. Its positions, velocities, face offsets and corners
///                                 are passed over; render settings are stored as they are
/// @param[in]     triangleWeights  one per corner of the triangles
/// @param[in]     edgeWeights      one per corner of the triangles
/// @param[in]     triMesh          the fan triangles; for indexed face-vertex properties also their
///                                 dual table as "dual_face_offset" and "dual_face_vertex" (see
///                                 addDual())
/// @param[in]     cutPointIds      an index into cutPointOrigins for each point of the target
/// @param[in]     cutPointOrigins  origin codes
/// @param[in,out] target           12 corners and 3 faces for each triangle, and any number of points
/// @pre        sizes and codes are right, and target is neither source nor triMesh; not checked
/// @failure    a property arrives with its default everywhere, as a plain property of its component,
///             if its interpolation mode is 2, its default is missing or of another type than its
///             values, it is indexed twice, belongs to another component, or what it needs of source
///             or triMesh is missing. Element types other than the host's scalars, strings, vectors
///             and matrices are left out. Two indexed properties of one range property each write it;
///             the later one stands, and the earlier one's new values are then named by it only if
///             both have as many values
/// @note       A dual table that the source itself stores (see addDual()) does not become one of the
///             quads: its offsets arrive as zeros, one for each corner of the target, and its corner
///             list without elements. Remove both and build the table of the target anew
/// @throws std::runtime_error  when the caller's job is cancelled by the end of a direct property; what
///             was written by then stays
/// @complexity O(elements) per property, parallel but for the numbering of indices; neighbours are
///             found once, in time near linear whatever the valence
TESSARY_API void interpolatePropertiesToCutMesh(const Korvane::Object& source,
                                                const Pelon::Array<float>& triangleWeights,
                                                const Pelon::Array<float>& edgeWeights,
                                                const Korvane::Object& triMesh,
                                                const Pelon::Array<uint>& cutPointIds,
                                                const Pelon::Array<uint>& cutPointOrigins,
                                                Korvane::Object& target);

}  // namespace Tessary
