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
/// topology, and render settings; in the object's order.
Pelon::Array<Pelon::String> carriedPropertyNames(const Korvane::Object& mesh);

/// Triangulates a valid mesh, carries the named properties, and keeps indexed corner properties
/// indexed: their index arrays go through the triangulation as plain corner values, and the range
/// properties are put together again from them. Values of the object itself (not geometry
/// properties), such as "material_library", are copied.
TriangulatedMesh triangulateMesh(const Korvane::Object& mesh,
                                 const Pelon::Array<Pelon::String>& propertyNames);

}  // namespace MeshIo
