#pragma once

#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>

#include <string>
#include <vector>

namespace MeshIo {

struct TriangulatedMesh {
    Pelon::MutablePtr<Korvane::Object> mesh;
    std::vector<std::string> warnings;  ///< one line per property that could not be carried
};

/// Every property of `mesh` that a program may want to carry: data properties other than the
/// topology, and render settings; in the object's order. The offsets of a list go with the list and
/// are not named.
Pelon::Array<Pelon::String> carriedPropertyNames(const Korvane::Object& mesh);

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
TriangulatedMesh triangulateMesh(const Korvane::Object& mesh,
                                 const Pelon::Array<Pelon::String>& propertyNames);

}  // namespace MeshIo
