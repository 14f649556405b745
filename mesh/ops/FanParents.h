#pragma once

#include "base/Host.h"

namespace TessaryMesh {

/// Where the fan triangles of polygons come from.
///
///   face f            o ........ o + n - 1      o = faceOffset[f]
///   its triangles     o - 2f + j, of the corners  o, o + j + 1, o + j + 2
///
/// The face of every triangle, and the polygon corner of every triangle corner.
Ptr<Array<uint>> facesOfTriangles(const Array<uint>& faceOffset);
Ptr<Array<uint>> cornersOfTriangles(const Array<uint>& faceOffset);

}  // namespace TessaryMesh
