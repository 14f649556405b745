#pragma once

#include <TessaryMesh/Operations.h>

#include "ops/PropertyPlan.h"

#include <optional>

namespace TessaryMesh {

/// A mesh in the place of one with concave faces, so that fans fit all faces that can be split.
///
///   source    face f, n corners             face f + 1 ...
///   result    n - 2 faces of its triangles  the same face ...
///
/// As each face keeps the number of its triangles, those of the fans of both meshes have the same numbers.
/// Points are shared, and what is carried has the values of the source: that of a new face those of the
/// one that it is part of.
///
/// parents  face of each face, corner of each corner
/// nothing  where no face is concave that can be split; then the mesh will do
std::optional<Result> splitConcave(const Object& mesh, const Carry& carry, Onto onto);

}  // namespace TessaryMesh
