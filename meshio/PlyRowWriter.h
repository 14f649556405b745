#pragma once

#include <meshio/PlyFields.h>

namespace MeshIo {
class OutputFile;
}

namespace MeshIo::Ply {

/// Writes the rows of an element in the given format.
void writeRows(const ElementFields& element, MeshFormat format, OutputFile& output);

}  // namespace MeshIo::Ply
