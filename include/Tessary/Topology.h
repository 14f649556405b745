#pragma once

#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/String.h>
#include <Tessary/Api.h>

namespace Tessary {

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
/// cost   O(corners + points) time, whatever the valence; no scratch memory for prepared arrays,
///        4 bytes per corner otherwise. Runs on the caller's thread
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

}  // namespace Tessary
