#pragma once

#include "base/Host.h"

#include <string>
#include <vector>

namespace TessaryMesh {

struct TriangulatedMesh {
    MutablePtr<Object> mesh;
    std::vector<std::string> warnings;  ///< one line per property that could not be carried
};

/// Every property of `mesh` that a program may want to carry: data properties other than the
/// topology, and render settings; in the object's order. The offsets of a list go with the list and
/// are not named.
Array<String> carriedPropertyNames(const Object& mesh);

/// Triangulates a mesh without errors (see Validate.h) and carries the named properties, in the
/// order of `mesh`.
///
/// Indexed properties stay indexed: their values are shared, their index arrays follow the corners,
/// and an index array that several properties use is carried once. Lists that belong to points are
/// shared. A list or any other property on a component of its own has no rule by which it follows
/// faces onto triangles; a warning says that it is left out. Values of the object itself (not
/// geometry properties), such as "material_library", are always carried. A mesh without faces keeps
/// its points. `mesh` is not changed; names that it lacks are passed over.
///
/// Throws std::invalid_argument where the kernel rejects the mesh, std::runtime_error when the
/// caller's job is cancelled.
TriangulatedMesh triangulateMesh(const Object& mesh, const Array<String>& propertyNames);

}  // namespace TessaryMesh
