#pragma once

#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/String.h>
#include <Tessary/Api.h>

/// @file
/// Which corners use a point, edges, neighbours of triangles, a mesh of quads.

namespace Tessary {

/// Lists every undirected edge of a triangle mesh once, as a pair of corner ids.
///
/// Corner 3t + k is corner k of triangle t; its half-edge runs to the next corner of t. Pair e is
/// triEdges[2e], triEdges[2e + 1]: the smaller corner id, then the opposite half-edge, or 0xFFFFFFFF
/// where there is none.
///
/// @param[in]  triFaceVertex  3 point indices per triangle; one or two trailing entries are ignored
/// @param[out] triEdges       emptied, then filled; its storage is reused; at most 6 entries per
///                            triangle
/// @pre        triEdges is another array than triFaceVertex; not checked
/// @post       ascending (larger point, smaller point) of the edge, then corner; the same for any
///             thread count
/// @failure    neighbours in that order that run in one direction: two lines on standard error,
///             triEdges empty. A third half-edge after an opposite pair is not reported and is listed
///             as a boundary edge
/// @complexity O(n) time, O(n log n) where one point has most corners or points are named from a range
///             far wider than the mesh; parallel, never polls for cancellation. Scratch memory: 4
///             bytes per point and thread (at most 8), 8 per corner of the points that are at work
///             (4096 in a row for each thread), 8 per boundary edge; per triangle 12 where triangles
///             do not come in the order of their points, 24 more for points from so wide a range, and
///             12 more where triEdges has to grow for a boundary of over a 32nd of the half-edges
TESSARY_API void computeTriEdges(const Pelon::Array<uint>& triFaceVertex,
                                 Pelon::Array<uint>& triEdges);

/// Finds, for every corner, the triangle on the other side of the half-edge that starts there.
///
/// @param[in]  triFaceVertex   3 point indices per triangle
/// @param[in]  dualFaceOffset  the dual table of triFaceVertex, as made by constructDualMesh()
/// @param[in]  dualFaceVertex  the same
/// @param[out] adjacentTri     resized to one entry per corner: a triangle, or 0xFFFFFFFF where there
///                             is none. Of several (a non-manifold edge) the first in the end point's
///                             dual list. Entries of an incomplete last triangle keep their resized
///                             value
/// @pre        adjacentTri is none of the other arrays; not checked
/// @complexity O(n) time without scratch memory where no point has more than 64 corners, else at most
///             O(n log n) and 18 bytes per corner of such points; 4 bytes per point where the offsets
///             reach past the dual's corners; parallel, never polls for cancellation
TESSARY_API void populateAdjacentTri(const Pelon::Array<uint>& triFaceVertex,
                                     const Pelon::Array<uint>& dualFaceOffset,
                                     const Pelon::Array<uint>& dualFaceVertex,
                                     Pelon::Array<uint>& adjacentTri);

/// Stores the adjacent triangles of a triangle mesh as its property "face_vertex_adjacent_tri".
///
/// @param[in,out] geometry    the triangle mesh
/// @param[in] target          names the component that the property belongs to, one element per corner
/// @param[in] faceVertexName  names the face-vertex property (uint data)
/// @param[in] dualComponentName   as for addDual(). The dual is built if the component is missing; a
///                                dual that is there is used as it stands. With an empty name none is
///                                ever there, so each call builds over the arrays of the one before
/// @param[in] dualFaceVertexName  as for addDual()
/// @param[in] dualFaceOffsetName  as for addDual()
/// @failure    without the face-vertex property, or with the dual's component but not its arrays,
///             nothing changes
/// @complexity that of populateAdjacentTri(), and of addDual() where it is called
TESSARY_API void addAdjacentTri(Korvane::Object& geometry, const Pelon::String& target,
                                const Pelon::String& faceVertexName,
                                const Pelon::String& dualComponentName,
                                const Pelon::String& dualFaceVertexName,
                                const Pelon::String& dualFaceOffsetName);

/// Inverts a face-vertex array: lists, for every point, the corners that use it.
///
/// The corners of point p come out in dualFaceVertex[dualFaceOffset[p]] up to but excluding
/// dualFaceVertex[dualFaceOffset[p + 1]], in increasing order.
///
/// @param[in]     faceVertex      a point index per corner, all below the point count
/// @param[in,out] dualFaceOffset  point count + 1 entries, zero on entry; never resized
/// @param[in,out] dualFaceVertex  one entry per corner, 0xFFFFFFFF on entry; never resized
/// @pre        three different arrays; not checked
/// @failure    arrays that do not arrive so: counts are added to the offsets before these are summed
///             up, and each corner goes into the first entry of its point's range that holds
///             0xFFFFFFFF and lies inside the array; it is left out where there is none
/// @complexity O(corners + points) time, whatever the valence. Parallel from 0.13 million corners on
///             where corners come in the order of their points, else from a million on, with 2 bytes
///             per corner of scratch memory; on one thread and with 4 bytes per corner where arrays do
///             not arrive prepared. Never polls for cancellation
TESSARY_API void constructDualMesh(const Pelon::Array<uint>& faceVertex,
                                   Pelon::Array<uint>& dualFaceOffset,
                                   Pelon::Array<uint>& dualFaceVertex);

/// Builds the dual table of a mesh and stores it in the mesh as two properties and a component.
///
/// @param[in,out] geometry           the mesh
/// @param[in] pointComponent         names the component whose element count is the point count
/// @param[in] faceVertexName         names the face-vertex property to invert (uint data)
/// @param[in] dualComponentName      names a new component, one element per corner; an empty name
///                                   stores none
/// @param[in] dualFaceVertexName     names the corner lists, a new property of that component, default
///                                   0xFFFFFFFF
/// @param[in] dualFaceOffsetName     names the offsets, a new property that targets faceVertexName,
///                                   default 0
/// @failure    without the face-vertex property nothing changes. Build once: properties that exist
///             already are resized but not cleared, so a second build adds its counts to the first
/// @note       The table describes the mesh as it is now. Whoever triangulates or cuts the mesh gets
///             no table of the result (see interpolatePropertiesToCutMesh()): build it anew
/// @complexity that of constructDualMesh()
TESSARY_API void addDual(Korvane::Object& geometry, const Pelon::String& pointComponent,
                         const Pelon::String& faceVertexName,
                         const Pelon::String& dualComponentName,
                         const Pelon::String& dualFaceVertexName,
                         const Pelon::String& dualFaceOffsetName);

/// Splits every triangle into three quads, one per corner, and numbers the new points.
///
/// The quad of corner c is entries 4c to 4c + 3: the corner's point, the new point on the edge that
/// leaves it, the new point inside the triangle, the new point on the edge that arrives at it.
/// Points keep their indices; new ones count up from firstIndex, first on the edges in the order of
/// triEdges, then inside the triangles. A creased edge gets two points, one for each end, and a
/// triangle with two or three creased edges one inner point per group of corners that the creases
/// leave together.
///
/// @param[in]  triFaceVertex   3 point indices per triangle
/// @param[in]  triEdges        its edge table, as made by computeTriEdges()
/// @param[in]  creaseWeights   one per corner: its half-edge is creased below the largest finite float;
///                             that value itself, infinity and NaN mean not creased. An edge is
///                             creased if either of its half-edges is
/// @param[in]  firstIndex      usually the mesh's point count
/// @param[out] quadFaceVertex  resized to 4 entries per corner; entries that the edge table does not
///                             reach keep their resized value
/// @returns    the next unused point index
/// @pre        the table names every corner at most once, and quadFaceVertex is none of the other
///             arrays; not checked
/// @complexity O(n) time, 1 byte of scratch per corner where an edge is creased or a corner is not in
///             the table; parallel, never polls for cancellation
TESSARY_API uint computeQuadMesh(const Pelon::Array<uint>& triFaceVertex,
                                 const Pelon::Array<uint>& triEdges,
                                 const Pelon::Array<float>& creaseWeights, uint firstIndex,
                                 Pelon::Array<uint>& quadFaceVertex);

/// The same with flags.
///
/// @param[in]  triFaceVertex   as above
/// @param[in]  triEdges        as above
/// @param[in]  creaseFlags     one per corner: true means creased
/// @param[in]  firstIndex      as above
/// @param[out] quadFaceVertex  as above
/// @returns    the next unused point index
TESSARY_API uint computeQuadMesh(const Pelon::Array<uint>& triFaceVertex,
                                 const Pelon::Array<uint>& triEdges,
                                 const Pelon::Array<bool>& creaseFlags, uint firstIndex,
                                 Pelon::Array<uint>& quadFaceVertex);

/// Repeats one value per polygon on the quads that computeQuadMesh() makes of its fan triangles.
///
/// These are the quads 3t, 3t + 1 and 3t + 2 of each triangle t of the polygon.
///
/// @param[in]  faceOffset      face count + 1 offsets of the polygon mesh; none at all means no faces
/// @param[in]  faceValues      one per polygon
/// @param[out] quadFaceValues  not resized: 3 per triangle
/// @pre        quadFaceValues is none of the other arrays; not checked
/// @complexity O(triangles), parallel, never polls for cancellation
TESSARY_API void quadFaceIndexedInterpolation(const Pelon::Array<uint>& faceOffset,
                                              const Pelon::Array<uint>& faceValues,
                                              Pelon::Array<uint>& quadFaceValues);

}  // namespace Tessary
