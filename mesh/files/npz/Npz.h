#pragma once

#include "base/Host.h"
#include <TessaryMesh/Files.h>

#include <string>
#include <vector>

/// NumPy's .npz: a zip archive, here an uncompressed one, with a .npy file for each array. Numbers and
/// bool keep their type; rows, vectors and matrices are dimensions; strings are texts of characters.
namespace TessaryMesh {

/// Throws FileError where the file would need more than 4 GB, or texts are so long that an array of
/// them would be absurd.
void writeNpzArrays(const NamedArrays& arrays, OutputFile& output);

/// Writes "position", a row of 3 for each point, and every property of the points under its name
/// ("position_" and so on where it is called "position" itself). Returns a warning for each thing
/// that has no such form: values of other components, of the object itself, and long texts.
std::vector<std::string> writeNpzCloud(const Object& cloud, OutputFile& output);

}  // namespace TessaryMesh
