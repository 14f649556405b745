#pragma once

#include <TessaryMesh/Files.h>

namespace TessaryMesh {

/// Writes arrays as a JSON object of lists, a line each; rows, vectors and matrices are lists of
/// lists. null stands for the index 0xFFFFFFFF and for numbers that are not finite. Bytes of texts
/// that are not UTF-8 become the character that stands for such.
void writeJsonArrays(const NamedArrays& arrays, OutputFile& output);

}  // namespace TessaryMesh
