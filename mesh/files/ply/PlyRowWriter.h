#pragma once

#include "files/ply/PlyFields.h"
#include <TessaryMesh/Files.h>

namespace TessaryMesh::Ply {

/// Writes the rows of an element in the given encoding.
void writeRows(const ElementFields& element, Encoding encoding, OutputFile& output);

}  // namespace TessaryMesh::Ply
