#pragma once

#include "base/Host.h"

#include <string>
#include <vector>

namespace TessaryMesh {

class OutputFile;

/// Writes a point cloud as an .npz file: "position", a row of 3 for each point, and every property of
/// the points under its name ("position_" and so on where it is called "position" itself).
///
/// Numbers and bool keep their type; vectors are rows, matrices rows of rows, strings texts of
/// characters. Returns a warning for each thing that has no such form: values of other components,
/// of the object itself, and strings so long that an array of them would be absurd.
std::vector<std::string> writeCloudNpz(const Object& cloud, OutputFile& output);

}  // namespace TessaryMesh
