#pragma once

#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/String.h>
#include <Tessary/Api.h>

namespace Tessary {

/// Lists every undirected edge of a triangle mesh once, as a pair of corner ids.
///
/// Corner 3t + k is corner k of triangle t; its half-edge runs to the next corner of t. Pair e is
/// triEdges[2e], triEdges[2e + 1]: the smaller corner id, then the opposite half-edge, or 0xFFFFFFFF
/// where there is none.
///
/// in     triFaceVertex  3 point indices per triangle; one or two trailing entries are ignored
/// out    triEdges       emptied, then filled; its storage is reused; at most 6 entries per triangle
/// order  ascending (larger point, smaller point) of the edge, then corner; the same for any thread
///        count
/// fails  neighbours in that order that run in one direction: two lines on standard error, triEdges
///        empty. A third half-edge after an opposite pair is not reported and is listed as a
///        boundary edge
/// cost   O(n) time, O(n log n) where one point has most corners or points are named from a range
///        far wider than the mesh; parallel, never polls for cancellation. Scratch memory: 4 bytes per
///        point and thread (at most 8), 8 per corner of the points that are at work (4096 in a row for
///        each thread), 8 per boundary edge; per triangle 12 where triangles do not come in the order
///        of their points, 24 more for points from so wide a range, and 12 more where triEdges has to
///        grow for a boundary of over a 32nd of the half-edges
TESSARY_API void computeTriEdges(const Pelon::Array<uint>& triFaceVertex,
                                 Pelon::Array<uint>& triEdges);

/// Finds, for every corner, the triangle on the other side of the half-edge that starts there.
///
/// in     triFaceVertex   3 point indices per triangle
/// in     dualFaceOffset  the dual table of triFaceVertex, as made by constructDualMesh
/// in     dualFaceVertex  the same
/// out    adjacentTri     resized to one entry per corner: a triangle, or 0xFFFFFFFF where there is
///                        none. Of several (a non-manifold edge) the first in the end point's dual
///                        list. Entries of an incomplete last triangle keep their resized value
/// cost   O(n) time without scratch memory where no point has more than 64 corners, else at most
///        O(n log n) and 18 bytes per corner of such points; 4 bytes per point where the offsets
///        reach past the dual's corners; parallel, never polls for cancellation
TESSARY_API void populateAdjacentTri(const Pelon::Array<uint>& triFaceVertex,
                                     const Pelon::Array<uint>& dualFaceOffset,
                                     const Pelon::Array<uint>& dualFaceVertex,
                                     Pelon::Array<uint>& adjacentTri);

/// Stores the adjacent triangles of a triangle mesh as its property "face_vertex_adjacent_tri".
///
/// in     target          names the component that the property belongs to, one element per corner
/// in     faceVertexName  names the face-vertex property (uint data)
/// in/out the dual names  as for addDual. The dual is built if the component is missing; a dual that
///                        is there is used as it stands. With an empty component name none is ever
///                        there, so each call builds over the arrays of the one before
/// else   without the face-vertex property, or with the dual's component but not its arrays, nothing
///        changes
/// cost   that of populateAdjacentTri, and of addDual where it is called
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
/// in     faceVertex      a point index per corner, all below the point count
/// in/out dualFaceOffset  point count + 1 entries, zero on entry; never resized
/// in/out dualFaceVertex  one entry per corner, 0xFFFFFFFF on entry; never resized
/// else   arrays that do not arrive so: counts are added to the offsets before these are summed up,
///        and each corner goes into the first entry of its point's range that holds 0xFFFFFFFF and
///        lies inside the array; it is left out where there is none
/// cost   O(corners + points) time, whatever the valence. Parallel from 0.13 million corners on where
///        corners come in the order of their points, else from a million on, with 2 bytes per corner
///        of scratch memory; on one thread and with 4 bytes per corner where arrays do not arrive
///        prepared. Never polls for cancellation
TESSARY_API void constructDualMesh(const Pelon::Array<uint>& faceVertex,
                                   Pelon::Array<uint>& dualFaceOffset,
                                   Pelon::Array<uint>& dualFaceVertex);

/// Builds the dual table of a mesh and stores it in the mesh as two properties and a component.
///
/// in     pointComponent        names the component whose element count is the point count
/// in     faceVertexName        names the face-vertex property to invert (uint data)
/// out    dualComponentName     a new component, one element per corner; an empty name stores none
/// out    dualFaceVertexName    the corner lists, a property of that component, default 0xFFFFFFFF
/// out    dualFaceOffsetName    the offsets, a property that targets faceVertexName, default 0
/// else   without the face-vertex property nothing changes. Build once: properties that exist
///        already are resized but not cleared, so a second build adds its counts to the first
/// cost   that of constructDualMesh
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
/// in     triFaceVertex   3 point indices per triangle
/// in     triEdges        its edge table, as made by computeTriEdges
/// in     creaseWeights   one per corner: its half-edge is creased below the largest finite float;
///                        that value itself, infinity and NaN mean not creased. An edge is creased
///                        if either of its half-edges is
/// in     firstIndex      usually the mesh's point count
/// out    quadFaceVertex  resized to 4 entries per corner; entries that the edge table does not
///                        reach keep their resized value
/// result the next unused point index
/// cost   O(n) time, 1 byte of scratch per corner where an edge is creased or a corner is not in the
///        table; parallel, never polls for cancellation. Not checked: that the table names every
///        corner at most once
TESSARY_API uint computeQuadMesh(const Pelon::Array<uint>& triFaceVertex,
                                 const Pelon::Array<uint>& triEdges,
                                 const Pelon::Array<float>& creaseWeights, uint firstIndex,
                                 Pelon::Array<uint>& quadFaceVertex);

/// The same with flags: true means creased.
TESSARY_API uint computeQuadMesh(const Pelon::Array<uint>& triFaceVertex,
                                 const Pelon::Array<uint>& triEdges,
                                 const Pelon::Array<bool>& creaseFlags, uint firstIndex,
                                 Pelon::Array<uint>& quadFaceVertex);

/// Repeats one value per polygon on the quads that computeQuadMesh makes of its fan triangles: quads
/// 3t, 3t + 1 and 3t + 2 of each triangle t of the polygon.
///
/// in     faceOffset      face count + 1 offsets of the polygon mesh; none at all means no faces
/// in     faceValues      one per polygon
/// out    quadFaceValues  not resized: 3 per triangle
/// cost   O(triangles), parallel, never polls for cancellation
TESSARY_API void quadFaceIndexedInterpolation(const Pelon::Array<uint>& faceOffset,
                                              const Pelon::Array<uint>& faceValues,
                                              Pelon::Array<uint>& quadFaceValues);

}  // namespace Tessary
