#pragma once

#include "base/Host.h"
#include "ops/SampledSurface.h"

#include <string>
#include <vector>

namespace TessaryMesh {

struct SampleCloud {
    MutablePtr<Object> cloud;
    std::vector<std::string> warnings;
};

/// The samples of a mesh without errors as a point cloud, with where they lie and the mesh's values.
///
/// Every sample is a point. Its own properties, the first three only `withPlaces`:
///
///   weight       float3: the weights of the triangle's corners, in order; they add up to 1
///   face_id      uint: the face of `mesh`
///   triangle_id  uint: the fan triangle
///   normal       float3: that of the triangle, of length 1; only where no property of that name is
///                carried, nor nx, ny and nz
///
/// The named properties follow under their names, with one value for each sample, in the order of
/// `mesh`; where a name above is taken it becomes mesh_NAME or the like, which a warning says. By
/// component:
///
///   point, corner  float, double and their vectors are blended, (v1 w1 + v2 w2) + v0 w0 as the
///                  positions are, so blended normals are a little short of length 1. Other types, and
///                  what has interpolation mode None, are picked from the corner of the largest
///                  weight, of equal ones from the first
///   face           the value of the face
///
/// Indexed properties come out plain; where a value is missing, the default stands, which a warning
/// says. Lists, properties of other components and chains of indices have no rule; a warning says that
/// they are left out. Values of the object itself are always carried.
///
/// Parallel, in time linear in the samples and the mesh. Throws std::runtime_error when the caller's
/// job is cancelled.
SampleCloud makeSampleCloud(const Object& mesh, const SurfaceSamples& samples,
                            const Array<String>& propertyNames, bool withPlaces = true);

}  // namespace TessaryMesh
