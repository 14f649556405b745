#pragma once

#include "files/ply/PlyFields.h"

namespace TessaryMesh {
class OutputFile;
}

namespace TessaryMesh::Ply {

/// Writes the rows of an element in the given format.
void writeRows(const ElementFields& element, MeshFormat format, OutputFile& output);

}  // namespace TessaryMesh::Ply
