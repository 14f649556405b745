#pragma once

#include "files/RowSections.h"
#include "files/ply/PlyFields.h"

namespace TessaryMesh::Ply {

/// The rows of an element in the given encoding; the element must live on.
RowSection rowsOf(const ElementFields& element, Encoding encoding);

}  // namespace TessaryMesh::Ply
