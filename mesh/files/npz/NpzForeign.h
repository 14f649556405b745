#pragma once

#include "base/Host.h"
#include "files/npz/NpzArchive.h"

#include <string>
#include <vector>

namespace TessaryMesh {

/// Points of any numbers in rows of three, rounded to float where they are others.
Array<float3> pointsOf(NpzArchive& archive, const std::string& name, const std::string& path,
                       std::vector<std::string>& warnings);

/// Indices of any integers; their shape goes to `shape`.
Array<uint> indicesOf(NpzArchive& archive, const std::string& name, const std::string& path,
                      Shape& shape);

/// The mesh that arrays make without a description.
MutablePtr<Object> meshOfForeignArrays(NpzArchive& archive, const std::string& path,
                                       std::vector<std::string>& warnings);

}  // namespace TessaryMesh
