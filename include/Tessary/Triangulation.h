#pragma once

#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/String.h>
#include <Tessary/Api.h>

/// @file
/// Polygons into triangles, with every property carried along.

namespace Tessary {

/// Splits every polygon into a fan of triangles around its first corner.
///
/// A face of corners a b c d e becomes (a, b, c), (a, c, d), (a, d, e); the triangles of a face
/// follow those of the face before. The split looks at no positions: concave and non-planar faces
/// are split the same way.
///
/// @param[in]  faceOffsets          face count + 1 offsets; fewer than two entries mean no faces. A
///                                  face whose offsets decrease yields no triangles and is no failure
/// @param[in]  faceVertices         a point index per corner, copied, never checked
/// @param[out] triangleFaceOffsets  0, 3, 6, ... 3T for T triangles; empty where there are none
/// @param[out] triangleVertices     3 point indices per triangle
/// @returns    false if a face has fewer than three corners; the outputs then hold the triangles of
///             the faces before it, without the closing offset
/// @pre        four different arrays: outputs are not inputs; not checked
/// @complexity O(corners), parallel on large meshes, no scratch memory. The outputs' storage is reused
TESSARY_API bool computeTriangulation(const Pelon::Array<uint>& faceOffsets,
                                      const Pelon::Array<uint>& faceVertices,
                                      Pelon::Array<uint>& triangleFaceOffsets,
                                      Pelon::Array<uint>& triangleVertices);

/// Makes `target` the triangle mesh of `source` and carries the named properties over.
///
/// Points keep their order and number; the target has its own copy of the positions.
///
/// @param[in]  source         a mesh object whose face offsets begin at 0 and do not decrease
/// @param[in]  propertyNames  the properties to carry; see copyPropertiesToTriangulatedMesh()
/// @param[out] target         made an empty mesh first, so it is one even after a failure
/// @returns    true also for a source without faces, which leaves the empty mesh and no properties;
///             false if a face has fewer than three corners or a topology array of the source is
///             missing or of another type
/// @pre        target is not source, which would be emptied first; not checked
/// @throws std::runtime_error  when the caller's job is cancelled while properties are copied
/// @complexity O(corners + points) plus the properties; no property array is copied that can be shared
TESSARY_API bool triangulatePolyMesh(const Korvane::Object& source,
                                     const Pelon::Array<Pelon::String>& propertyNames,
                                     Korvane::Object& target);

/// Carries named geometry properties of a polygon mesh over to its fan triangulation.
///
/// Element types are the host's scalars, strings, vectors and matrices; values are copied whole,
/// never blended. By component:
///
/// - point: the value array is shared with the source, the interpolation mode becomes 1
/// - face: the value of a face is repeated on its triangles
/// - face-vertex: values are picked corner by corner
///
/// An indexed property shares its value array and gets a new index array in a range property of
/// the same name: shared as it is for points, one index per triangle for faces. For face-vertex
/// properties too, entry t of the index array is the source's index at position f, the face of
/// triangle t, and the entries from T on are 0xFFFFFFFF: an index per corner has to be carried as a
/// plain uint property instead.
///
/// @param[in]     source         the polygon mesh; without face offsets only point properties are
///                               carried
/// @param[in]     propertyNames  handled in this order. The topology properties are passed over,
///                               render settings are stored as they are; names that the source lacks,
///                               other element types and longer chains of targets are passed over
///                               silently, and a plain property of another component arrives filled
///                               with its default
/// @param[in,out] target         the triangles of `source` in the order of computeTriangulation(),
///                               with element counts set
/// @pre        target is not source; not checked
/// @throws std::runtime_error  when the caller's job is cancelled; what was written by then stays, the
///             values of an indexed property perhaps without their range property
/// @complexity O(elements) per property, in parallel over the source's faces
TESSARY_API void copyPropertiesToTriangulatedMesh(const Korvane::Object& source,
                                                  const Pelon::Array<Pelon::String>& propertyNames,
                                                  Korvane::Object& target);

}  // namespace Tessary
